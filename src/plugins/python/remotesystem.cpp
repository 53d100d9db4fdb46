#include "plugins/python/remotesystem.h"

#include "plugins/python/prelude.h"

namespace Tamrix::PythonPlugin {

bool addRemoteSystem(PyObject* module) {
    PyObject* const names = PyModule_GetDict(module);
    PyObject* const type =
        runPrelude("remotesystem", names) ? PyDict_GetItemString(names, "RemoteSystem") : nullptr;
    return type && PyDict_SetItemString(PyEval_GetBuiltins(), "RemoteSystem", type) == 0;
}

}  // namespace Tamrix::PythonPlugin
