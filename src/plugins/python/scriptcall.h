#pragma once

#include <QString>

#include "interpreter/objects/members.h"
#include "plugins/python/pyref.h"
#include "plugins/python/pythoninterpreter.h"

namespace Tamrix::PythonPlugin {

// What all ways from a script into the library have in common.

/// Raises that `function` was called from elsewhere than a running test script.
void raiseRefusedCall(const QString& function);
/// Raises that `function` threw an exception with this text.
void raiseNativeException(const QString& function, const QString& text);
/// Raises Python's exception for the kind of error. The debugger may stop there.
void raiseObjectError(const ObjectError& error);

/// The Python object of a value.
PyRef pythonValue(const SharedPtr<ScriptArgument>& value);
PyRef pythonValue(const Member& member);
PyRef pythonValue(const QString& text);
PyRef pythonValue(const QStringList& texts);

/// Arguments as the script wrote them; `named` may be null.
CallArguments callArguments(PyObject* tuple, PyObject* named);

/// Runs `work`, which uses an object in a context and gives an ObjectResult of what there is a
/// pythonValue() of: on the script's thread only, and with what the script has printed written.
/// Null with the error indicator set when it was refused or has failed. `function` gives the name
/// for messages.
template <typename Name, typename Work>
PyRef useObject(Name function, Work work) {
    PythonInterpreter* const interpreter = PythonInterpreter::active();
    if (!interpreter || !interpreter->isScriptThread()) {
        raiseRefusedCall(function());
        return {};
    }
    interpreter->output().flush();
    try {
        const auto result = work(interpreter->context());
        if (result)
            return pythonValue(*result);
        raiseObjectError(result.error());
    } catch (const PythonErrorSet&) {
        // The script gets the exception that is set.
    }
    return {};
}

}  // namespace Tamrix::PythonPlugin
