#pragma once

#include <QHash>
#include <atomic>
#include <vector>

#include "interpreter/language/languagedebugger.h"
#include "plugins/tcl/tclinternals.h"
#include "plugins/tcl/tclref.h"

namespace Tamrix::TclPlugin {

class TclInterpreter;

/// Tcl's half of the debugger. While it is interactive, a trace of Tcl is called for each command:
/// loops and conditions are commands then, too, and not compiled into their surroundings. The first
/// command on a line is where a script can stop.
class TclDebugger final : public LanguageDebugger {
public:
    explicit TclDebugger(TclInterpreter& interpreter);
    ~TclDebugger() override;

    void setInteractive(bool interactive) override;
    /// Stops at the next line. Only sets a flag.
    void interrupt() override;

    /// The interpreter of Tcl is about to go, or another one is there.
    void leaveTcl();
    void enterTcl();

    /// An error was raised in these frames: stops there if nothing will catch it.
    void errorRaised(const std::vector<TclFrame>& frames);
    /// The time of code whose errors do not reach the commands that run by now, as of a handler of
    /// an event.
    class Boundary {
    public:
        explicit Boundary(TclDebugger& debugger);
        ~Boundary() { m_debugger.m_commandsOutside = m_before; }
        Boundary(const Boundary&) = delete;
        Boundary& operator=(const Boundary&) = delete;

    private:
        TclDebugger& m_debugger;
        int m_before;
    };

protected:
    std::vector<ScriptFrame> runningFrames() override;
    std::unique_ptr<VariableWatcher> makeVariableWatcher() override;

private:
    static int traceCommand(void* self, Tcl_Interp* interp, int level, const char* text,
                            Tcl_Command command, int count, Tcl_Obj* const* words);
    void commandReached(int depth);
    bool isNewLine(const TclFrame& frame, int depth);
    bool isPassedThrough();
    void leaveLines(int level);
    bool isCaught() const;
    static std::vector<ScriptFrame> scriptFrames(const std::vector<TclFrame>& frames);

    TclInterpreter& m_tcl;
    Tcl_Trace m_trace = nullptr;
    int m_commandsOutside = 0;
    std::atomic<bool> m_isInterrupted{false};
    struct Line {
        TclFrame frame;
        /// Of the first command on it.
        int depth;
    };
    /// The line at which each frame was last, the outermost first.
    std::vector<Line> m_lines;
    /// What the paths of commands stand for that have been reached.
    struct KnownFile {
        /// Holds it, so that no other path can have its address.
        TclRef path;
        /// -1 for what is no script.
        int sourceId;
    };
    QHash<Tcl_Obj*, KnownFile> m_knownFiles;
};

}  // namespace Tamrix::TclPlugin
