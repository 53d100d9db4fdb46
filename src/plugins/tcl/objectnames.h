#pragma once

#include "interpreter/names/genericscriptedobjectmap.h"

namespace Tamrix::TclPlugin {

/// Object names that are variables in a namespace of a Tcl script, which is called as its file: of
/// shared/scripts/names.tcl those of "names".
class TclObjectMap final : public GenericScriptedObjectMap {
public:
    explicit TclObjectMap(const QString& path);

    const ScriptNotation& notation() const override { return m_notation; }
    /// Of "names::save_button", beside what all languages have.
    QString scriptedNameKey(const ScriptedSymbolicName& name) const override;
    QString toSymbolicName(const QString& key) const override;

protected:
    ScriptArgument::Map scriptVariables() override;

private:
    /// "names::"
    QString m_prefix;
    ScriptNotation m_notation;
};

}  // namespace Tamrix::TclPlugin
