#include "plugins/python/exceptions.h"

#include <array>

#include "plugins/python/conversion.h"

namespace Tamrix::PythonPlugin {

namespace {

/// The exception class of each kind of script error. They live for the process.
std::array<PyObject*, 4> s_classes{};

}  // namespace

bool addExceptions(PyObject* module) {
    if (!s_classes[ScriptContext::GeneralError]) {
        const auto make = [](const char* name, const char* doc, const PyRef& bases) {
            return bases ? PyErr_NewExceptionWithDoc(name, doc, bases.get(), nullptr) : nullptr;
        };
        PyObject* const error = make("tamrix.Error", "A function of the test system failed",
                                     PyRef::borrow(PyExc_RuntimeError));
        if (!error)
            return false;
        s_classes[ScriptContext::GeneralError] = error;
        s_classes[ScriptContext::LookupError] =
            make("tamrix.LookupError", "Something was not found in time",
                 PyRef::steal(PyTuple_Pack(2, error, PyExc_LookupError)));
        s_classes[ScriptContext::VerificationError] =
            make("tamrix.VerificationError", "A verdict failed that is to end the script",
                 PyRef::steal(PyTuple_Pack(2, error, PyExc_AssertionError)));
        s_classes[ScriptContext::FatalError] =
            make("tamrix.FatalError", "Ends the test case", PyRef::borrow(PyExc_BaseException));
    }
    const char* const names[] = {"Error", "VerificationError", "FatalError", "LookupError"};
    for (std::size_t type = 0; type < s_classes.size(); ++type) {
        if (!s_classes[type] || PyModule_AddObjectRef(module, names[type], s_classes[type]) < 0)
            return false;
    }
    return true;
}

PyRef raiseScriptError(ScriptContext::ErrorType type, const QString& message) {
    const PyRef text = toPyString(message);
    PyRef exception =
        PyRef::steal(text ? PyObject_CallOneArg(s_classes[type], text.get()) : nullptr);
    if (exception)
        PyErr_SetObject(s_classes[type], exception.get());
    return exception;
}

}  // namespace Tamrix::PythonPlugin
