#pragma once

// Python's header comes first: it sets feature macros.
#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <utility>

#include "interpreter/language/scripterrorset.h"

namespace Tamrix::PythonPlugin {

/// Owns one reference to a Python object; null when a call of the C API failed. The GIL is held by
/// whoever uses it.
class PyRef {
public:
    PyRef() = default;
    /// Takes over a new reference, as most calls of the C API return it.
    static PyRef steal(PyObject* object) {
        PyRef reference;
        reference.m_object = object;
        return reference;
    }
    /// Adds a reference of its own to an object that someone else holds.
    static PyRef borrow(PyObject* object) {
        Py_XINCREF(object);
        return steal(object);
    }
    PyRef(const PyRef& other) : m_object(other.m_object) { Py_XINCREF(m_object); }
    PyRef(PyRef&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    PyRef& operator=(PyRef other) noexcept {
        std::swap(m_object, other.m_object);
        return *this;
    }
    ~PyRef() { Py_XDECREF(m_object); }

    PyObject* get() const { return m_object; }
    /// Gives the reference away.
    PyObject* release() { return std::exchange(m_object, nullptr); }
    explicit operator bool() const { return m_object != nullptr; }

private:
    PyObject* m_object = nullptr;
};

/// Thrown where Python's error indicator is set and the error belongs to the script.
using PythonErrorSet = ScriptErrorSet;

/// The reference, or PythonErrorSet when the call that made it failed.
inline PyRef checked(PyObject* newReference) {
    if (!newReference)
        throw PythonErrorSet();
    return PyRef::steal(newReference);
}

/// The same for one that is a reference already.
inline PyRef checkedReference(PyRef reference) {
    return checked(reference.release());
}

inline void checked(int status) {
    if (status < 0)
        throw PythonErrorSet();
}

// Of what is an object or a reference to one, the object.
inline PyObject* borrowed(PyObject* object) {
    return object;
}
inline PyObject* borrowed(const PyRef& reference) {
    return reference.get();
}

}  // namespace Tamrix::PythonPlugin
