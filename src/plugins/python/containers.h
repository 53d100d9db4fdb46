#pragma once

#include <vector>

#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

// Python's own containers (lists, tuples, dictionaries, sets) and classes derived from them, read
// without running code of scripts.

struct ContainerItem {
    /// Of an entry of a dictionary; null in other containers.
    PyRef key;
    PyRef value;
};

bool isContainer(PyObject* value);
Py_ssize_t containerSize(PyObject* container);
/// At most `limit` items from the one numbered `first`, in their order.
std::vector<ContainerItem> containerItems(PyObject* container, Py_ssize_t first, Py_ssize_t limit);

}  // namespace Tamrix::PythonPlugin
