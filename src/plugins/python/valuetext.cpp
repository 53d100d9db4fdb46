#include "plugins/python/valuetext.h"

#include <algorithm>

#include "interpreter/language/valuepath.h"
#include "plugins/python/conversion.h"
#include "plugins/python/prelude.h"
#include "plugins/python/pythonargument.h"
#include "plugins/python/pythonsignals.h"
#include "plugins/python/valuemembers.h"

namespace Tamrix::PythonPlugin {

namespace {

/// Bits of an int: writing one takes a time that grows with their square.
constexpr std::size_t mostBits = 4000;
constexpr Py_ssize_t longest = ValueTexts::longest;

const QString more = QStringLiteral("...");

bool writesAs(PyObject* value, const PyTypeObject& type) {
    return Py_TYPE(value)->tp_repr == type.tp_repr;
}

/// Whether the representation of a key is code that gives the key.
bool isWrittenAsCode(PyObject* key) {
    if (PyTuple_CheckExact(key)) {
        for (const ContainerItem& item : containerItems(key, containerSize(key))) {
            if (!isWrittenAsCode(item.value.get()))
                return false;
        }
        return true;
    }
    return PyUnicode_CheckExact(key) || PyLong_CheckExact(key) || PyBytes_CheckExact(key) ||
           PyFloat_CheckExact(key) || PyBool_Check(key) || key == Py_None;
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

/// The exception by which a limit of time ends code, which no `except Exception` catches. It lives
/// for the process. Made before there is an error, since none can be made then.
PyObject* timeLimitExceeded() {
    static PyObject* const s_type =
        PyErr_NewException("tamrix.TimeLimitExceeded", PyExc_BaseException, nullptr);
    return s_type;
}

PyObject* raiseTimeLimit(PyObject*, PyObject*) {
    // A signal that comes late finds nobody to end.
    if (TimeLimit::isArmed()) {
        PyErr_SetNone(timeLimitExceeded());
        return nullptr;
    }
    Py_RETURN_NONE;
}

PyMethodDef s_timeLimitHandler = {"timeLimit", raiseTimeLimit, METH_VARARGS, nullptr};

void expired() {
    PyErr_SetInterruptEx(TimeLimit::signal());
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
    return length <= longest ? PythonTexts::cut(written)
                             : PythonTexts::cut(written.chopped(1)) + more;
}

}  // namespace

TimeLimit::Expired readyTimeLimit() {
    setSignalHandler(TimeLimit::signal(), s_timeLimitHandler);
    if (!timeLimitExceeded())
        PyErr_Clear();
    return expired;
}

PyRef timedRepresentation(PyObject* value) {
    constexpr std::chrono::seconds most{1};
    PyRef text;
    {
        const TimeLimit limit(most, readyTimeLimit());
        text = PyRef::steal(PyObject_Repr(value));
    }
    if (!text && PyErr_ExceptionMatches(timeLimitExceeded())) {
        PyErr_Clear();
        text = toPyString(QStringLiteral("<no representation: not in time>"));
    }
    return text;
}

ValueTexts::Value PythonTexts::partNamed(const Value& value, const QString& name) {
    PyObject* const own = objectOf(value);
    if (PyDict_Check(own)) {
        // Whoever writes the path may write keys in another way than they are listed.
        const QString text = name.startsWith('[') ? name : textOfPathPart(name);
        const PyRef found = callOwn("evaluation", "entry_of", own, toPyString(text));
        if (found.get() != Py_None)
            return new PythonArgument(PyRef::borrow(PyTuple_GET_ITEM(found.get(), 0)));
    }
    return ValueTexts::partNamed(value, name);
}

PythonTexts::Parts PythonTexts::partsOf(const Value& value, int end, int depth) {
    PyObject* const object = objectOf(value);
    if (isContainer(object))
        return {static_cast<int>(containerSize(object)),
                [this, depth, items = containerItems(object, end)](int index) {
                    const ContainerItem& item = items.at(static_cast<std::size_t>(index));
                    const Value part = new PythonArgument(item.value);
                    if (!item.key)
                        return Part{QString::number(index), part};
                    const QString key = keyText(item.key.get(), depth);
                    return Part{keyName(key, isWrittenAsCode(item.key.get())), part, key + ": "};
                }};
    // Functions have attributes, too, and nothing in them.
    if (PyFunction_Check(object) || PyCFunction_Check(object))
        return {};
    const std::vector<ValueAttribute> attributes = attributesOf(object);
    return {static_cast<int>(attributes.size()), [attributes](int index) {
                const ValueAttribute& each = attributes.at(static_cast<std::size_t>(index));
                return Part{pathPart(each.name), new PythonArgument(each.value)};
            }};
}

QString PythonTexts::keyText(PyObject* key, int depth) {
    return cut(text(new PythonArgument(PyRef::borrow(key)), depth + 1));
}

QString PythonTexts::text(const Value& own, int depth) {
    PyObject* const value = objectOf(own);
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
            return containerText(own, depth);
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
    return reprText(value);
}

QString PythonTexts::containerText(const Value& own, int depth) {
    PyObject* const value = objectOf(own);
    const Py_ssize_t count = containerSize(value);
    if (PyAnySet_Check(value) && count == 0)
        return own->typeName() + "()";
    const QString inner = partsText(own, depth);
    if (PyTuple_Check(value))
        return "(" + inner + (count == 1 ? ",)" : ")");
    if (PyList_Check(value))
        return "[" + inner + "]";
    return PyFrozenSet_CheckExact(value) ? "frozenset({" + inner + "})" : "{" + inner + "}";
}

QString PythonTexts::reprText(PyObject* value) {
    return scriptText(readyTimeLimit(), [value]() -> std::optional<Outcome<QString>> {
        if (const PyRef text = PyRef::steal(PyObject_Repr(value)))
            return firstCharacters(text);
        const bool isExceeded =
            timeLimitExceeded() && PyErr_ExceptionMatches(timeLimitExceeded()) != 0;
        const QString name =
            QString::fromUtf8(reinterpret_cast<PyTypeObject*>(PyErr_Occurred())->tp_name);
        PyErr_Clear();
        if (isExceeded)
            return std::nullopt;
        return fail(FailureKind::Failed, name);
    });
}

}  // namespace Tamrix::PythonPlugin
