#pragma once

#include <initializer_list>
#include <vector>

#include "plugins/perl/svref.h"

namespace Tamrix::PerlPlugin {

// Perl leaves code by longjmp(), also over C++, whose objects are then never destroyed. So C++
// calls what may run code of a script through the functions below, and a function that Perl calls
// has its work done in a C++ function of its own, whose end it carries out when nothing of C++ is
// left.

/// How code of Perl came to its end.
enum class Ending {
    Returned,
    Died,  ///< with an exception, which scripts can catch
    Left   ///< by what scripts can't catch: an exit, the end of the case, Ctrl-C
};

/// What code of Perl gave: its value, or what it died with.
struct CodeEnd {
    Ending ending = Ending::Returned;
    SvRef value;
};

/// Calls a function in scalar context. The script's `$@` stays as it is.
CodeEnd callCode(pTHX_ SV* function, const std::vector<SvRef>& arguments);
/// The same for a function of the plug-in's own Perl code, by its whole name.
CodeEnd callOwn(pTHX_ const char* name, const std::vector<SvRef>& arguments);
/// Runs code as `eval` does, with the lexical variables of the innermost frame.
CodeEnd evaluateCode(pTHX_ SV* text);

/// The value of what was called; any other end passes as ScriptErrorSet.
SvRef valueOrThrow(CodeEnd end);

/// Keeps the end for endOfCall() and throws ScriptErrorSet.
[[noreturn]] void throwEnd(const CodeEnd& end);

/// What a function that Perl has called comes to. Trivially destructible: Perl may jump over it.
struct NativeEnd {
    Ending ending;
    /// The result or the exception; a mortal.
    SV* value;
};
/// The end that throwEnd() has kept: for the function that Perl has called, or for whom it ends
/// here.
NativeEnd endOfCall(pTHX);
CodeEnd takePendingEnd();
Ending pendingEnding();
NativeEnd returning(pTHX_ SvRef value);
NativeEnd dying(pTHX_ SvRef exception);
NativeEnd leaving();

/// A function in C++ that Perl calls. Its arguments are on Perl's stack, which moves as soon as
/// code of Perl runs.
using NativeBody = NativeEnd (*)(pTHX_ CV* function, SV** arguments, int count);

/// Makes arguments plain before C++ sees them: what a tied variable does is done here.
void fetchArguments(pTHX_ SV** arguments, int count);
/// Carries the end out, but for a value that is returned.
void carryOut(pTHX_ const NativeEnd& end);

/// The body as a function for Perl.
template <NativeBody body>
void nativeFunction(pTHX_ CV* cv) {
    dXSARGS;
    fetchArguments(aTHX_ & ST(0), static_cast<int>(items));
    const NativeEnd end = body(aTHX_ cv, &ST(0), static_cast<int>(items));
    if (end.ending != Ending::Returned)
        carryOut(aTHX_ end);
    if (items == 0)
        EXTEND(SP, 1);
    ST(0) = end.value;
    XSRETURN(1);
}

}  // namespace Tamrix::PerlPlugin
