#pragma once

#include <QMetaMethod>
#include <QString>

#include "wire/messages.h"

namespace Tamrix::Agent {

/// What is known of a class: one of the objects that there are, or of their base classes, a type of
/// item, or "Global", whose methods are the global functions. An empty name for an unknown class.
/// Looks at every object: the runner keeps the answer.
Wire::ClassInfo describeClass(const QString& name);

/// A method as it is written: "setValue(int)".
QString methodText(const QMetaMethod& method);
/// Whether scripts can call it: a public slot or invokable method.
bool isCallable(const QMetaMethod& method);

}  // namespace Tamrix::Agent
