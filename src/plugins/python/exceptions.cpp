#include "plugins/python/exceptions.h"

#include <algorithm>
#include <iterator>

#include "plugins/python/conversion.h"

namespace Tamrix::PythonPlugin {

namespace {

using Kind = ScriptFailure::Kind;

/// The exception classes of our own. They live for the process.
struct OwnClass {
    Kind kind;
    const char* name;
    PyObject* type;
} s_own[] = {{Kind::General, "Error", nullptr},
             {Kind::Verification, "VerificationError", nullptr},
             {Kind::Fatal, "FatalError", nullptr},
             {Kind::Lookup, "LookupError", nullptr}};

PyObject*& own(Kind kind) {
    return std::find_if(std::begin(s_own), std::end(s_own),
                        [kind](const OwnClass& each) { return each.kind == kind; })
        ->type;
}

PyObject* classOf(Kind kind) {
    if (kind == Kind::NoMember)
        return PyExc_AttributeError;
    return kind == Kind::BadArgument ? PyExc_TypeError : own(kind);
}

}  // namespace

bool addExceptions(PyObject* module) {
    if (!own(Kind::General)) {
        const auto make = [](const char* name, const char* doc, const PyRef& bases) {
            return bases ? PyErr_NewExceptionWithDoc(name, doc, bases.get(), nullptr) : nullptr;
        };
        PyObject* const error = make("tamrix.Error", "A function of the test system failed",
                                     PyRef::borrow(PyExc_RuntimeError));
        if (!error)
            return false;
        own(Kind::General) = error;
        own(Kind::Lookup) = make("tamrix.LookupError", "Something was not found in time",
                                 PyRef::steal(PyTuple_Pack(2, error, PyExc_LookupError)));
        own(Kind::Verification) =
            make("tamrix.VerificationError", "A verdict failed that is to end the script",
                 PyRef::steal(PyTuple_Pack(2, error, PyExc_AssertionError)));
        own(Kind::Fatal) =
            make("tamrix.FatalError", "Ends the test case", PyRef::borrow(PyExc_BaseException));
    }
    for (const OwnClass& each : s_own) {
        if (!each.type || PyModule_AddObjectRef(module, each.name, each.type) < 0)
            return false;
    }
    return true;
}

PyRef raiseException(ScriptFailure::Kind kind, const QString& message) {
    const PyRef text = toPyString(message);
    PyRef exception = PyRef::steal(text ? PyObject_CallOneArg(classOf(kind), text.get()) : nullptr);
    if (exception)
        PyErr_SetObject(classOf(kind), exception.get());
    return exception;
}

}  // namespace Tamrix::PythonPlugin
