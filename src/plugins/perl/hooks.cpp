#include "plugins/perl/hooks.h"

#include <pthread.h>

#include <atomic>
#include <utility>

#include "interpreter/language/interrupts.h"
#include "interpreter/language/timelimit.h"
#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/departure.h"

namespace Tamrix::PerlPlugin {

namespace {

/// Contexts of running code. Perl itself has no limit but memory.
constexpr I32 deepestContext = 50'000;
/// Bytes that stay free on the thread's stack, on which Perl calls itself for operators, sorting
/// and native functions.
constexpr std::ptrdiff_t stackReserve = 512 * 1024;

Perl_ppaddr_t s_nextState = nullptr;
Perl_ppaddr_t s_enterSub = nullptr;
/// The runtime whose scripts run.
PerlInterpreter* s_perl = nullptr;
/// Our own function in place of `$SIG{__DIE__}`, and the script's.
SV* s_dieHook = nullptr;
SV* s_scriptsDieHook = nullptr;
bool s_isInDieHook = false;
/// Until a call is no longer too deep.
bool s_isDyingOfDepth = false;
StatementListener* s_listener = nullptr;
std::atomic<bool> s_isStopRequested{false};
std::atomic<bool> s_isInterruptRequested{false};
std::atomic<bool> s_isTimeOver{false};
bool s_hasTimeExpired = false;
const char* s_stackLimit = nullptr;

// Exceptions

/// The script has set another hook, or has taken it away: it is called by ours.
void adoptDieHook(pTHX) {
    SvREFCNT_dec(s_scriptsDieHook);
    s_scriptsDieHook = PL_diehook;
    PL_diehook = SvREFCNT_inc(s_dieHook);
}

void noteException(pTHX_ SV* exception) {
    CaseInterpreter* const interpreter = CaseInterpreter::onScriptThread();
    if (interpreter && interpreter->perl() == aTHX)
        interpreter->exceptionRaised(aTHX_ exception);
}

/// Called by Perl with each exception, before anything is left.
void dieHook(pTHX_ CV* cv) {
    dXSARGS;
    PERL_UNUSED_VAR(cv);
    SV* const exception = items > 0 ? ST(0) : &PL_sv_undef;
    noteException(aTHX_ exception);
    HV* stash = nullptr;
    GV* glob = nullptr;
    CV* const scripts = s_scriptsDieHook ? sv_2cv(s_scriptsDieHook, &stash, &glob, 0) : nullptr;
    if (scripts && aTHX == s_perl && !s_isInDieHook) {
        ENTER;
        SAVEBOOL(s_isInDieHook);
        s_isInDieHook = true;
        PUSHMARK(SP);
        XPUSHs(exception);
        PUTBACK;
        call_sv(reinterpret_cast<SV*>(scripts), G_DISCARD);
        LEAVE;
    }
    XSRETURN_EMPTY;
}

// Statements and calls

void tellListener(pTHX) {
    s_listener->statementReached(aTHX_ PL_curcop);
}

OP* enterStatement(pTHX) {
    OP* const next = s_nextState(aTHX);
    if (LIKELY(aTHX == s_perl)) {
        if (UNLIKELY(PL_diehook != s_dieHook) && !s_isInDieHook)
            adoptDieHook(aTHX);
        PERL_ASYNC_CHECK();
        if (UNLIKELY(s_listener != nullptr))
            tellListener(aTHX);
    }
    return next;
}

OP* enterSub(pTHX) {
    const char here = 0;
    const bool isTooDeep = cxstack_ix > deepestContext || &here < s_stackLimit;
    if (UNLIKELY(isTooDeep != s_isDyingOfDepth) && aTHX == s_perl) {
        // What dies is told to a hook, whose calls are as deep.
        s_isDyingOfDepth = isTooDeep;
        if (cxstack_ix > deepestContext)
            croak("Recursion is deeper than %d calls and blocks", static_cast<int>(deepestContext));
        if (isTooDeep)
            croak("Recursion is too deep for the stack");
    }
    return s_enterSub(aTHX);
}

// Signals

void leaveBecause(pTHX_ Departure::Reason reason) {
    departure() = {reason, {}, false, positionsOf(runningCode(aTHX))};
}

void answerSignals(pTHX) {
    if (aTHX == s_perl) {
        if (s_isTimeOver.exchange(false) && TimeLimit::isArmed()) {
            s_hasTimeExpired = true;
            croak("The time is over\n");
        }
        if (s_isInterruptRequested.exchange(false)) {
            if (HeldDepartures::areHeld())
                croak("Interrupted\n");
            PL_sig_pending = 0;
            leaveBecause(aTHX_ Departure::Reason::Interrupt);
            leaveScript(aTHX);
        }
        if (s_isStopRequested.exchange(false) && s_listener)
            s_listener->stopRequested();
    }
    // Perl has no table of signals before a script has handlers.
    if (PL_psig_pend)
        Perl_despatch_signals(aTHX);
    else
        PL_sig_pending = 0;
}

void wakePerl() {
    pTHX = s_perl;
    if (aTHX)
        PL_sig_pending = 1;
}

void interrupted(int) {
    requestOfScript(Request::Interrupt);
}

const char* stackLimit() {
    pthread_attr_t attributes;
    void* lowest = nullptr;
    std::size_t size = 0;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0)
        return nullptr;
    pthread_attr_getstack(&attributes, &lowest, &size);
    pthread_attr_destroy(&attributes);
    return static_cast<const char*>(lowest) + stackReserve;
}

/// In Perl's table of operations, which all runtimes share: once for the process.
void wrapOperations() {
    if (s_nextState)
        return;
    s_nextState = PL_ppaddr[OP_NEXTSTATE];
    PL_ppaddr[OP_NEXTSTATE] = enterStatement;
    s_enterSub = PL_ppaddr[OP_ENTERSUB];
    PL_ppaddr[OP_ENTERSUB] = enterSub;
    watchExits();
}

}  // namespace

void installHooks(PerlInterpreter* perl) {
    wrapOperations();
    handleInterrupts(interrupted);
    s_stackLimit = stackLimit();
    setHookedRuntime(perl);
}

void setHookedRuntime(PerlInterpreter* perl) {
    if (perl == s_perl)
        return;
    if (s_perl) {
        pTHX = s_perl;
        SvREFCNT_dec(s_scriptsDieHook);
    }
    s_scriptsDieHook = nullptr;
    s_dieHook = nullptr;
    s_isInDieHook = false;
    s_perl = perl;
    s_isInterruptRequested = false;
    if (!perl)
        return;
    pTHX = perl;
    PL_signalhook = answerSignals;
    s_dieHook = reinterpret_cast<SV*>(newXS("tamrix::_dieHook", dieHook, "<tamrix>"));
    adoptDieHook(aTHX);
}

void setStatementListener(StatementListener* listener) {
    s_listener = listener;
}

void requestOfScript(Request request) {
    (request == Request::Stop ? s_isStopRequested : s_isInterruptRequested) = true;
    wakePerl();
}

bool takeTimeExpired() {
    return std::exchange(s_hasTimeExpired, false);
}

void requestTimeLimit() {
    s_isTimeOver = true;
    wakePerl();
}

}  // namespace Tamrix::PerlPlugin
