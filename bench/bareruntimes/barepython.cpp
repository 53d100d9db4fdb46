#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include "bareruntime.h"

namespace Tamrix::Bench {

namespace {

PyObject* nothing(PyObject*, PyObject*) {
    Py_RETURN_NONE;
}

PyObject* plus(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
    if (count != 2 || !PyLong_Check(arguments[0]) || !PyLong_Check(arguments[1])) {
        PyErr_SetString(PyExc_TypeError, "plus() takes two integers");
        return nullptr;
    }
    const long long left = PyLong_AsLongLong(arguments[0]);
    const long long right = PyLong_AsLongLong(arguments[1]);
    if (PyErr_Occurred())
        return nullptr;
    return PyLong_FromLongLong(left + right);
}

PyObject* now(PyObject*, PyObject*) {
    return PyLong_FromLongLong(nanosecondsNow());
}

PyObject* report(PyObject*, PyObject* arguments) {
    const char* what = nullptr;
    double nanoseconds = 0;
    if (!PyArg_ParseTuple(arguments, "sd", &what, &nanoseconds))
        return nullptr;
    keepReport(what, nanoseconds);
    Py_RETURN_NONE;
}

PyMethodDef s_functions[] = {
    {"nothing", nothing, METH_NOARGS, nullptr},
    {"plus", reinterpret_cast<PyCFunction>(reinterpret_cast<void*>(plus)), METH_FASTCALL, nullptr},
    {"now", now, METH_NOARGS, nullptr},
    {"report", report, METH_VARARGS, nullptr},
};

}  // namespace

void runBarePython(const char* script, const std::function<void()>& onStarted) {
    Py_Initialize();
    onStarted();
    // Where those of the test system are, so that a script finds them by the same way.
    PyObject* const builtins = PyEval_GetBuiltins();
    for (PyMethodDef& function : s_functions)
        PyDict_SetItemString(builtins, function.ml_name, PyCFunction_New(&function, nullptr));
    if (PyRun_SimpleString(script) != 0 || PyRun_SimpleString("main()") != 0)
        giveUp("The script has failed in Python");
}

}  // namespace Tamrix::Bench
