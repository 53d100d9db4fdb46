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

    /// The module `tamrix`, with exceptions and value types.
    PyObject* module() const { return m_module.get(); }

    /// Adds a folder to the module path behind those that were added before, in front of Python's
    /// own. Returns an error text, empty on success.
    QString addToSearchPath(const QString& directory);
    /// Puts folders in front of those that were added before; each stands once.
    QString setSearchPath(const QStringList& directories);

    /// Undoes what the test case changed: module path, arguments, builtins, streams, hooks, the
    /// recursion limit, the environment's variables, handlers of signals, and every module that it imported or
    /// made and that is not of Python's library. Problems are printed to standard error.
    void restore();

private:
    PythonRuntime();
    void takeSnapshot();
    QString changeSearchPath(QStringList directories);
    void dropImportedModules();
    bool addTamrixModule();

    PyRef m_module;
    PyRef m_path;
    PyRef m_builtins;
    PyRef m_environment;
    PyRef m_modules;
    PyRef m_signalHandlers;
    int m_recursionLimit = 0;
    /// What was added to the front of sys.path.
    QStringList m_searchPath;
};

/// Makes the dictionary equal to the snapshot. Throws PythonErrorSet.
void restoreDictionary(PyObject* dictionary, PyObject* snapshot);

}  // namespace Tamrix::PythonPlugin
