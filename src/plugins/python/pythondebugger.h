#pragma once

#include <QString>
#include <memory>
#include <optional>
#include <vector>

#include "interpreter/language/languagedebugger.h"
#include "plugins/python/codefacts.h"
#include "plugins/python/frames.h"
#include "plugins/python/pyref.h"
#include "plugins/python/tracehook.h"

namespace Tamrix::PythonPlugin {

class PythonInterpreter;

/// Python's half of the debugger. While it is interactive, a hook tells it of the lines of those
/// calls that could have to stop: in mode Run of functions with a break point in them, when
/// stepping of those at the depth of the step. No other line costs anything. The frames are read
/// from Python when they are asked for.
///
/// An exception is seen where it is raised in such a call or by a native function, else when it
/// leaves the innermost call. Whether something catches it is then read from the byte code of the
/// calls that it has not left. Where that can't tell, as in a `with`, the decision waits until the
/// exception has come further; one that has left all calls was caught by nothing.
class PythonDebugger final : public LanguageDebugger, private TraceListener {
public:
    explicit PythonDebugger(PythonInterpreter& interpreter);
    ~PythonDebugger() override;

    VariableBindings variables(const QString& path) override;
    void setInteractive(bool interactive) override;
    void setDebuggerMode(DbgMode mode) override;
    void shutDown() override;

    /// A native function raises the exception that is set: stops before the script's frames are
    /// left if nothing in them catches it.
    void errorRaised() { m_hook.tellErrorSet(); }
    /// Nothing has caught the exception that is set: stops if the debugger has not done so before.
    void errorUncaught();
    /// Another exception is raised for one that the debugger may have stopped for, whose text it
    /// has in its own: it is not to stop once more.
    void errorReplaced(PyObject* exception, const QString& text);
    std::vector<ValueTexts::Part> variablesOf(const ScriptFrame& place) override;

protected:
    std::vector<ScriptFrame> runningFrames() override;
    int runningDepth() override;
    std::unique_ptr<ValueTexts> makeValueTexts() override;
    void enterSilence() override;
    void leaveSilence() override;
    void breakPointsChanged() override { m_hook.redecide(); }
    void stopSoon() override;

private:
    bool wantsLines(PyCodeObject* code, const RunningFrame* caller) override;
    void lineReached(PyObject* frame, const RunningFrame* caller) override;
    void errorPasses(PyObject* exception, PyObject* traceback) override;

    /// Whether the mode wants to stop at each line of a call that was made by `caller`.
    bool stopsAtEachLine(const RunningFrame* caller);
    CodeFacts& currentFacts(PyCodeObject* code);
    std::vector<int> breakLinesOf(PyCodeObject* code);

    void stopForError(PyObject* exception, PyObject* traceback);

    PythonInterpreter& m_python;
    TraceHook m_hook{*this};
    std::optional<TraceHook::Pause> m_pause;

    /// The exception that the debugger has stopped for.
    PyRef m_toldError;
};

}  // namespace Tamrix::PythonPlugin
