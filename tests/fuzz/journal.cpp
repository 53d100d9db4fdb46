// A journal, and its entries written and read again.

#include <QBuffer>

#include "fuzz/fuzztarget.h"
#include "fuzz/quietqt.h"
#include "platform/testresult/journalentry.h"
#include "platform/testresult/journalreader.h"
#include "platform/testresult/reportgenerator.h"

using namespace Tamrix;

namespace {

class Rewriter : public ReportGenerator {
public:
    void add(const ReportEntry& entry) override {
        const QByteArray line = Journal::entryLine(entry);
        ReportEntry again;
        bool isJson = false;
        const QString error = Journal::parseEntry(line.left(line.size() - 1), &again, &isJson);
        fuzzRequire(error.isEmpty() && isJson, "what was read can be written and read again");
        fuzzRequire(Journal::entryLine(again) == line, "an entry stays as it was");
    }
};

}  // namespace

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    Fuzz::silenceQt();
    QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    Rewriter rewriter;
    JournalReader reader(&rewriter);
    const bool isRead = reader.replay(&buffer, QStringLiteral("journal"));
    fuzzRequire(isRead == reader.errorText().isEmpty(), "a failure has a text");
    return 0;
}
