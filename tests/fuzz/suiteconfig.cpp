// A suite's config.xml, and the same text as the words of a command line.

#include "runner/suites/suiteconfig.h"

#include "fuzz/fuzztarget.h"
#include "fuzz/quietqt.h"
#include "runner/processes/shellwords.h"

using namespace Tamrix;

namespace {

void checkWords(const QString& text) {
    const auto words = splitShellWords(text);
    if (!words)
        return;
    const auto again = splitShellWords(quotedShellWords(*words));
    fuzzRequire(again && *again == *words, "words are read as written");
}

}  // namespace

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    Fuzz::silenceQt();
    const QByteArray text(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const auto config = parseSuiteConfig(text, QStringLiteral("config.xml"));
    fuzzRequire(config || config.error().text.startsWith(QStringLiteral("config.xml:")),
                "an error has its place");
    checkWords(QString::fromUtf8(text));
    return 0;
}
