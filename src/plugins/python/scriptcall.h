#pragma once

#include <QString>
#include <exception>

#include "interpreter/bridge/remoteobjectmodelholder.h"
#include "platform/objectmodel/inspector.h"
#include "plugins/python/pyref.h"
#include "plugins/python/pythoninterpreter.h"

namespace Tamrix::PythonPlugin {

// What all ways from a script into the library have in common.

/// Raises that `function` was called from elsewhere than a running test script.
void raiseRefusedCall(const QString& function);
/// Raises that `function` threw an exception with this text.
void raiseNativeException(const QString& function, const QString& text);
/// Raises the inspector's last error, as a LookupError when it says so.
void raiseLastError();

/// Runs `work`, which asks the application and returns a PyRef, in the way in which a native
/// function is run: on the script's thread only, with the runner's object model held and what the
/// script has printed written. `function` names it in messages. Null with the error indicator set
/// when it was refused or has failed.
template <typename Work>
PyRef askApplication(const QString& function, Work work) {
    PythonInterpreter* const interpreter = PythonInterpreter::active();
    if (!interpreter || !interpreter->isScriptThread()) {
        raiseRefusedCall(function);
        return {};
    }
    interpreter->output().flush();
    try {
        const RemoteObjectModelHolder holder(interpreter->runner());
        return work(*interpreter);
    } catch (const PythonErrorSet&) {
        return {};
    } catch (const std::exception& exception) {
        raiseNativeException(function, QString::fromUtf8(exception.what()));
        return {};
    }
}

}  // namespace Tamrix::PythonPlugin
