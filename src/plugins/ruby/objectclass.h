#pragma once

#include "interpreter/objects/objectidentity.h"
#include "plugins/ruby/holder.h"

namespace Tamrix::RubyPlugin {

/// Makes the class Tamrix::Object, an object of an application for scripts: what the application
/// knows of it are its methods. Some stand in prelude/objects.rb.
void defineObjectClass(VALUE module);

/// nil for null.
VALUE wrapObject(const SharedPtr<Object>& object);

}  // namespace Tamrix::RubyPlugin
