#pragma once

#include "interpreter/language/stepactions.h"

namespace Tamrix::TclPlugin {

class TclInterpreter;

/// Feature files for Tcl scripts: the commands of the namespace `bdd`, with which scripts register,
/// and the running of files with steps.
class TclSteps final : public StepLanguage {
public:
    explicit TclSteps(TclInterpreter& interpreter);

    Value contextValue() override;
    /// A list of dictionaries. The first row and all rows are `headers` and `raw` of the context.
    Value tableValue(const Value& rows) override;
    Value bigDecimal(const QString& text) override;
    QString snippetText(const StepSnippet& snippet) override;

private:
    TclInterpreter& m_tcl;
};

/// Defines the commands with a body: `bdd::given expression parameters body` and its like. The
/// others are the prelude's.
void defineStepCommands(TclInterpreter& interpreter);

/// The `-errorcode` of a step that is still to be written.
inline constexpr const char* pendingErrorCode = "TAMRIX PENDING";

}  // namespace Tamrix::TclPlugin
