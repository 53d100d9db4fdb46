#pragma once

#include "interpreter/names/genericscriptedobjectmap.h"

namespace Tamrix::JavaScriptPlugin {

/// Object names that a module exports, as shared/scripts/names.js.
class JavaScriptObjectMap final : public GenericScriptedObjectMap {
public:
    explicit JavaScriptObjectMap(const QString& path);

protected:
    ScriptArgument::Map scriptVariables() override;
    /// Also fails for a script that exports none of its objects.
    bool runScript(const QString& text) override;
};

}  // namespace Tamrix::JavaScriptPlugin
