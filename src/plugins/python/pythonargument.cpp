#include "plugins/python/pythonargument.h"

#include <cmath>

#include "plugins/python/conversion.h"
#include "plugins/python/pythoninterpreter.h"
#include "plugins/python/scriptcall.h"

namespace Tamrix::PythonPlugin {

namespace {

/// An exact or derived int that is no bool.
bool isPyInteger(PyObject* object) {
    return PyLong_Check(object) && !PyBool_Check(object);
}

/// Objects of number types of other modules: decimals, fractions, array scalars.
bool hasNumberProtocol(PyObject* object) {
    const PyNumberMethods* methods = Py_TYPE(object)->tp_as_number;
    return methods && (methods->nb_float || methods->nb_index);
}

long long integerOf(PyObject* object) {
    int overflow = 0;
    const long long value = PyLong_AsLongLongAndOverflow(object, &overflow);
    if (overflow != 0) {
        const PyRef bits = checked(PyObject_CallMethod(object, "bit_length", nullptr));
        PyErr_Format(PyExc_OverflowError,
                     "int of %S bits is too large: only 64 bits can be passed on", bits.get());
    }
    if (value == -1 && PyErr_Occurred())
        throw PythonErrorSet();
    return value;
}

}  // namespace

PythonArgument::PythonArgument(PyRef object) : m_object(std::move(object)) {
    if (!m_object)
        throw PythonErrorSet();
    keepOwnInteger();
}

// Type tests

QString PythonArgument::typeName() const {
    // tp_name holds the module too for types that are not Python's own.
    const QString name = QString::fromUtf8(Py_TYPE(object())->tp_name);
    return name.mid(name.lastIndexOf('.') + 1);
}

bool PythonArgument::isBool() const {
    return PyBool_Check(object());
}

bool PythonArgument::isNumber() const {
    return !isBool() &&
           (PyLong_Check(object()) || PyFloat_Check(object()) || hasNumberProtocol(object()));
}

bool PythonArgument::holdsInteger() const {
    return isPyInteger(object()) || (!isBool() && PyIndex_Check(object()));
}

bool PythonArgument::isString() const {
    return PyUnicode_Check(object());
}

bool PythonArgument::isCallable() const {
    return PyCallable_Check(object());
}

bool PythonArgument::isList() const {
    return PyList_Check(object()) || PyTuple_Check(object());
}

bool PythonArgument::isMap() const {
    return PyDict_Check(object());
}

// Conversions

bool PythonArgument::toBool() const {
    const int truth = PyObject_IsTrue(object());
    checked(truth);
    return truth == 1;
}

double PythonArgument::toDouble() const {
    if (!isNumber() && !isBool())
        return 0;
    const double value = PyFloat_AsDouble(object());
    if (value == -1 && PyErr_Occurred())
        throw PythonErrorSet();
    return value;
}

long long PythonArgument::convertedToInt() const {
    if (PyLong_Check(object()))
        return integerOf(object());
    if (isInteger())
        return integerOf(checked(PyNumber_Index(object())).get());
    if (!isNumber())
        return 0;
    // Truncated as Python's int() does, which refuses what is no number.
    const PyRef number = checked(PyFloat_FromDouble(toDouble()));
    return integerOf(checked(PyNumber_Long(number.get())).get());
}

QString PythonArgument::toString() const {
    return textOf(object());
}

ScriptArgument::List PythonArgument::toList() const {
    List values;
    if (!isList())
        return values;
    const Py_ssize_t count = PySequence_Fast_GET_SIZE(object());
    values.reserve(count);
    for (Py_ssize_t index = 0; index < count; ++index)
        values.push_back(
            new PythonArgument(PyRef::borrow(PySequence_Fast_GET_ITEM(object(), index))));
    return values;
}

ScriptArgument::Map PythonArgument::toMap() const {
    Map values;
    if (!isMap())
        return values;
    // A copy of the items: making a text of a key may run script code.
    const PyRef items = checked(PyDict_Items(object()));
    for (Py_ssize_t index = 0; index < PyList_GET_SIZE(items.get()); ++index) {
        PyObject* const item = PyList_GET_ITEM(items.get(), index);
        values[textOf(PyTuple_GET_ITEM(item, 0))] =
            new PythonArgument(PyRef::borrow(PyTuple_GET_ITEM(item, 1)));
    }
    return values;
}

std::optional<QByteArray> PythonArgument::bytes() const {
    if (!PyBytes_Check(object()))
        return {};
    return QByteArray(PyBytes_AS_STRING(object()), static_cast<int>(PyBytes_GET_SIZE(object())));
}

QDateTime PythonArgument::time() const {
    return fromPyDateTime(object());
}

// Callables

SharedPtr<ScriptArgument> PythonArgument::called(const List& arguments) const {
    return new PythonArgument(callObject(object(), {arguments, {}}));
}

LanguageInterpreter* PythonArgument::active() {
    return PythonInterpreter::active();
}

QString PythonArgument::callableIdentifier() const {
    const auto address = [](PyObject* part) {
        return QStringLiteral("0x%1").arg(reinterpret_cast<quintptr>(part), 0, 16);
    };
    // Python makes a bound method anew each time; what it is bound to and its function stay.
    if (PyMethod_Check(object()))
        return "Callable|" + address(PyMethod_GET_FUNCTION(object())) + "|" +
               address(PyMethod_GET_SELF(object()));
    return "Callable|" + address(object());
}

}  // namespace Tamrix::PythonPlugin
