#include "plugins/python/conversion.h"

#include <datetime.h>

#include <cmath>

namespace Tamrix::PythonPlugin {

PyRef toPyString(const QString& text) {
    const auto* const units = reinterpret_cast<const Py_UCS2*>(text.utf16());
    bool surrogates = false;
    for (int index = 0; index < text.size() && !surrogates; ++index)
        surrogates = text.at(index).isSurrogate();
    // Without surrogates a code unit is a character.
    if (!surrogates)
        return PyRef::steal(PyUnicode_FromKindAndData(PyUnicode_2BYTE_KIND, units, text.size()));
    int byteOrder = Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? -1 : 1;
    return PyRef::steal(PyUnicode_DecodeUTF16(reinterpret_cast<const char*>(units),
                                              text.size() * Py_ssize_t(sizeof(Py_UCS2)),
                                              "surrogatepass", &byteOrder));
}

QString fromPyString(PyObject* text) {
    if (!text || !PyUnicode_Check(text) || PyUnicode_READY(text) < 0)
        return {};
    const auto length = static_cast<int>(PyUnicode_GET_LENGTH(text));
    switch (PyUnicode_KIND(text)) {
        case PyUnicode_1BYTE_KIND:
            return QString::fromLatin1(reinterpret_cast<const char*>(PyUnicode_1BYTE_DATA(text)),
                                       length);
        case PyUnicode_2BYTE_KIND:
            return QString(reinterpret_cast<const QChar*>(PyUnicode_2BYTE_DATA(text)), length);
        default:
            return QString::fromUcs4(reinterpret_cast<const char32_t*>(PyUnicode_4BYTE_DATA(text)),
                                     length);
    }
}

QString textOf(PyObject* object) {
    if (PyUnicode_Check(object))
        return fromPyString(object);
    const PyRef text = PyRef::steal(PyObject_Str(object));
    if (text)
        return fromPyString(text.get());
    clearOrdinaryError();
    return QStringLiteral("<unprintable %1 object>").arg(QLatin1String(Py_TYPE(object)->tp_name));
}

namespace {

/// Whether Python's datetime can be used.
bool hasDateTime() {
    if (!PyDateTimeAPI)
        PyDateTime_IMPORT;
    return PyDateTimeAPI != nullptr;
}

}  // namespace

QDateTime fromPyDateTime(PyObject* object) {
    if (!hasDateTime())
        throw PythonErrorSet();
    if (!PyDateTime_Check(object))
        return {};
    const PyRef seconds = checked(PyObject_CallMethod(object, "timestamp", nullptr));
    return QDateTime::fromMSecsSinceEpoch(std::llround(PyFloat_AsDouble(seconds.get()) * 1000.0));
}

PyRef toPyDateTime(const QDateTime& time) {
    if (!hasDateTime())
        return {};
    if (!time.isValid())
        return PyRef::borrow(Py_None);
    const QDateTime local = time.toLocalTime();
    const QDate date = local.date();
    const QTime clock = local.time();
    return PyRef::steal(PyDateTime_FromDateAndTime(date.year(), date.month(), date.day(),
                                                   clock.hour(), clock.minute(), clock.second(),
                                                   clock.msec() * 1000));
}

PyRef toPyList(const QStringList& texts) {
    PyRef list = PyRef::steal(PyList_New(texts.size()));
    for (int index = 0; list && index < texts.size(); ++index) {
        PyRef text = toPyString(texts.at(index));
        if (!text)
            return {};
        PyList_SET_ITEM(list.get(), index, text.release());
    }
    return list;
}

bool isOrdinaryError() {
    return PyErr_ExceptionMatches(PyExc_Exception);
}

void clearOrdinaryError() {
    if (!isOrdinaryError())
        throw PythonErrorSet();
    PyErr_Clear();
}

}  // namespace Tamrix::PythonPlugin
