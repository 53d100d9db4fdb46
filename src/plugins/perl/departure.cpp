#include "plugins/perl/departure.h"

#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/frames.h"

namespace Tamrix::PerlPlugin {

namespace {

Perl_ppaddr_t s_exit = nullptr;

void noteExit(pTHX) {
    if (!CaseInterpreter::onScriptThread())
        return;
    departure() = {Departure::Reason::Exit, {}, false, positionsOf(runningCode(aTHX))};
}

OP* exitScript(pTHX) {
    if (HeldDepartures::areHeld())
        croak("exit() is not called from here\n");
    noteExit(aTHX);
    return s_exit(aTHX);
}

}  // namespace

Departure& departure() {
    static auto* const s_departure = new Departure;
    return *s_departure;
}

void leaveScript(pTHX) {
    // The status is that of the script's own exit(), if there was one.
    my_exit(static_cast<U32>(STATUS_EXIT));
}

void watchExits() {
    if (s_exit)
        return;
    s_exit = PL_ppaddr[OP_EXIT];
    PL_ppaddr[OP_EXIT] = exitScript;
}

}  // namespace Tamrix::PerlPlugin
