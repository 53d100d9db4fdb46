#include "plugins/tcl/tclruntime.h"

#include <csignal>
#include <cstdarg>
#include <cstdio>

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

/// Who handled Ctrl-C before: the runtime of another language, or nobody.
struct sigaction s_previous;

void handleInterrupt(int signal, siginfo_t* info, void* context) {
    if (TclRuntime::self().interrupt())
        return;
    if ((s_previous.sa_flags & SA_SIGINFO) != 0)
        s_previous.sa_sigaction(signal, info, context);
    else if (s_previous.sa_handler != SIG_DFL && s_previous.sa_handler != SIG_IGN)
        s_previous.sa_handler(signal);
}

/// The runner hands Ctrl-C on to who handled it before the runner did.
void installInterruptHandler() {
    struct sigaction action = {};
    action.sa_sigaction = handleInterrupt;
    action.sa_flags = SA_SIGINFO;
    sigaction(SIGINT, &action, &s_previous);
    if ((s_previous.sa_flags & SA_SIGINFO) == 0 && s_previous.sa_handler == SIG_IGN)
        sigaction(SIGINT, &s_previous, nullptr);
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

bool TclRuntime::interrupt() {
    if (!m_interruptible)
        return false;
    // Tcl goes on to where it can be told.
    Tcl_AsyncMark(m_handler);
    return true;
}

int TclRuntime::endScript(void* self, Tcl_Interp*, int code) {
    auto& runtime = *static_cast<TclRuntime*>(self);
    // Commands that catch errors are ended, too.
    if (Tcl_Interp* const interp = runtime.m_interruptible) {
        runtime.m_isEnding = true;
        Tcl_CancelEval(interp, Tcl_NewStringObj(endText, -1), nullptr, TCL_CANCEL_UNWIND);
    }
    return code;
}

}  // namespace Tamrix::TclPlugin
