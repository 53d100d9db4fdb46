#pragma once

#include <QString>
#include <exception>

#include "base/export.h"
#include "interpreter/bridge/callarguments.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/remoteobjectmodelholder.h"
#include "interpreter/bridge/scriptargument.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/objects/objecterror.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/object.h"

namespace Tamrix {

// What all ways from a script to an application's objects have in common. Script thread only.

/// Runs `work`, which uses an object and gives an ObjectResult, in the way in which a native
/// function is run: with the runner's object model taken. A std::exception becomes an error that
/// names the function; what else a language throws passes. `function` gives the name for messages.
template <typename Name, typename Work>
auto askApplication(Name function, Work work) -> decltype(work()) {
    try {
        const RemoteObjectModelHolder holder(Interpreter::currentRunner());
        return work();
    } catch (const std::exception& exception) {
        return objectError(ObjectError::Kind::Failed,
                           function() + "() failed: " + QString::fromUtf8(exception.what()));
    }
}

/// Why an application could not do what was asked.
TAMRIX_EXPORT tl::unexpected<ObjectError> applicationError(const Failure& failure);

/// What the script gets for a property's value or the result of a call.
TAMRIX_EXPORT ObjectResult<SharedPtr<ScriptArgument>> scriptValue(
    ScriptContext& context, const Outcome<SharedPtr<Object>>& value);

/// The values from the one with this index on as objects of a call. An error names the function and
/// the place of a value that no application takes.
TAMRIX_EXPORT ObjectResult<ObjectList> objectsOfArguments(const QString& function,
                                                          const ScriptArgument::List& values,
                                                          size_t first = 0);

/// For a function whose parameters have no names: an error when there are arguments by name.
TAMRIX_EXPORT ObjectResult<void> refuseNamed(const QString& function,
                                             const CallArguments& arguments);

}  // namespace Tamrix
