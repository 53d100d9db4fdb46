#include "plugins/python/exceptions.h"

#include "plugins/python/conversion.h"

namespace Tamrix::PythonPlugin {

namespace {

/// In the order of ScriptFailure::Kind. They live for the process.
PyObject* s_classes[ScriptFailure::kindCount];

}  // namespace

void findExceptions(PyObject* module) {
    PyObject** next = s_classes;
    for (const char* name : {"Error", "VerificationError", "FatalError", "LookupError"})
        *next++ = checked(PyObject_GetAttrString(module, name)).release();
    *next++ = PyExc_AttributeError;
    *next = PyExc_TypeError;
}

PyRef raiseException(ScriptFailure::Kind kind, const QString& message) {
    const PyRef text = toPyString(message);
    PyObject* const type = ScriptFailure::of(kind, s_classes);
    PyRef exception = PyRef::steal(text ? PyObject_CallOneArg(type, text.get()) : nullptr);
    if (exception)
        PyErr_SetObject(type, exception.get());
    return exception;
}

}  // namespace Tamrix::PythonPlugin
