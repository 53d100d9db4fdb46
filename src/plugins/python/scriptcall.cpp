#include "plugins/python/scriptcall.h"

#include "plugins/python/conversion.h"
#include "plugins/python/exceptions.h"
#include "plugins/python/methodtype.h"
#include "plugins/python/pythonargument.h"
#include "plugins/python/pythondebugger.h"
#include "plugins/python/pythoninterpreter.h"

namespace Tamrix::PythonPlugin {

void setFailure(const ScriptFailure& failure) {
    const PyRef exception = raiseException(failure.kind, failure.text);
    PythonInterpreter* const interpreter = PythonInterpreter::active();
    if (exception && interpreter && interpreter->isScriptThread())
        interpreter->noticeFailure(exception, failure);
}

void raiseFailure(const ScriptFailure& failure) {
    setFailure(failure);
    PythonInterpreter* const interpreter = PythonInterpreter::active();
    if (interpreter && interpreter->isScriptThread())
        interpreter->debugger().errorRaised();
}

PyRef pythonValue(const SharedPtr<ScriptArgument>& value) {
    return PyRef::borrow(objectOf(value));
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

PyRef callObject(PyObject* callable, const CallArguments& arguments) {
    const PyRef tuple = checked(PyTuple_New(static_cast<Py_ssize_t>(arguments.positional.size())));
    for (std::size_t index = 0; index < arguments.positional.size(); ++index)
        PyTuple_SET_ITEM(tuple.get(), static_cast<Py_ssize_t>(index),
                         pythonValue(arguments.positional[index]).release());
    const PyRef named = checked(PyDict_New());
    for (const auto& [parameter, value] : arguments.named)
        checked(PyDict_SetItem(named.get(), checkedReference(toPyString(parameter)).get(),
                               pythonValue(value).get()));
    return checked(PyObject_Call(callable, tuple.get(), named.get()));
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
