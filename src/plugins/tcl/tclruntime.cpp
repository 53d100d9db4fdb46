#include "plugins/tcl/tclruntime.h"

#include <csignal>
#include <cstdarg>
#include <cstdio>

namespace Tamrix::TclPlugin {

namespace {

const char* const interruptText = "The script was interrupted";

/// In place of the end of the process.
[[noreturn]] void panic(const char* format, ...) {
    TclPanic thrown{};
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(thrown.text, sizeof thrown.text, format, arguments);
    va_end(arguments);
    throw thrown;
}

void handleInterrupt(int) {
    TclRuntime::self().interrupt();
}

/// Only where nobody else handles it: the runner hands Ctrl-C on to who was there before it.
void installInterruptHandler() {
    struct sigaction before = {};
    if (sigaction(SIGINT, nullptr, &before) != 0 || (before.sa_flags & SA_SIGINFO) != 0 ||
        before.sa_handler != SIG_DFL)
        return;
    struct sigaction action = {};
    action.sa_handler = handleInterrupt;
    sigaction(SIGINT, &action, nullptr);
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
    m_handler = Tcl_AsyncCreate(endScript, this);
    installInterruptHandler();
}

void TclRuntime::interrupt() {
    // Tcl goes on to where it can be told.
    Tcl_AsyncMark(m_handler);
}

int TclRuntime::endScript(void* self, Tcl_Interp*, int code) {
    Tcl_Interp* const interp = static_cast<TclRuntime*>(self)->m_interruptible;
    // Commands that catch errors are ended, too.
    if (interp)
        Tcl_CancelEval(interp, Tcl_NewStringObj(interruptText, -1), nullptr, TCL_CANCEL_UNWIND);
    return code;
}

}  // namespace Tamrix::TclPlugin
