#pragma once

#include <QString>
#include <vector>

#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

// What values consist of, read without running code of scripts.

struct ContainerItem {
    /// Of an entry of a dictionary; null in other containers.
    PyRef key;
    PyRef value;
};

/// Python's own containers (lists, tuples, dictionaries, sets) and classes derived from them.
bool isContainer(PyObject* value);
Py_ssize_t containerSize(PyObject* container);
/// The first items, at most `limit`.
std::vector<ContainerItem> containerItems(PyObject* container, Py_ssize_t limit);

struct ValueAttribute {
    QString name;
    PyRef value;
};

/// The attributes of an object, a class or a module but those that Python defines: slots in front
/// of the others.
std::vector<ValueAttribute> attributesOf(PyObject* value);

}  // namespace Tamrix::PythonPlugin
