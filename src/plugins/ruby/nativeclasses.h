#pragma once

#include <QString>

#include "interpreter/bridge/nativescripttype.h"
#include "plugins/ruby/rubyapi.h"

namespace Tamrix {
class ScriptContext;
}

namespace Tamrix::RubyPlugin {

/// Makes the base of all classes that are made from native ones.
void defineNativeBase(VALUE module);

/// Makes a Ruby class in `module` from the description of a native one. The same description gives
/// the same class.
VALUE defineNativeClass(VALUE module, const ScriptContext& context, const QString& name,
                        void* typeId, const NativeScriptType& type);

/// An object of the class made for its type, or for the next base class that has one.
VALUE wrapNative(const SharedPtr<NativeScriptObject>& object);

}  // namespace Tamrix::RubyPlugin
