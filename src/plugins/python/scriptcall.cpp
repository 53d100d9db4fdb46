#include "plugins/python/scriptcall.h"

#include "plugins/python/exceptions.h"

namespace Tamrix::PythonPlugin {

void raiseRefusedCall(const QString& function) {
    raiseScriptError(
        ScriptContext::GeneralError,
        function + (PythonInterpreter::active()
                        ? "() was called from another thread than the test script's: only that "
                          "thread may use the functions of the test system"
                        : "() was called while no test case runs"));
}

void raiseNativeException(const QString& function, const QString& text) {
    raiseScriptError(ScriptContext::GeneralError, function + "() failed: " + text);
}

void raiseLastError() {
    const Inspector* const inspector = Inspector::self();
    raiseScriptError(
        inspector->lastErrorIsLookup() ? ScriptContext::LookupError : ScriptContext::GeneralError,
        inspector->lastError());
}

}  // namespace Tamrix::PythonPlugin
