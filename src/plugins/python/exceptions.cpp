#include "plugins/python/exceptions.h"

#include <algorithm>
#include <iterator>

#include "plugins/python/conversion.h"

namespace Tamrix::PythonPlugin {

namespace {

/// In the order of ScriptFailure::Kind. They live for the process.
PyObject* s_classes[ScriptFailure::kindCount];

/// A class of our own, in the module `tamrix`, too; null with the error indicator set on failure.
PyObject* addClass(PyObject* module, const char* name, const char* description,
                   const PyRef& bases) {
    const QByteArray fullName = QByteArray("tamrix.") + name;
    PyObject* const made =
        bases ? PyErr_NewExceptionWithDoc(fullName.constData(), description, bases.get(), nullptr)
              : nullptr;
    return made && PyModule_AddObjectRef(module, name, made) == 0 ? made : nullptr;
}

}  // namespace

bool addExceptions(PyObject* module) {
    PyObject* const error = addClass(module, "Error", "A function of the test system failed",
                                     PyRef::borrow(PyExc_RuntimeError));
    if (!error)
        return false;
    PyObject* const classes[] = {
        error,
        addClass(module, "VerificationError", "A verdict failed that is to end the script",
                 PyRef::steal(PyTuple_Pack(2, error, PyExc_AssertionError))),
        addClass(module, "FatalError", "Ends the test case", PyRef::borrow(PyExc_BaseException)),
        addClass(module, "LookupError", "Something was not found in time",
                 PyRef::steal(PyTuple_Pack(2, error, PyExc_LookupError))),
        PyExc_AttributeError,
        PyExc_TypeError};
    std::copy(std::begin(classes), std::end(classes), s_classes);
    return std::all_of(std::begin(classes), std::end(classes),
                       [](PyObject* each) { return each != nullptr; });
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
