#pragma once

#include "interpreter/names/genericscriptedobjectmap.h"

namespace Tamrix::PerlPlugin {

/// Object names that are variables of a package in Perl, as shared/scripts/names.pl.
class PerlObjectMap final : public GenericScriptedObjectMap {
public:
    explicit PerlObjectMap(const QString& path);

protected:
    ScriptArgument::Map scriptVariables() override;
    Outcome<QByteArray> contentWith(const QByteArray& content, const QString& key,
                                    const ObjectName& name) override;
};

}  // namespace Tamrix::PerlPlugin
