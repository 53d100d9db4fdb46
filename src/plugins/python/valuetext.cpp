#include "plugins/python/valuetext.h"

#include <QStringList>
#include <algorithm>

#include "plugins/python/containers.h"
#include "plugins/python/conversion.h"
#include "plugins/python/timelimit.h"

namespace Tamrix::PythonPlugin {

namespace {

/// Characters of a value.
constexpr Py_ssize_t longest = 200;
/// Containers in containers.
constexpr int deepest = 4;
/// Bits of an int: writing one takes a time that grows with their square.
constexpr std::size_t mostBits = 4000;
/// For the script code of one value.
constexpr std::chrono::milliseconds timeForOne{100};

const QString more = QStringLiteral("...");

QString cut(const QString& text) {
    return text.size() <= longest ? text : text.left(longest) + more;
}

bool writesAs(PyObject* value, const PyTypeObject& type) {
    return Py_TYPE(value)->tp_repr == type.tp_repr;
}

/// Whether the representation is made without anything of a script, and short.
bool isPlain(PyObject* value) {
    return PyLong_CheckExact(value) || PyFloat_CheckExact(value) || PyComplex_CheckExact(value) ||
           PyBool_Check(value) || value == Py_None || PyModule_CheckExact(value) ||
           PyCFunction_CheckExact(value) || writesAs(value, PyType_Type);
}

/// Of the representation, as much as is shown.
QString firstCharacters(const PyRef& text) {
    if (PyUnicode_GetLength(text.get()) <= longest)
        return fromPyString(text.get());
    return fromPyString(PyRef::steal(PyUnicode_Substring(text.get(), 0, longest)).get()) + more;
}

/// The beginning of a text or of bytes, read without code of a class derived from them.
PyRef beginningOf(PyObject* value) {
    if (PyUnicode_Check(value))
        return PyRef::steal(PyUnicode_Substring(value, 0, longest));
    if (PyBytes_Check(value))
        return PyRef::steal(PyBytes_FromStringAndSize(PyBytes_AS_STRING(value),
                                                      std::min(PyBytes_GET_SIZE(value), longest)));
    return PyRef::steal(PyByteArray_FromStringAndSize(
        PyByteArray_AS_STRING(value), std::min(PyByteArray_GET_SIZE(value), longest)));
}

/// A text or bytes, cut before their representation is made.
QString sliceText(PyObject* value) {
    const Py_ssize_t length = PyUnicode_Check(value) ? PyUnicode_GET_LENGTH(value)
                              : PyBytes_Check(value) ? PyBytes_GET_SIZE(value)
                                                     : PyByteArray_GET_SIZE(value);
    const PyRef beginning = beginningOf(value);
    const PyRef text = PyRef::steal(beginning ? PyObject_Repr(beginning.get()) : nullptr);
    if (!text) {
        PyErr_Clear();
        return more;
    }
    const QString written = fromPyString(text.get());
    return length <= longest ? cut(written) : cut(written.chopped(1)) + more;
}

}  // namespace

QString ValueTexts::typeNameOf(PyObject* value) {
    const QString name = QString::fromUtf8(Py_TYPE(value)->tp_name);
    return name.mid(name.lastIndexOf('.') + 1);
}

QString ValueTexts::textOf(PyObject* value) {
    return cut(bounded(value, 0));
}

QString ValueTexts::bounded(PyObject* value, int depth) {
    if (PyLong_Check(value) && writesAs(value, PyLong_Type)) {
        const std::size_t bits = _PyLong_NumBits(value);
        if (bits > mostBits)
            return QStringLiteral("<int of %1 bits>").arg(bits);
    }
    if (writesAs(value, PyUnicode_Type) || writesAs(value, PyBytes_Type) ||
        writesAs(value, PyByteArray_Type))
        return sliceText(value);
    for (const PyTypeObject* type :
         {&PyList_Type, &PyTuple_Type, &PyDict_Type, &PySet_Type, &PyFrozenSet_Type}) {
        if (writesAs(value, *type))
            return containerText(value, depth);
    }
    // Where a function is kept tells nobody anything.
    if (PyFunction_Check(value)) {
        auto* const function = reinterpret_cast<PyFunctionObject*>(value);
        return QStringLiteral("<function %1>").arg(fromPyString(function->func_qualname));
    }
    if (isPlain(value)) {
        if (const PyRef text = PyRef::steal(PyObject_Repr(value)))
            return firstCharacters(text);
        PyErr_Clear();
    }
    return scriptText(value);
}

QString ValueTexts::containerText(PyObject* value, int depth) {
    const Py_ssize_t count = containerSize(value);
    if (PyAnySet_Check(value) && count == 0)
        return typeNameOf(value) + "()";
    QStringList texts;
    int length = 0;
    // Each element takes two characters at least.
    for (const ContainerItem& item : containerItems(value, 0, depth < deepest ? longest / 2 : 0)) {
        if (length > longest)
            break;
        QString text = bounded(item.value.get(), depth + 1);
        if (item.key)
            text.prepend(bounded(item.key.get(), depth + 1) + ": ");
        length += text.size() + 2;
        texts.append(text);
    }
    if (texts.size() < count)
        texts.append(more);
    const QString inner = texts.join(", ");
    if (PyTuple_Check(value))
        return "(" + inner + (count == 1 ? ",)" : ")");
    if (PyList_Check(value))
        return "[" + inner + "]";
    return PyFrozenSet_CheckExact(value) ? "frozenset({" + inner + "})" : "{" + inner + "}";
}

QString ValueTexts::scriptText(PyObject* value) {
    const std::chrono::milliseconds time = std::min(m_left, timeForOne);
    if (time <= std::chrono::milliseconds::zero())
        return QStringLiteral("<no representation: others took too long>");
    const auto start = std::chrono::steady_clock::now();
    PyRef text;
    {
        const TimeLimit limit(time);
        text = PyRef::steal(PyObject_Repr(value));
    }
    m_left -= std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - start);
    if (text)
        return firstCharacters(text);
    const QString reason =
        TimeLimit::isExceeded()
            ? QStringLiteral("not in time")
            : QString::fromUtf8(reinterpret_cast<PyTypeObject*>(PyErr_Occurred())->tp_name);
    PyErr_Clear();
    return QStringLiteral("<no representation: %1>").arg(reason);
}

}  // namespace Tamrix::PythonPlugin
