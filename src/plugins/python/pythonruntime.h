#pragma once

#include <QString>
#include <QStringList>

#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// Python's runtime: started once, alive to the end of the process, since extension modules can't
/// be loaded a second time. What a test case leaves behind in it is undone instead.
class PythonRuntime {
public:
    /// Starts the runtime on first use. Throws std::runtime_error with Python's words when it can't
    /// be started.
    static PythonRuntime& self();

    /// Adds a folder to the module path behind those that were added before, in front of Python's
    /// own. Returns an error text, empty on success.
    QString addToSearchPath(const QString& directory);
    /// Puts folders in front of those that were added before; each stands once.
    QString setSearchPath(const QStringList& directories);

    /// Undoes what the test case changed: module path, arguments, builtins, streams, hooks, the
    /// recursion limit, the environment's variables, handlers of signals, and every module that it
    /// imported or made and that is not of Python's library. Problems are printed to standard
    /// error.
    void restore();

private:
    PythonRuntime();
    /// Gives the module `tamrix` what it has.
    void fillModule(PyObject* module);
    /// `method` is one of State's, in prelude/state.py.
    QString changeSearchPath(const char* method, const PyRef& folders);

    /// How everything was before the first script.
    PyRef m_state;
    int m_recursionLimit = 0;
};

}  // namespace Tamrix::PythonPlugin
