#pragma once

#include <QString>

#include "base/shared.h"
#include "interpreter/bridge/scriptargument.h"
#include "interpreter/bridge/scriptcontext.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/object.h"

namespace Tamrix {

// How functions that take objects read their arguments.

/// toInt() of the value, kept within the range of int; `missing` for null.
int intOf(const SharedPtr<ScriptArgument>& argument, int missing = 0);

/// A number of milliseconds rounded to the nearest integer, halves away from zero.
int roundedMilliseconds(double milliseconds);

/// Whether the value is an object or names one.
bool isObjectOrName(const SharedPtr<ScriptArgument>& argument);

/// Reads the time-out of a wait for an object, which may be missing; false with the error set when
/// it is none.
bool readTimeout(ScriptContext* context, const SharedPtr<ScriptArgument>& argument, int* timeout);

/// The text of an argument, empty for null.
QString optionalText(const SharedPtr<ScriptArgument>& argument);

/// The object of an argument that is an object or names one; a name is looked up at once. Null,
/// with the error "Can't find object named '...'" set, when there is none. `function` is the
/// script's.
SharedPtr<Object> findObjectOf(ScriptContext* context, const SharedPtr<ScriptArgument>& argument,
                               const QString& function);

/// Runs `ask`, which asks the application for what may well be empty: only the inspector's last
/// error tells a failure from that, and it becomes the error of the context. Without a failure the
/// last error stays what it was.
template <typename Ask>
void reportFailureOf(ScriptContext* context, Ask ask) {
    Inspector* const inspector = Inspector::self();
    const QString before = inspector->lastError();
    inspector->setLastError(QString());
    ask();
    const QString error = inspector->lastError();
    if (error.isEmpty())
        inspector->setLastError(before);
    else
        context->setError(error);
}

}  // namespace Tamrix
