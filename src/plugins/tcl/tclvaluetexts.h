#pragma once

#include "interpreter/language/valuetexts.h"
#include "plugins/tcl/tclargument.h"

namespace Tamrix::TclPlugin {

class TclInterpreter;

/// Writes values of Tcl for people. What was made as a list or dictionary has parts; a text that
/// could be one has none.
class TclValueTexts final : public ValueTexts {
public:
    explicit TclValueTexts(TclInterpreter& interpreter) : m_tcl(interpreter) {}

    Parts partsOf(const Value& value, int end, int depth = 0) override;

protected:
    QString text(const Value& value, int depth) override;

private:
    TclInterpreter& m_tcl;
};

}  // namespace Tamrix::TclPlugin
