#pragma once

#include "interpreter/objects/objectidentity.h"
#include "plugins/ruby/holder.h"

namespace Tamrix::RubyPlugin {

/// Makes the class Tamrix::Object, an object of an application for scripts: what the application
/// knows of it are its methods. What needs no C++ of it stands in prelude/objects.rb.
void defineObjectClass(VALUE module, VALUE native);

/// nil for null.
VALUE wrapObject(const SharedPtr<Object>& object);

}  // namespace Tamrix::RubyPlugin
