#include "plugins/python/scripterror.h"

#include "plugins/python/conversion.h"
#include "plugins/python/prelude.h"
#include "plugins/python/pythoninterpreter.h"

namespace Tamrix::PythonPlugin {

ErrorAside::ErrorAside() {
    PyObject* type = nullptr;
    PyObject* value = nullptr;
    PyObject* traceback = nullptr;
    PyErr_Fetch(&type, &value, &traceback);
    PyErr_NormalizeException(&type, &value, &traceback);
    Py_XDECREF(type);
    m_exception = PyRef::steal(value);
    m_traceback = PyRef::steal(traceback);
}

ErrorAside::~ErrorAside() {
    if (!m_exception)
        return;
    auto* const type = reinterpret_cast<PyObject*>(Py_TYPE(m_exception.get()));
    PyErr_Restore(Py_NewRef(type), m_exception.release(), m_traceback.release());
}

ScriptError scriptErrorOf(PyObject* exception, PyObject* traceback) {
    ScriptError error;
    error.message = QString::fromUtf8(Py_TYPE(exception)->tp_name);
    try {
        const RecursionRoom room;
        const PyRef told = callOwn("errors", "tell", exception, traceback ? traceback : Py_None);
        const auto at = [&](int place) { return PyTuple_GET_ITEM(told.get(), place); };
        error.message = fromPyString(at(0));
        PyObject* const stack = at(1);
        for (Py_ssize_t index = 0; index < PyList_GET_SIZE(stack); ++index) {
            PyObject* const line = PyList_GET_ITEM(stack, index);
            error.callStack.emplace_back(
                fromPyString(PyTuple_GET_ITEM(line, 0)),
                static_cast<int>(PyLong_AsLong(PyTuple_GET_ITEM(line, 1))));
        }
        error.outermostLine = static_cast<int>(PyLong_AsLong(at(2)));
        error.isExit = at(3) == Py_True;
        error.isPendingStep = at(4) == Py_True;
    } catch (const PythonErrorSet&) {
        // There is no memory for more than the name, or Ctrl-C has come in between.
        PyErr_Clear();
    }
    if (PythonInterpreter* const interpreter = PythonInterpreter::active())
        interpreter->failures().complete(exception, &error);
    return error;
}

ScriptError takeScriptError() {
    ErrorAside taken;
    const PyRef exception = PyRef::borrow(taken.exception());
    taken.forget();
    return exception ? scriptErrorOf(exception.get(), taken.traceback()) : ScriptError();
}

}  // namespace Tamrix::PythonPlugin
