#pragma once

#include "interpreter/language/stepactions.h"

namespace Tamrix::PerlPlugin {

class CaseInterpreter;

/// Steps of feature files in Perl. What they are called with first is a hash of the names in the
/// scopes.
class PerlSteps final : public StepLanguage {
public:
    explicit PerlSteps(CaseInterpreter& interpreter);

    Value contextValue() override;
    Value tableValue(const Value& rows) override;
    QString snippetText(const StepSnippet& snippet) override;

private:
    CaseInterpreter& m_perl;
};

}  // namespace Tamrix::PerlPlugin
