#pragma once

#include "interpreter/names/genericscriptedobjectmap.h"

namespace Tamrix::RubyPlugin {

/// The module that a file with names of objects has: "ShopNames" for shop_names.rb.
QString moduleOfFile(const QString& path);

/// Object names that are constants of a Ruby module, as `Names::SAVE_BUTTON` in
/// shared/scripts/names.rb. The module is called as its file is. Constants of the top level are
/// names as well, for a script that has no such module.
class RubyObjectMap final : public GenericScriptedObjectMap {
public:
    explicit RubyObjectMap(const QString& path);

protected:
    ScriptArgument::Map scriptVariables() override;
};

}  // namespace Tamrix::RubyPlugin
