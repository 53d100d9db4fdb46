#pragma once

#include <new>

#include "base/shared.h"
#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// A Python object that holds a SharedPtr<T>. Each T has one Python base type, made on first use by
/// makeType(); Python classes may derive from it.
template <typename T>
struct Holder {
    PyObject_HEAD SharedPtr<T> value;

    /// The Python type of all holders of T; null until makeType().
    static PyTypeObject* s_type;

    /// Makes the type from a name, flags and further slots, the last one {0, nullptr}. Null with
    /// the error indicator set on failure. `flags` are added to Py_TPFLAGS_DEFAULT.
    static PyTypeObject* makeType(const char* name, const PyType_Slot* furtherSlots,
                                  unsigned int flags = Py_TPFLAGS_DISALLOW_INSTANTIATION) {
        if (s_type)
            return s_type;
        PyType_Slot slots[16] = {{Py_tp_dealloc, reinterpret_cast<void*>(deallocate)}};
        int used = 1;
        for (const PyType_Slot* slot = furtherSlots; slot->slot != 0; ++slot)
            slots[used++] = *slot;
        slots[used] = {0, nullptr};
        PyType_Spec definition{name, sizeof(Holder), 0, Py_TPFLAGS_DEFAULT | flags, slots};
        s_type = reinterpret_cast<PyTypeObject*>(PyType_FromSpec(&definition));
        return s_type;
    }

    /// A new Python object of `wanted`, which is `s_type` or derived from it. None for null.
    static PyRef wrap(SharedPtr<T> object, PyTypeObject* wanted = s_type) {
        if (!object)
            return PyRef::borrow(Py_None);
        PyObject* self = wanted->tp_alloc(wanted, 0);
        if (self)
            new (&reinterpret_cast<Holder*>(self)->value) SharedPtr<T>(std::move(object));
        return PyRef::steal(self);
    }

    static bool check(PyObject* object) { return s_type && PyObject_TypeCheck(object, s_type); }

    /// What the Python object holds, null when it is of another type.
    static SharedPtr<T> unwrap(PyObject* object) {
        return check(object) ? reinterpret_cast<Holder*>(object)->value : SharedPtr<T>();
    }

private:
    static void deallocate(PyObject* self) {
        PyTypeObject* const own = Py_TYPE(self);
        reinterpret_cast<Holder*>(self)->value.~SharedPtr<T>();
        own->tp_free(self);
        Py_DECREF(own);
    }
};

template <typename T>
PyTypeObject* Holder<T>::s_type = nullptr;

}  // namespace Tamrix::PythonPlugin
