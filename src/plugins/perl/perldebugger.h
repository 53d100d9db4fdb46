#pragma once

#include <memory>

#include "interpreter/language/languagedebugger.h"
#include "plugins/perl/hooks.h"

namespace Tamrix::PerlPlugin {

class CaseInterpreter;
class ScriptErrors;

/// Perl's half of the debugger. While it is interactive it is told of each statement. An exception
/// is seen where it is raised, and nothing catches it unless an `eval` or `try` is running.
class PerlDebugger final : public LanguageDebugger, private StatementListener {
public:
    explicit PerlDebugger(CaseInterpreter& interpreter);
    ~PerlDebugger() override;

    void setInteractive(bool interactive) override;
    /// An exception is on its way: stops when nothing will catch it.
    void errorPasses(pTHX_ SV* exception);
    std::vector<ValueTexts::Part> variablesOf(const ScriptFrame& frame) override;

protected:
    std::vector<ScriptFrame> runningFrames() override;
    int runningDepth() override;
    std::unique_ptr<ValueTexts> makeValueTexts() override;
    void enterSilence() override;
    void leaveSilence() override;
    void stopSoon() override;

private:
    void statementReached(pTHX_ const COP* statement) override;
    void stopRequested() override;
    void addOfPackage(std::vector<ValueTexts::Part>& variables, HV* package);

    CaseInterpreter& m_perl;
    /// The exception that is on its way while others look at values.
    std::unique_ptr<ScriptErrors> m_errorsAside;
};

}  // namespace Tamrix::PerlPlugin
