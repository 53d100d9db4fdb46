#pragma once

#include <QSet>

#include "interpreter/language/languagevariables.h"
#include "plugins/perl/perlvaluetexts.h"

namespace Tamrix::PerlPlugin {

class CaseInterpreter;

/// Lists the variables of a Perl script that stands still: those of `my`, then those of the
/// package.
class PerlVariables final : public LanguageVariables {
public:
    PerlVariables(CaseInterpreter& interpreter, LanguageDebugger& debugger)
        : LanguageVariables(debugger), m_perl(interpreter) {}

protected:
    void startListing() override { m_texts = PerlValueTexts(); }
    std::vector<Member> variablesOf(int level) override;
    Members membersOf(const Value& value, int first, int limit) override;
    QString textOf(const Value& value) override;

private:
    void addOfPackage(std::vector<Member>& variables, HV* package);

    CaseInterpreter& m_perl;
    PerlValueTexts m_texts;
};

}  // namespace Tamrix::PerlPlugin
