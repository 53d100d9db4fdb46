#pragma once

#include <QString>
#include <QStringList>

#include "interpreter/language/objectcalls.h"
#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

// What all ways from a script into the library have in common.

/// Raises Python's exception for the failure.
void setFailure(const ScriptFailure& failure);
/// The same, where the script has called; the debugger may stop there.
void raiseFailure(const ScriptFailure& failure);

/// The Python object of a value.
PyRef pythonValue(const SharedPtr<ScriptArgument>& value);
PyRef pythonValue(const Member& member);
PyRef pythonValue(const QString& text);
PyRef pythonValue(const QStringList& texts);

/// Calls a callable with values of a script. Throws PythonErrorSet.
PyRef callObject(PyObject* callable, const CallArguments& arguments);

/// Arguments as the script wrote them; `named` may be null.
CallArguments callArguments(PyObject* tuple, PyObject* named);

/// The Python object of what `use` gives, something that there is a pythonValue() of or a
/// ScriptFailure. Null with the error indicator set when it was refused or has failed.
template <typename Use>
PyRef useObject(Use use) {
    try {
        const auto result = use();
        if (result)
            return pythonValue(*result);
        raiseFailure(result.error());
    } catch (const PythonErrorSet&) {
        // The script gets the exception that is set.
    }
    return {};
}

}  // namespace Tamrix::PythonPlugin
