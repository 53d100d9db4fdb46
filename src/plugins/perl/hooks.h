#pragma once

#include "plugins/perl/perlheaders.h"

namespace Tamrix::PerlPlugin {

// The places in Perl's runtime where the plug-in looks on: the beginning of each statement, calls,
// exceptions on their way, and where Perl looks for signals. They cost next to nothing as long as
// there is nothing to do.

/// Has the runtime's code pass the hooks, and makes it the one whose scripts run.
void installHooks(PerlInterpreter* perl);
/// Another runtime's scripts run from now on, or none; the one before still exists.
void setHookedRuntime(PerlInterpreter* perl);

/// Whom the beginning of statements is told; null for nobody.
class StatementListener {
public:
    virtual void statementReached(pTHX_ const COP* statement) = 0;
    /// The script is asked to stop where it is.
    virtual void stopRequested() = 0;

protected:
    ~StatementListener() = default;
};
void setStatementListener(StatementListener* listener);

/// What can be asked of a running script in the handler of a signal. It is done where Perl looks
/// for signals, which is between two operations.
enum class Request {
    Stop,      ///< StatementListener::stopRequested()
    Interrupt  ///< the end of the script
};
void requestOfScript(Request request);
/// A time limit is over: the code dies, as long as a TimeLimit exists.
void requestTimeLimit();
/// Whether code has died for that since the last call.
bool takeTimeExpired();

}  // namespace Tamrix::PerlPlugin
