#pragma once

#include "interpreter/objects/objectidentity.h"
#include "plugins/ruby/holder.h"

namespace Tamrix::RubyPlugin {

/// Makes the class Tamrix::Object, an object of an application for scripts: what the application
/// knows of it are its methods. What needs no C++ of it stands in prelude/objects.rb.
void defineObjectClass(VALUE module, VALUE native);

/// Throws a TypeError for a value that is none.
SharedPtr<Object> givenObject(VALUE value);

/// nil for null.
VALUE wrapObject(const SharedPtr<Object>& object);

}  // namespace Tamrix::RubyPlugin
