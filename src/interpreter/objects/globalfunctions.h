#pragma once

#include <QString>
#include <QStringList>

#include "base/export.h"
#include "interpreter/bridge/scriptargument.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/objects/objectcall.h"
#include "interpreter/objects/objecterror.h"

namespace Tamrix {

class ObjectModel;

// The methods of an application's global class, which scripts call without an object: click(object)
// and the like. A call looks the function up in the application that is the current one then.
// Script thread only.

/// Names of the functions that scripts can know: those that all applications have and, when `model`
/// is not null, those of its global class. Each once.
TAMRIX_EXPORT QStringList globalFunctionNames(ObjectModel* model);

/// Help: the function with its parameters, and what it does, as the current application tells it.
TAMRIX_EXPORT QString globalFunctionHelp(const QString& name);

/// Calls the function; a first argument that is an object may be given by its name, for which the
/// runner waits. The call becomes an action of the results.
TAMRIX_EXPORT ObjectResult<SharedPtr<ScriptArgument>> callGlobalFunction(
    ScriptContext& context, const QString& name, const CallArguments& arguments);

}  // namespace Tamrix
