#pragma once

#include <QString>
#include <vector>

#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

class PythonTexts;

/// A part of a value that a listing can go into.
struct ValueMember {
    /// As it stands in a path: an attribute as a pathPart(), an entry of a dictionary with its key
    /// in brackets as code has it, another element as its number.
    QString name;
    PyRef value;
};

/// Some of the members of a value.
struct ValueMembers {
    std::vector<ValueMember> page;
    /// Of all members.
    Py_ssize_t count = 0;
};

/// Whether a value has members: entries of a dictionary, elements of a list, tuple or set,
/// attributes of an object, a class or a module. Runs no code of scripts.
bool hasMembers(PyObject* value);

/// At most `limit` members from the one numbered `first`, in their order. `texts` writes keys.
ValueMembers membersOf(PyObject* value, Py_ssize_t first, Py_ssize_t limit, PythonTexts& texts);

/// The member with the name as it stands in paths; null when there is none.
PyRef memberNamed(PyObject* value, const QString& name);

}  // namespace Tamrix::PythonPlugin
