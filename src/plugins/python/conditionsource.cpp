#include "plugins/python/conditionsource.h"

#include <QStringList>

#include "plugins/python/conversion.h"
#include "plugins/python/nativefunction.h"
#include "plugins/python/prelude.h"

namespace Tamrix::PythonPlugin {

namespace {

PyObject* tellIsNative(PyObject*, PyObject* object) {
    return PyBool_FromLong(isNativeFunction(object) ? 1 : 0);
}

PyMethodDef s_isNative = {"is_native_function", tellIsNative, METH_O, nullptr};

/// The function `explain` of prelude/condition.py.
PyObject* explainer() {
    // Made when a condition has failed for the first time, and kept for the process.
    static PyObject* s_explain = nullptr;
    if (s_explain)
        return s_explain;
    const PyRef names = checked(PyDict_New());
    const PyRef isNative = checked(PyCFunction_New(&s_isNative, nullptr));
    checked(PyDict_SetItemString(names.get(), s_isNative.ml_name, isNative.get()));
    if (!runPrelude("condition", names.get()))
        throw PythonErrorSet();
    s_explain = Py_NewRef(PyDict_GetItemString(names.get(), "explain"));
    return s_explain;
}

QString explain(PyFrameObject* frame, const char* parameter) {
    const PyRef told = checked(
        PyObject_CallFunction(explainer(), "Os", reinterpret_cast<PyObject*>(frame), parameter));
    if (told.get() == Py_None)
        return {};
    QStringList lines(fromPyString(PyTuple_GET_ITEM(told.get(), 0)));
    PyObject* const values = PyTuple_GET_ITEM(told.get(), 1);
    for (Py_ssize_t index = 0; index < PyList_GET_SIZE(values); ++index) {
        PyObject* const row = PyList_GET_ITEM(values, index);
        lines.append(fromPyString(PyTuple_GET_ITEM(row, 0)) + ": " +
                     representation(PyTuple_GET_ITEM(row, 1)));
    }
    return lines.join('\n');
}

}  // namespace

QString explainCall(const char* parameter, CodeFiles& files) {
    PyFrameObject* const frame = PyEval_GetFrame();
    if (!frame || files.path(frameFileName(reinterpret_cast<PyObject*>(frame)).get()).isNull())
        return {};
    try {
        return explain(frame, parameter);
    } catch (const PythonErrorSet&) {
        clearOrdinaryError();
        return {};
    }
}

}  // namespace Tamrix::PythonPlugin
