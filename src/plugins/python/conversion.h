#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// A Python str; lone surrogates are kept. Null with the error indicator set when out of memory.
PyRef toPyString(const QString& text);

/// The text of a Python str, null for any other object; lone surrogates are kept.
QString fromPyString(PyObject* text);

/// str(object) as text. An object whose __str__ raises gives "<unprintable NAME object>"; an
/// exception that ends the script passes as PythonErrorSet.
QString textOf(PyObject* object);

/// A datetime without time zone in local time.
PyRef toPyDateTime(const QDateTime& time);

/// The time of a datetime, invalid for any other object. Without time zone it is local time.
QDateTime fromPyDateTime(PyObject* object);

/// A list of str.
PyRef toPyList(const QStringList& texts);

/// Whether the error that is set is one that scripts catch: an Exception. Others end the script.
bool isOrdinaryError();

/// Clears an ordinary error; any other passes as PythonErrorSet.
void clearOrdinaryError();

}  // namespace Tamrix::PythonPlugin
