#include "plugins/python/valuemembers.h"

#include <structmember.h>

#include <algorithm>
#include <iterator>

#include "interpreter/language/valuepath.h"
#include "plugins/python/containers.h"
#include "plugins/python/conversion.h"
#include "plugins/python/valuetext.h"

namespace Tamrix::PythonPlugin {

namespace {

bool isSystemName(const QString& name) {
    return name.startsWith("__") && name.endsWith("__");
}

/// Whether the representation of a key is code that gives the key.
bool isWrittenAsCode(PyObject* key) {
    if (PyTuple_CheckExact(key)) {
        for (const ContainerItem& item : containerItems(key, 0, containerSize(key))) {
            if (!isWrittenAsCode(item.value.get()))
                return false;
        }
        return true;
    }
    return PyUnicode_CheckExact(key) || PyLong_CheckExact(key) || PyBytes_CheckExact(key) ||
           PyFloat_CheckExact(key) || PyBool_Check(key) || key == Py_None;
}

/// An entry of a dictionary stands as code would ask for it.
QString nameOfKey(PyObject* key, PythonTexts& texts) {
    QString text = texts.textOf(key);
    if (isWrittenAsCode(key) && !ValueTexts::isCut(text))
        // Blanks behind one another would not come back.
        return "[" + text.replace("  ", " \\x20") + "]";
    return "[" + pathPart(text, QByteArrayLiteral("[]()'\"")) + "]";
}

/// The key that code in brackets gives; null when it is none.
PyRef keyOfName(const QString& name) {
    const PyRef ast = PyRef::steal(PyImport_ImportModule("ast"));
    const PyRef text = toPyString(name.mid(1, name.size() - 2));
    PyRef key = PyRef::steal(
        ast && text ? PyObject_CallMethod(ast.get(), "literal_eval", "O", text.get()) : nullptr);
    if (!key)
        PyErr_Clear();
    return key;
}

/// What a module, a class or an object keeps its attributes in; null without.
PyRef attributesOf(PyObject* value) {
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
std::vector<ValueMember> slotsOf(PyObject* value) {
    std::vector<ValueMember> slots;
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
                slots.push_back({pathPart(fromPyString(key)), std::move(held)});
        }
    }
    if (PyExceptionInstance_Check(value))
        slots.push_back({QStringLiteral("args"),
                         PyRef::borrow(reinterpret_cast<PyBaseExceptionObject*>(value)->args)});
    return slots;
}

ValueMembers itemsAsMembers(PyObject* container, Py_ssize_t first, Py_ssize_t limit,
                            PythonTexts& texts) {
    ValueMembers members;
    members.count = containerSize(container);
    Py_ssize_t index = first;
    for (ContainerItem& item : containerItems(container, first, limit)) {
        members.page.push_back(
            {item.key ? nameOfKey(item.key.get(), texts) : QString::number(index),
             std::move(item.value)});
        ++index;
    }
    return members;
}

/// The attributes in a dictionary of them from the one numbered `first`, but those that Python
/// defines.
ValueMembers attributesAsMembers(PyObject* attributes, Py_ssize_t first, Py_ssize_t limit) {
    ValueMembers members;
    PyObject* key = nullptr;
    PyObject* value = nullptr;
    Py_ssize_t position = 0;
    while (PyDict_Next(attributes, &position, &key, &value)) {
        const QString name = fromPyString(key);
        if (name.isNull() || isSystemName(name))
            continue;
        if (members.count >= first && static_cast<Py_ssize_t>(members.page.size()) < limit)
            members.page.push_back({pathPart(name), PyRef::borrow(value)});
        ++members.count;
    }
    return members;
}

/// The value of a key, null when there is none.
PyRef valueAt(PyObject* dictionary, const PyRef& key) {
    PyRef value = PyRef::borrow(key ? PyDict_GetItemWithError(dictionary, key.get()) : nullptr);
    PyErr_Clear();
    return value;
}

/// The entry of a dictionary, null when there is none. A text can stand without brackets as well.
PyRef entryNamed(PyObject* dictionary, const QString& name) {
    if (!name.startsWith('['))
        return valueAt(dictionary, toPyString(textOfPathPart(name)));
    if (PyRef value = valueAt(dictionary, keyOfName(name)))
        return value;
    PythonTexts texts;
    for (ContainerItem& item : containerItems(dictionary, 0, containerSize(dictionary))) {
        if (nameOfKey(item.key.get(), texts) == name)
            return std::move(item.value);
    }
    return {};
}

}  // namespace

bool hasMembers(PyObject* value) {
    if (isContainer(value))
        return containerSize(value) > 0;
    PythonTexts texts;
    return !PyFunction_Check(value) && !PyCFunction_Check(value) &&
           membersOf(value, 0, 1, texts).count > 0;
}

ValueMembers membersOf(PyObject* value, Py_ssize_t first, Py_ssize_t limit, PythonTexts& texts) {
    if (isContainer(value))
        return itemsAsMembers(value, first, limit, texts);

    // Slots stand in front of the other attributes.
    std::vector<ValueMember> slots = slotsOf(value);
    const auto slotCount = static_cast<Py_ssize_t>(slots.size());
    ValueMembers members;
    for (Py_ssize_t index = first; index < std::min(slotCount, first + limit); ++index)
        members.page.push_back(std::move(slots[static_cast<std::size_t>(index)]));
    members.count = slotCount;
    if (const PyRef attributes = attributesOf(value)) {
        ValueMembers others =
            attributesAsMembers(attributes.get(), std::max<Py_ssize_t>(first - slotCount, 0),
                                limit - static_cast<Py_ssize_t>(members.page.size()));
        std::move(others.page.begin(), others.page.end(), std::back_inserter(members.page));
        members.count += others.count;
    }
    return members;
}

PyRef memberNamed(PyObject* value, const QString& name) {
    if (PyDict_Check(value))
        return entryNamed(value, name);
    if (isContainer(value)) {
        bool isNumber = false;
        const int index = name.toInt(&isNumber);
        std::vector<ContainerItem> found;
        if (isNumber && index >= 0)
            found = containerItems(value, index, 1);
        return found.empty() ? PyRef() : found.front().value;
    }
    for (const ValueMember& slot : slotsOf(value)) {
        if (slot.name == name)
            return slot.value;
    }
    const PyRef attributes = attributesOf(value);
    return attributes ? entryNamed(attributes.get(), name) : PyRef();
}

}  // namespace Tamrix::PythonPlugin
