#pragma once

#include <QString>
#include <memory>

#include "interpreter/language/valuetexts.h"
#include "plugins/javascript/engine.h"

namespace Tamrix::JavaScriptPlugin {

// Lists and objects are written with what is in them, an error with its name, everything else as
// the language writes it.

/// A value as results and `console.log` show it: a text itself, all others whole. An object with a
/// `toString` of its own is asked; what that throws shows as "<unprintable NAME object>", and what
/// ends the script passes as ScriptErrorSet.
QString textOf(JS::HandleValue value);

/// For a person who looks at a script that stands still: runs no code of the script, and tells what
/// values consist of: elements of an array or a Set, entries of a Map, properties of any other
/// object, in their order.
std::unique_ptr<ValueTexts> makeLimitedTexts();

/// The language's name of the value's type: that of `typeof`, "null", or the class of an object.
QString typeNameOf(JS::HandleValue value);

/// A text as code has it, in single quotes.
QString quoted(const QString& text);

}  // namespace Tamrix::JavaScriptPlugin
