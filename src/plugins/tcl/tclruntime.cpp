#include "plugins/tcl/tclruntime.h"

#include <cstdarg>
#include <cstdio>

#include "interpreter/language/interrupts.h"
#include "interpreter/language/timelimit.h"

namespace Tamrix::TclPlugin {

namespace {

/// In place of the end of the process.
[[noreturn]] void panic(const char* format, ...) {
    TclPanic thrown{};
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(thrown.text, sizeof thrown.text, format, arguments);
    va_end(arguments);
    throw TclPanic(thrown);
}

int endInterrupted(void*, Tcl_Interp*, int code) {
    TclRuntime::self().endScript();
    return code;
}

void interrupted(int) {
    TclRuntime::self().interrupt();
}

}  // namespace

TclRuntime& TclRuntime::self() {
    // Never destroyed: a signal may come late.
    static auto* const s_instance = new TclRuntime;
    return *s_instance;
}

TclRuntime::TclRuntime() {
    Tcl_SetPanicProc(panic);
    Tcl_FindExecutable(nullptr);
    m_handler = Tcl_AsyncCreate(endInterrupted, nullptr);
    m_evaluationHandler = Tcl_AsyncCreate(endEvaluation, nullptr);
    handleInterrupts(interrupted);
}

int TclRuntime::endEvaluation(void*, Tcl_Interp*, int code) {
    Tcl_Interp* const interp = self().m_interruptible;
    // A signal that comes late finds nobody to end. Commands that catch errors are ended, too.
    if (interp && TimeLimit::isArmed())
        Tcl_CancelEval(interp, Tcl_NewStringObj(endText, -1), nullptr, TCL_CANCEL_UNWIND);
    return code;
}

void TclRuntime::endScript() {
    // Commands that catch errors are ended, too.
    if (Tcl_Interp* const interp = m_interruptible) {
        m_isEnding = true;
        Tcl_CancelEval(interp, Tcl_NewStringObj(endText, -1), nullptr, TCL_CANCEL_UNWIND);
    }
}

}  // namespace Tamrix::TclPlugin
