#include "plugins/python/containers.h"

#include <algorithm>

namespace Tamrix::PythonPlugin {

namespace {

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

std::vector<ContainerItem> containerItems(PyObject* container, Py_ssize_t first, Py_ssize_t limit) {
    std::vector<ContainerItem> items;
    const Py_ssize_t end = first + std::min(limit, containerSize(container));
    if (isSequence(container)) {
        for (Py_ssize_t index = first; index < std::min(end, containerSize(container)); ++index)
            items.push_back({PyRef(), PyRef::borrow(PySequence_Fast_GET_ITEM(container, index))});
        return items;
    }
    PyObject* key = nullptr;
    PyObject* value = nullptr;
    Py_ssize_t position = 0;
    Py_hash_t hash = 0;
    const bool isDictionary = PyDict_Check(container);
    const auto next = [&] {
        return (isDictionary ? PyDict_Next(container, &position, &key, &value)
                             : _PySet_NextEntry(container, &position, &value, &hash)) != 0;
    };
    for (Py_ssize_t index = 0; index < end && next(); ++index) {
        if (index >= first)
            items.push_back({PyRef::borrow(key), PyRef::borrow(value)});
    }
    return items;
}

}  // namespace Tamrix::PythonPlugin
