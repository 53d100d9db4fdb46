#pragma once

#include <jsapi.h>

#include <QString>
#include <functional>

namespace Tamrix::JavaScriptPlugin {

/// A value as text, as results and `console.log` show it: a text itself, lists and objects with
/// what is in them, an error with its name, everything else as the language writes it. Code of the
/// script runs only for an object that has a `toString` of its own; what it throws shows as
/// "<unprintable NAME object>", and what ends the script passes as ScriptErrorSet.
QString textOf(JS::HandleValue value);

/// The language's name of the value's type: that of `typeof`, "null", or the class of an object.
QString typeNameOf(JS::HandleValue value);

/// A text as code has it, in single quotes.
QString quoted(const QString& text);

/// "[Function: name]".
QString functionText(JS::HandleObject function);

/// An error's name and message, without what led to it.
QString errorText(JS::HandleObject error);

/// The name of the class that made an object; empty without one. Runs no code of the script.
QString classNameOf(JS::HandleObject object);

}  // namespace Tamrix::JavaScriptPlugin
