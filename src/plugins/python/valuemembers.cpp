#include "plugins/python/valuemembers.h"

#include <structmember.h>

#include <algorithm>
#include <utility>

#include "plugins/python/conversion.h"

namespace Tamrix::PythonPlugin {

namespace {

bool isSystemName(const QString& name) {
    return name.startsWith("__") && name.endsWith("__");
}

/// What a module, a class or an object keeps its attributes in; null without.
PyRef dictionaryOf(PyObject* value) {
    if (PyModule_Check(value))
        return PyRef::borrow(PyModule_GetDict(value));
    if (PyType_Check(value))
        return PyRef::borrow(reinterpret_cast<PyTypeObject*>(value)->tp_dict);
    // Functions have such a dictionary, too, and nothing in it.
    PyRef attributes = PyRef::steal(PyObject_GenericGetDict(value, nullptr));
    if (!attributes)
        PyErr_Clear();
    return attributes;
}

/// The value of a slot of an object, null when it has none.
PyRef slotValue(PyObject* value, PyObject* descriptor) {
    if (!Py_IS_TYPE(descriptor, &PyMemberDescr_Type))
        return {};
    PyObject* const type = reinterpret_cast<PyObject*>(Py_TYPE(value));
    PyRef held = PyRef::steal(Py_TYPE(descriptor)->tp_descr_get(descriptor, value, type));
    if (!held)
        PyErr_Clear();
    return held;
}

/// Attributes that stand in `__slots__` of the value's classes, those of base classes first, and
/// the arguments of an exception.
std::vector<ValueAttribute> slotsOf(PyObject* value) {
    std::vector<ValueAttribute> slots;
    if (PyType_Check(value) || PyModule_Check(value))
        return slots;
    PyObject* const order = Py_TYPE(value)->tp_mro;
    for (Py_ssize_t index = PyTuple_GET_SIZE(order) - 1; index >= 0; --index) {
        auto* const type = reinterpret_cast<PyTypeObject*>(PyTuple_GET_ITEM(order, index));
        if (!(type->tp_flags & Py_TPFLAGS_HEAPTYPE))
            continue;
        PyObject* key = nullptr;
        PyObject* descriptor = nullptr;
        Py_ssize_t position = 0;
        while (PyDict_Next(type->tp_dict, &position, &key, &descriptor)) {
            if (PyRef held = slotValue(value, descriptor))
                slots.push_back({fromPyString(key), std::move(held)});
        }
    }
    if (PyExceptionInstance_Check(value))
        slots.push_back({QStringLiteral("args"),
                         PyRef::borrow(reinterpret_cast<PyBaseExceptionObject*>(value)->args)});
    return slots;
}

bool isSequence(PyObject* value) {
    return PyList_Check(value) || PyTuple_Check(value);
}

}  // namespace

bool isContainer(PyObject* value) {
    return isSequence(value) || PyDict_Check(value) || PyAnySet_Check(value);
}

Py_ssize_t containerSize(PyObject* container) {
    if (isSequence(container))
        return PySequence_Fast_GET_SIZE(container);
    return PyDict_Check(container) ? PyDict_Size(container) : PySet_GET_SIZE(container);
}

std::vector<ContainerItem> containerItems(PyObject* container, Py_ssize_t limit) {
    std::vector<ContainerItem> items;
    const Py_ssize_t end = std::min(limit, containerSize(container));
    PyObject* key = nullptr;
    PyObject* value = nullptr;
    Py_ssize_t position = 0;
    Py_hash_t hash = 0;
    const auto next = [&](Py_ssize_t index) {
        if (isSequence(container))
            value = PySequence_Fast_GET_ITEM(container, index);
        else if (PyDict_Check(container))
            return PyDict_Next(container, &position, &key, &value) != 0;
        else
            return _PySet_NextEntry(container, &position, &value, &hash) != 0;
        return true;
    };
    for (Py_ssize_t index = 0; index < end && next(index); ++index)
        items.push_back({PyRef::borrow(key), PyRef::borrow(value)});
    return items;
}

std::vector<ValueAttribute> attributesOf(PyObject* value) {
    std::vector<ValueAttribute> attributes = slotsOf(value);
    const PyRef dictionary = dictionaryOf(value);
    PyObject* key = nullptr;
    PyObject* held = nullptr;
    Py_ssize_t position = 0;
    while (dictionary && PyDict_Next(dictionary.get(), &position, &key, &held)) {
        const QString name = fromPyString(key);
        if (!name.isNull() && !isSystemName(name))
            attributes.push_back({name, PyRef::borrow(held)});
    }
    return attributes;
}

}  // namespace Tamrix::PythonPlugin
