#pragma once

#include <QScopedValueRollback>
#include <atomic>
#include <vector>

#include "interpreter/language/languagedebugger.h"
#include "plugins/tcl/tclinternals.h"

namespace Tamrix::TclPlugin {

class TclInterpreter;

/// Tcl's half of the debugger. While it is interactive, a trace of Tcl is called for each command:
/// loops and conditions are commands then, too, and not compiled into their surroundings. The first
/// command on a line is where a script can stop.
class TclDebugger final : public LanguageDebugger {
public:
    explicit TclDebugger(TclInterpreter& interpreter);

    void setInteractive(bool interactive) override;

    /// The interpreter of Tcl is about to go, or another one is there.
    void leaveTcl();
    void enterTcl();

    /// An error was raised in these frames: stops there if nothing will catch it.
    void errorRaised(const std::vector<TclFrame>& frames);
    /// As long as it exists, errors do not reach the commands that run by now, as those of a
    /// handler of an event.
    QScopedValueRollback<int> boundary();
    std::vector<ValueTexts::Part> variablesOf(const ScriptFrame& frame) override;

protected:
    std::vector<ScriptFrame> runningFrames() override;
    std::unique_ptr<ValueTexts> makeValueTexts() override;
    void stopSoon() override { m_isInterrupted = true; }

private:
    static int traceCommand(void* self, Tcl_Interp* interp, int level, const char* text,
                            Tcl_Command command, int count, Tcl_Obj* const* words);
    void commandReached(int depth);
    bool isNewLine(const TclFrame& frame, int depth);
    bool isPassedThrough();
    void leaveLines(int level);
    bool isCaught() const;

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
};

}  // namespace Tamrix::TclPlugin
