#pragma once

#include "interpreter/language/stepactions.h"
#include "plugins/perl/perlheaders.h"

namespace Tamrix::PerlPlugin {

class CaseInterpreter;

/// Steps of feature files in Perl. What they are called with first is a hash of the names in the
/// scopes.
class PerlSteps final : public StepLanguage {
public:
    explicit PerlSteps(CaseInterpreter& interpreter);

    std::optional<ScriptError> loadFile(const QString& path, const QString& text) override;
    Value contextValue() override;
    Value tableValue(const Value& rows) override;
    QString snippetText(const StepSnippet& snippet) override;

private:
    CaseInterpreter& m_perl;
};

/// Gives Perl the functions behind the package `bdd`.
void defineStepFunctions(pTHX);

}  // namespace Tamrix::PerlPlugin
