#pragma once

#include <QVariant>

namespace Tamrix::Agent {

/// A value that came over the connection as one of a wanted type. How well it fits:
enum class Fit { Exact, Near, Converted, None };

/// Converts `value` to the type, given by its number in Qt's type system, 0 for none, and by its
/// name. Handles become pointers to their objects, which must be of the class. The result may be
/// handed to Qt's meta calls as a value of `typeName`.
Fit convertValue(const QVariant& value, int typeId, const QByteArray& typeName,
                 const QMetaObject* scope, QVariant* converted);

/// A value for messages: texts in quotes, objects by their class.
QString describeValue(const QVariant& value);

}  // namespace Tamrix::Agent
