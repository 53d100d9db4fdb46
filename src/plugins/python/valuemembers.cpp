#include "plugins/python/valuemembers.h"

#include <structmember.h>

#include <utility>

#include "interpreter/language/valuepath.h"
#include "plugins/python/containers.h"
#include "plugins/python/conversion.h"
#include "plugins/python/valuetext.h"

namespace Tamrix::PythonPlugin {

namespace {

bool isSystemName(const QString& name) {
    return name.startsWith("__") && name.endsWith("__");
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
        if (texts.nameOfKey(item.key.get()) == name)
            return std::move(item.value);
    }
    return {};
}

}  // namespace

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
    for (const ValueAttribute& slot : slotsOf(value)) {
        if (pathPart(slot.name) == name)
            return slot.value;
    }
    const PyRef attributes = dictionaryOf(value);
    return attributes ? entryNamed(attributes.get(), name) : PyRef();
}

}  // namespace Tamrix::PythonPlugin
