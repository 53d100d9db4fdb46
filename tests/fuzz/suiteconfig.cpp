// A suite's config.xml, and the same text as the words of a command line.

#include "runner/suites/suiteconfig.h"

#include "fuzz/fuzztarget.h"
#include "fuzz/quietqt.h"
#include "runner/processes/shellwords.h"

using namespace Tamrix;

namespace {

void checkWords(const QString& text) {
    QString error;
    const QStringList words = splitShellWords(text, &error);
    if (!error.isEmpty()) {
        fuzzRequire(words.isEmpty(), "half a line has no words");
        return;
    }
    QStringList quoted;
    for (const QString& word : words)
        quoted.append(quotedShellWord(word));
    fuzzRequire(splitShellWords(quoted.join(' '), &error) == words, "words are read as written");
}

}  // namespace

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    Fuzz::silenceQt();
    const QByteArray text(reinterpret_cast<const char*>(data), static_cast<int>(size));
    QString error;
    const SuiteConfig config = parseSuiteConfig(text, QStringLiteral("config.xml"), &error);
    if (!error.isEmpty()) {
        fuzzRequire(error.startsWith(QStringLiteral("config.xml:")), "an error has its place");
        fuzzRequire(config.cases.isEmpty() && config.applications.isEmpty(), "it leaves nothing");
    }
    checkWords(QString::fromUtf8(text));
    return 0;
}
