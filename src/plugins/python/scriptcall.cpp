#include "plugins/python/scriptcall.h"

#include "plugins/python/conversion.h"
#include "plugins/python/exceptions.h"
#include "plugins/python/methodtype.h"
#include "plugins/python/pythonargument.h"
#include "plugins/python/pythondebugger.h"

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

void raiseObjectError(const ObjectError& error) {
    switch (error.kind) {
        case ObjectError::Kind::NoMember:
            PyErr_SetString(PyExc_AttributeError, error.text.toUtf8().constData());
            break;
        case ObjectError::Kind::BadArgument:
            PyErr_SetString(PyExc_TypeError, error.text.toUtf8().constData());
            break;
        case ObjectError::Kind::NotFound:
            raiseScriptError(ScriptContext::LookupError, error.text);
            break;
        case ObjectError::Kind::Failed:
            raiseScriptError(ScriptContext::GeneralError, error.text);
            break;
    }
    if (PythonInterpreter* const interpreter = PythonInterpreter::active())
        interpreter->debugger().errorRaised();
}

PyRef pythonValue(const SharedPtr<ScriptArgument>& value) {
    return PyRef::borrow(static_cast<const PythonArgument*>(value.get())->object());
}

PyRef pythonValue(const Member& member) {
    const auto* const value = std::get_if<SharedPtr<ScriptArgument>>(&member);
    return value ? pythonValue(*value) : MethodHolder::wrap(std::get<1>(member));
}

PyRef pythonValue(const QString& text) {
    return toPyString(text);
}

PyRef pythonValue(const QStringList& texts) {
    return toPyList(texts);
}

CallArguments callArguments(PyObject* tuple, PyObject* named) {
    CallArguments arguments;
    const Py_ssize_t count = PyTuple_GET_SIZE(tuple);
    arguments.positional.reserve(static_cast<std::size_t>(count));
    for (Py_ssize_t index = 0; index < count; ++index)
        arguments.positional.push_back(
            new PythonArgument(PyRef::borrow(PyTuple_GET_ITEM(tuple, index))));
    PyObject* key = nullptr;
    PyObject* value = nullptr;
    Py_ssize_t position = 0;
    while (named && PyDict_Next(named, &position, &key, &value))
        arguments.named.emplace_back(fromPyString(key), new PythonArgument(PyRef::borrow(value)));
    return arguments;
}

}  // namespace Tamrix::PythonPlugin
