#pragma once

#include "interpreter/names/genericscriptedobjectmap.h"

namespace Tamrix::TclPlugin {

/// Object names that are variables in a namespace of a Tcl script, which is called as its file: of
/// shared/scripts/names.tcl those of "names".
class TclObjectMap final : public GenericScriptedObjectMap {
public:
    explicit TclObjectMap(const QString& path);

protected:
    ScriptArgument::Map scriptVariables() override;
};

}  // namespace Tamrix::TclPlugin
