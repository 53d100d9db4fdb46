#pragma once

#include "plugins/perl/guardedcall.h"

namespace Tamrix::PerlPlugin {

class CaseInterpreter;

/// The call of a function behind the plug-in's own Perl code.
struct OwnCall {
    CaseInterpreter& active;
    CV* function;
    SV** arguments;
    int count;
};

/// Such a function. Its body gives the result, null for none; what it throws becomes an exception
/// of the script: ScriptErrorSet, as by throwFailure(), any std::exception.
struct OwnFunction {
    const char* name;
    /// Arguments that it takes at least.
    int wanted;
    SvRef (*body)(pTHX_ const OwnCall& call);
};

/// Makes it known to Perl. Only the thread of the scripts may call it. The function lives as long
/// as the process.
void defineOwn(pTHX_ const OwnFunction& function);

template <std::size_t size>
void defineOwn(pTHX_ const OwnFunction (&functions)[size]) {
    for (const OwnFunction& function : functions)
        defineOwn(aTHX_ function);
}

}  // namespace Tamrix::PerlPlugin
