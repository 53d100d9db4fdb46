#pragma once

#include "interpreter/language/languagevariables.h"
#include "plugins/tcl/tclargument.h"

namespace Tamrix::TclPlugin {

class TclInterpreter;

/// A value for people, cut where it is long.
QString shownText(const TclArgument& value);

/// Lists the variables of a Tcl script that stands still. An array is shown as a dictionary. What
/// was made as a list or dictionary has members; a text that could be one has none.
class TclVariables final : public LanguageVariables {
public:
    TclVariables(TclInterpreter& interpreter, LanguageDebugger& debugger)
        : LanguageVariables(debugger), m_tcl(interpreter) {}

protected:
    /// No code of the script writes values.
    void startListing() override {}
    std::vector<Member> variablesOf(int level) override;
    Members membersOf(const Value& value, int first, int limit) override;
    QString textOf(const Value& value) override;

private:
    Value argument(Tcl_Obj* value);

    TclInterpreter& m_tcl;
};

}  // namespace Tamrix::TclPlugin
