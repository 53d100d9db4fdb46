#pragma once

#include <new>

#include "base/shared.h"
#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// A function as a PyType_Slot has it.
template <typename Function>
void* slot(Function function) {
    return reinterpret_cast<void*>(function);
}

/// A Python object that holds a SharedPtr<T>. Each T has one Python base type, made by addType();
/// Python classes may derive from it.
template <typename T>
struct Holder {
    PyObject_HEAD SharedPtr<T> value;

    /// The Python type of all holders of T; null until addType().
    static PyTypeObject* s_type;

    /// Makes the type from a name, flags and further slots, the last one {0, nullptr}, and adds it
    /// to the module. `flags` are added to Py_TPFLAGS_DEFAULT. Throws PythonErrorSet.
    static void addType(PyObject* module, const char* name, const PyType_Slot* furtherSlots,
                        unsigned int flags = Py_TPFLAGS_DISALLOW_INSTANTIATION) {
        PyType_Slot slots[16] = {{Py_tp_dealloc, reinterpret_cast<void*>(deallocate)}};
        int used = 1;
        for (const PyType_Slot* slot = furtherSlots; slot->slot != 0; ++slot)
            slots[used++] = *slot;
        slots[used] = {0, nullptr};
        PyType_Spec definition{name, sizeof(Holder), 0, Py_TPFLAGS_DEFAULT | flags, slots};
        s_type = reinterpret_cast<PyTypeObject*>(checked(PyType_FromSpec(&definition)).release());
        checked(PyModule_AddType(module, s_type));
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
