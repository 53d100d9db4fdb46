// The commands of the debugger's line protocol, one a line, at a script that stands still.

#include <QList>
#include <cstdio>
#include <memory>

#include "base/protocolescapes.h"
#include "fuzz/fuzztarget.h"
#include "fuzz/quietqt.h"
#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/debugger/lineprotocol/lineprotocol.h"
#include "interpreter/debugger/testdebugger.h"

using namespace Tamrix;

namespace {

/// The lines of the input; those that end the process are left out.
class Lines : public CommandInput {
public:
    explicit Lines(const QByteArray& text) : m_lines(text.split('\n')) {}

    Line readLine(const std::string&) override {
        while (!m_lines.isEmpty()) {
            const QByteArray line = m_lines.takeFirst();
            const QString word = QString::fromUtf8(line).simplified().section(' ', 0, 0);
            if (word != "q" && word != "quit" && word != "exit")
                return {End::None, line.toStdString()};
        }
        return {End::Interrupted, {}};
    }

private:
    QList<QByteArray> m_lines;
};

/// Drops what is printed as long as it exists: every line has an answer.
class Silence {
public:
    Silence() {
        static FILE* const s_nowhere = std::fopen("/dev/null", "w");
        stdout = s_nowhere;
        stderr = s_nowhere;
    }
    ~Silence() {
        stdout = m_output;
        stderr = m_errors;
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    FILE* const m_output = stdout;
    FILE* const m_errors = stderr;
};

void perform(const QByteArray& commands) {
    const Silence silence;
    Test::TestDebugger debugger;
    debugger.enterScript("/nowhere/a.py");
    debugger.setInteractive(true);
    debugger.setFrontEnd(std::make_unique<LineProtocol>(
        ProtocolDialect::Machine, ProtocolSurroundings{std::make_unique<Lines>(commands), {}, {}}));
    debugger.stop();
    debugger.setCode(2, "/nowhere/b.py");
    TestSettingsType::reset();
}

}  // namespace

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    Fuzz::silenceQt();
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    perform(bytes);
    const QString text = QString::fromUtf8(bytes);
    fuzzRequire(unescapeVariablePrinting(escapeForVariablePrinting(text)) == text,
                "a name is read as it is written");
    fuzzRequire(unescapeNonPrintable(escapeNonPrintable(text)) == text,
                "a detail is read as it is written");
    return 0;
}
