#pragma once

#include <QHash>
#include <QString>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "interpreter/bridge/debugger.h"
#include "plugins/python/codefacts.h"
#include "plugins/python/frames.h"
#include "plugins/python/pyref.h"
#include "plugins/python/tracehook.h"

namespace Tamrix {
class VariableWatcher;
}

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
class PythonDebugger final : public Debugger, private TraceListener {
public:
    explicit PythonDebugger(PythonInterpreter& interpreter);
    ~PythonDebugger() override;

    bool stop() override;
    bool stopWithObjectName(const QString& objectName, const QString& detail) override;
    void missingStep(int line, const std::string& text) override;
    VariableBindings variables(const QString& path) override;
    void initVariableWatcher() override;
    void setInteractive(bool interactive) override;
    void setDebuggerMode(DbgMode mode) override;
    void setBreakPoint(int line, int sourceId, bool set) override;
    void shutDown() override;
    /// A place in a file that is none of Python's, over what runs now: a step of a feature.
    void pushFrameAndSetCurrent(int line, int column, int sourceId) override;
    void popFrameAndSetCurrent() override;
    /// Stops at the next line. Only sets flags.
    void interrupt() override;

    /// The frames of scripts at which the debugger looks, the innermost first: of an error that it
    /// has stopped for, else those that run.
    std::vector<ScriptFrame> frames();

    /// A native function raises the exception that is set: stops before the script's frames are
    /// left if nothing in them catches it.
    void errorRaised() { m_hook.tellErrorSet(); }
    /// Nothing has caught the exception that is set: stops if the debugger has not done so before.
    void errorUncaught();
    /// Errors are caught by a native function that the innermost frame has called, as long as this
    /// exists.
    class CatchesErrors {
    public:
        explicit CatchesErrors(PythonDebugger& debugger);
        ~CatchesErrors();
        CatchesErrors(const CatchesErrors&) = delete;
        CatchesErrors& operator=(const CatchesErrors&) = delete;

    private:
        PythonDebugger& m_debugger;
    };
    /// Another exception is raised for one that the debugger may have stopped for, whose text it
    /// has in its own: it is not to stop once more.
    void errorReplaced(PyObject* exception, const QString& text);

protected:
    void updateFrames() override;

private:
    bool wantsLines(PyCodeObject* code, const RunningFrame* caller) override;
    void lineReached(PyObject* frame, const RunningFrame* caller) override;
    void errorPasses(PyObject* exception, PyObject* traceback) override;

    /// The time of a stop.
    class Standstill {
    public:
        explicit Standstill(PythonDebugger& debugger);
        ~Standstill();
        Standstill(const Standstill&) = delete;
        Standstill& operator=(const Standstill&) = delete;

    private:
        PythonDebugger& m_debugger;
        std::optional<TraceHook::Pause> m_pause;
    };
    void showFrames(const std::vector<ScriptFrame>& frames);
    /// The frames with the places of other files between them.
    std::vector<ScriptFrame> withForeignPlaces(std::vector<ScriptFrame> frames) const;

    /// Whether the mode wants to stop at each line of a call that was made by `caller`.
    bool stopsAtEachLine(const RunningFrame* caller);
    CodeFacts& currentFacts(PyCodeObject* code);
    std::vector<int> breakLinesOf(PyCodeObject* code);
    int sourceIdOf(PyObject* codeFileName);

    bool stopsForErrors() const { return isInteractive() && debuggerMode() != None; }
    bool isCaught(PyObject* exception, PyObject* traceback);
    void stopForError(PyObject* exception, PyObject* traceback);

    PythonInterpreter& m_python;
    TraceHook m_hook{*this};
    std::unique_ptr<VariableWatcher> m_watcher;
    QHash<QString, int> m_sourceIds;
    /// Lines with break points, by source id.
    QHash<int, std::vector<int>> m_breakLines;
    /// Changes with the break points.
    unsigned m_state = 0;

    struct ForeignPlace {
        ScriptFrame place;
        /// The innermost frame of a script below it; may be null.
        PyRef below;
    };
    /// The innermost last.
    std::vector<ForeignPlace> m_foreignPlaces;

    /// One in another when code that is evaluated at a stop stops.
    int m_standstills = 0;

    /// The exception that the debugger has stopped for, and its text.
    PyRef m_toldError;
    QString m_toldText;
    /// Where that exception was raised, while the debugger is stopped for it.
    std::optional<std::vector<ScriptFrame>> m_errorFrames;
    /// Frames whose native function catches errors. Only compared: they run as long as they are
    /// here.
    std::vector<PyObject*> m_catching;
};

}  // namespace Tamrix::PythonPlugin
