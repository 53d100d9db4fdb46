#pragma once

#include <atomic>
#include <exception>

#include "plugins/tcl/tclref.h"

namespace Tamrix::TclPlugin {

/// Thrown where Tcl would end the process: it has no memory left, or a value is larger than it can
/// have. What ran is left as it stands, and its interpreter can't be used any more.
struct TclPanic : std::exception {
    const char* what() const noexcept override { return text; }

    char text[256];
};

/// What Tcl has once in a process: Ctrl-C, and what happens when it gives up. Started on first use,
/// alive to the end of the process.
class TclRuntime {
public:
    /// What a person is told of a script that was ended.
    static constexpr const char* endText = "The script was interrupted";

    /// Throws std::runtime_error when Tcl can't be started.
    static TclRuntime& self();

    /// Whose scripts Ctrl-C ends; null while none runs. On the thread of the scripts.
    void setInterruptible(Tcl_Interp* interp) { m_interruptible = interp; }
    /// Whether the script has been told to end since this was asked to be forgotten.
    bool isEnding() const { return m_isEnding; }
    void forgetEnd() { m_isEnding = false; }
    /// Ends the script that runs, as for Ctrl-C. In a signal handler.
    void interrupt() {
        // Tcl goes on to where it can be told.
        if (m_interruptible)
            Tcl_AsyncMark(m_handler);
    }
    /// Ends code that is evaluated, as long as a TimeLimit exists. In a signal handler.
    void requestEndOfEvaluation() { Tcl_AsyncMark(m_evaluationHandler); }
    /// Ends the script at once, on the thread of the scripts.
    void endScript();

private:
    TclRuntime();

    static int endEvaluation(void*, Tcl_Interp*, int code);

    Tcl_AsyncHandler m_handler;
    Tcl_AsyncHandler m_evaluationHandler;
    bool m_isEnding = false;
    std::atomic<Tcl_Interp*> m_interruptible{nullptr};
};

}  // namespace Tamrix::TclPlugin
