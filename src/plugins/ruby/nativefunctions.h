#pragma once

#include <QString>

#include "interpreter/language/nativefunction.h"
#include "plugins/ruby/rubyapi.h"

namespace Tamrix::RubyPlugin {

/// The arguments of a call as the script wrote them. To be asked in a function that Ruby has
/// called, before anything else is called: a Hash at the end may be what stands by names.
CallArguments givenArguments(int count, const VALUE* arguments);

/// Raises Ruby's exception for what the library could not do.
[[noreturn]] void raiseFailure(const ScriptFailure& failure);
/// The value of a result, nil for one without.
VALUE valueOrRaise(const ScriptResult& result);

using Entry = VALUE (*)(int count, VALUE* arguments, VALUE self);

/// What goes in front of the arguments that the script writes.
enum class Front {
    Nothing,
    Self  ///< the receiver, as an argument
};

/// The C function that Ruby calls for a native one. It lives for the process; the same function
/// gives the same one. Throws std::length_error when there are too many.
Entry entryOf(const NativeFunction& function, Front front = Front::Nothing);

/// The names by which scripts call a function: the library's, and that in Ruby's own style.
QStringList rubyNames(const QString& name);

/// Functions that every script can call by name alone.
void defineGlobal(const QString& name, Entry entry);
/// Functions of an object, as test.compare.
void defineSingleton(VALUE object, const QString& name, Entry entry);
void defineMethod(VALUE rubyClass, const QString& name, Entry entry);

/// Makes names of the current application's global functions known, but for those that are taken.
void publishGlobalFunctions(const QStringList& names);

}  // namespace Tamrix::RubyPlugin
