#pragma once

#include <memory>

#include "interpreter/language/languagevariables.h"
#include "plugins/perl/perlvaluetexts.h"

namespace Tamrix::PerlPlugin {

class CaseInterpreter;

/// Lists the variables of a Perl script that stands still: those of `my`, then those of the
/// package.
class PerlVariables final : public LanguageVariables {
public:
    PerlVariables(CaseInterpreter& interpreter, LanguageDebugger& debugger)
        : LanguageVariables(debugger, std::make_unique<PerlValueTexts>()), m_perl(interpreter) {}

protected:
    std::vector<Member> variablesOf(int level) override;

private:
    void addOfPackage(std::vector<Member>& variables, HV* package);

    CaseInterpreter& m_perl;
};

}  // namespace Tamrix::PerlPlugin
