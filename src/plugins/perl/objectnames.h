#pragma once

#include "interpreter/names/genericscriptedobjectmap.h"

namespace Tamrix::PerlPlugin {

/// Object names that are variables of a package in Perl, as shared/scripts/names.pl.
class PerlObjectMap final : public GenericScriptedObjectMap {
public:
    explicit PerlObjectMap(const QString& path);

    const ScriptNotation& notation() const override { return m_notation; }
    /// Also for "$names::save_button", which is how scripts write it.
    QString scriptedNameKey(const ScriptedSymbolicName& name) const override;
    QString toSymbolicName(const QString& key) const override;

protected:
    ScriptArgument::Map scriptVariables() override;
    Outcome<QByteArray> contentWith(const QByteArray& content, const QString& key,
                                    const ObjectName& name) override;

private:
    /// Of the file's variables, by its name: "names".
    QString m_package;
    ScriptNotation m_notation;
};

}  // namespace Tamrix::PerlPlugin
