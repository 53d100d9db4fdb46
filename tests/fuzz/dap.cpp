// Both sides of the server of the Debug Adapter Protocol. The first byte of the input chooses: what
// a client sends, or what a debugged program writes.

#include <QByteArray>
#include <variant>

#include "dap/program/journaltail.h"
#include "dap/program/outputlines.h"
#include "dap/program/stopline.h"
#include "dap/server.h"
#include "fuzz/fuzztarget.h"
#include "fuzz/quietqt.h"

using namespace Tamrix;
using namespace Tamrix::Dap;

namespace {

/// A client that sends the input in two pieces and goes away.
class InputStream : public ByteReader, public ByteWriter {
public:
    explicit InputStream(const QByteArray& input) : m_input(input) {}

    State read(QByteArray* bytes) override {
        const int length = m_turn++ == 0 ? m_input.size() / 2 : m_input.size();
        bytes->append(m_input.left(length));
        m_input.remove(0, length);
        return m_turn > 2 ? State::Ended : State::Open;
    }
    bool write(const QByteArray& bytes) override {
        fuzzRequire(bytes.startsWith("Content-Length: "), "an answer has a header");
        return true;
    }

private:
    QByteArray m_input;
    int m_turn = 0;
};

void serve(const QByteArray& input) {
    InputStream stream(input);
    Server server(stream, stream, QStringLiteral("tamrixrunner"),
                  [](const ProgramStart&) -> Outcome<std::unique_ptr<Program>> {
                      return fail(FailureKind::Failed, QStringLiteral("nothing is started"));
                  });
    server.serveToTheEnd();
}

void readProgram(const QByteArray& input) {
    OutputLines lines;
    QByteArray whole;
    for (const QByteArray& piece : {input.left(input.size() / 2), input.mid(input.size() / 2)}) {
        for (const OutputPart& part : lines.add(piece)) {
            if (const auto* output = std::get_if<ProgramOutput>(&part)) {
                whole += output->text;
                continue;
            }
            const QByteArray& line = std::get<ProtocolLine>(part).text;
            whole += "TDBG:" + line + '\n';
            readStop(line);
            readFrame(line);
            readNotice(line);
            readListing(line);
            readJournalLine(line);
        }
    }
    whole += lines.takeRest();
    fuzzRequire(whole == input, "nothing of the output is lost");
}

}  // namespace

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    Fuzz::silenceQt();
    if (size == 0)
        return 0;
    const QByteArray input(reinterpret_cast<const char*>(data) + 1, static_cast<int>(size) - 1);
    if (data[0] % 2 == 0)
        serve(input);
    else
        readProgram(input);
    return 0;
}
