#pragma once

#include <QVariant>

#include "base/export.h"
#include "base/outcome.h"
#include "base/shared.h"
#include "interpreter/bridge/scriptargument.h"
#include "platform/objectmodel/object.h"

namespace Tamrix {

class ScriptContext;

// Values on their way between a script and an application. Each direction stands here once, for all
// languages. Script thread only.

/// What a script gets for a property's value or for the result of a call: for an object with a
/// value the language's own bool, number, text, bytes, date, list or map, null for a null pointer
/// and for the result of a method that has none, the object itself for all others.
TAMRIX_EXPORT SharedPtr<ScriptArgument> valueOfObject(ScriptContext* context,
                                                      SharedPtr<Object> object);

/// The same for a bare value; objects may stand in it as SharedPtr<Object>. A value that no
/// language has becomes its text.
TAMRIX_EXPORT SharedPtr<ScriptArgument> valueOfVariant(ScriptContext* context,
                                                       const QVariant& value);

/// A script's value as an argument of a call to the application: an object as itself, everything
/// else as a value. Fails when it is nothing that an application can take.
TAMRIX_EXPORT Outcome<SharedPtr<Object>> objectOfValue(const SharedPtr<ScriptArgument>& value);

/// The same for an argument of a known type: a number becomes one of that type, also a text.
TAMRIX_EXPORT Outcome<SharedPtr<Object>> objectOfValue(const SharedPtr<ScriptArgument>& value,
                                                       const QString& typeName);

}  // namespace Tamrix
