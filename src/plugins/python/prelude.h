#pragma once

#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

// What of the plug-in is written in Python: the files of prelude/, "bdd" for prelude/bdd.py. Their
// lines are none of scripts: they have no path. All of these throw PythonErrorSet.

/// Runs a file with these globals.
void runPrelude(const char* file, PyObject* globals);

/// What a file defines under the name; borrowed. A file of which names are asked for is run once,
/// and lives for the process. It has the ownFunctions(), and builtins that no script changes.
PyObject* ownName(const char* file, const char* name);

/// Functions of the library for the plug-in's own Python code, as it is given them.
PyMethodDef* ownFunctions();

/// Room for the plug-in's own Python code where a script has come to the limit of its recursion.
class RecursionRoom {
public:
    RecursionRoom() { Py_SetRecursionLimit(m_limit + further); }
    ~RecursionRoom() {
        // Unless code of the script has changed it meanwhile.
        if (Py_GetRecursionLimit() == m_limit + further)
            Py_SetRecursionLimit(m_limit);
    }
    RecursionRoom(const RecursionRoom&) = delete;
    RecursionRoom& operator=(const RecursionRoom&) = delete;

private:
    static constexpr int further = 200;

    int m_limit = Py_GetRecursionLimit();
};

/// What a function of a file gives. Null stands for an argument that could not be made.
template <typename... Arguments>
PyRef callOwn(const char* file, const char* name, const Arguments&... arguments) {
    PyObject* const function = ownName(file, name);
    if (!(... && static_cast<bool>(arguments)))
        throw PythonErrorSet();
    return checked(PyObject_CallFunctionObjArgs(function, borrowed(arguments)..., nullptr));
}

}  // namespace Tamrix::PythonPlugin
