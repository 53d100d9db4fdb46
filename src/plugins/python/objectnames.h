#pragma once

#include "interpreter/names/genericscriptedobjectmap.h"

namespace Tamrix::PythonPlugin {

/// Object names that are variables of a Python module, as shared/scripts/names.py.
class PythonObjectMap final : public GenericScriptedObjectMap {
public:
    explicit PythonObjectMap(const QString& path);

protected:
    ScriptArgument::Map scriptVariables() override;
    bool runScript(const QString& text) override;
};

}  // namespace Tamrix::PythonPlugin
