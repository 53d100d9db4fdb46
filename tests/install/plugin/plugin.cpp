#include <QStringList>

#include "interpreter/bridge/interpreter.h"
#include "platform/testresult/testresult.h"

namespace {

/// A language with one command: "log TEXT" writes a text to the test result. Its scripts run when
/// they are evaluated, and main() has nothing left to do.
class ToyInterpreter : public Tamrix::Interpreter {
public:
    using Interpreter::Interpreter;

    bool evaluate(const QString& text, const QString& fileName, int line, int) override {
        clearError();
        for (const QString& command : text.split('\n')) {
            ++line;
            if (command.startsWith("log ")) {
                log(command.mid(4), fileName, line);
            } else if (!command.trimmed().isEmpty()) {
                setErrorMessage(QString("unknown command '%1'").arg(command));
                setErrorFile(fileName);
                setErrorLine(line);
                return false;
            }
        }
        return true;
    }

    bool callFunction(const QString&, const Tamrix::ObjectList&) override { return true; }
    bool hasFunction(const QString& name) override { return name == "main"; }
    bool checkSyntax(const QString&, const QString&) override { return true; }
    void addNativeFunction(const QString&, bool (*)(Tamrix::ScriptContext*), const QStringList&,
                           const QStringList&, const QString&) override {}
    void addNativeType(const QString&, void*, const Tamrix::NativeScriptType&) override {}
    Language language() const override { return Tcl; }
    void initTestFunctions(Tamrix::TestResult* result) override { m_result = result; }

private:
    void log(const QString& text, const QString& fileName, int line) {
        if (m_result)
            m_result->addResult(Tamrix::TestResult::Log, text, QString(),
                                Tamrix::LineInfo(fileName, line));
    }

    Tamrix::TestResult* m_result = nullptr;
};

}  // namespace

extern "C" TAMRIX_EXPORT Tamrix::Interpreter* createInterpreter(Tamrix::RunnerInterface* runner) {
    return new ToyInterpreter(runner);
}
