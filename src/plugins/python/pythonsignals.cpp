#include "plugins/python/pythonsignals.h"

namespace Tamrix::PythonPlugin {

bool setSignalHandler(int signal, PyMethodDef& definition) {
    const PyRef module = PyRef::steal(PyImport_ImportModule("signal"));
    const PyRef handler = PyRef::steal(module ? PyCFunction_New(&definition, nullptr) : nullptr);
    const PyRef previous = PyRef::steal(
        handler ? PyObject_CallMethod(module.get(), "signal", "iO", signal, handler.get())
                : nullptr);
    if (!previous)
        PyErr_Clear();
    return bool(previous);
}

}  // namespace Tamrix::PythonPlugin
