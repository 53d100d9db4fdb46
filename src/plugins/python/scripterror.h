#pragma once

#include "interpreter/language/languageinterpreter.h"
#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// Takes the exception that is set and keeps it aside; sets it again at the end, unless somebody
/// has taken it from here.
class ErrorAside {
public:
    ErrorAside();
    ~ErrorAside();
    ErrorAside(const ErrorAside&) = delete;
    ErrorAside& operator=(const ErrorAside&) = delete;

    /// Null when none was set.
    PyObject* exception() const { return m_exception.get(); }
    /// May be null.
    PyObject* traceback() const { return m_traceback.get(); }
    /// It is not set again.
    void forget() { m_exception = PyRef(); }

private:
    PyRef m_exception;
    PyRef m_traceback;
};

/// Tells a person of an exception, whose traceback may be null. Of the call stack, lines of
/// Python's library are left out; when no line is in a script, the innermost line stands alone. An
/// exit is a sys.exit() without a failure.
ScriptError scriptErrorOf(PyObject* exception, PyObject* traceback);

/// The same of the exception that is set, which is taken away.
ScriptError takeScriptError();

}  // namespace Tamrix::PythonPlugin
