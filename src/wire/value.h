#pragma once

#include <QDataStream>
#include <QVariant>

namespace Tamrix::Wire {

/// Writes a value of one of the kinds that travel: invalid, bool, integer (64 bits), double, text,
/// bytes, date, point, size, rectangle (of integers or of reals), colour, list, map, ObjectInfo.
/// Enumerations and flags travel as integers, other variants as what they convert to: list, map,
/// text at last.
void writeValue(QDataStream& stream, const QVariant& value);

/// The numbers of a point, size or rectangle, for people: "3, 4". Null for other values.
QString geometryText(const QVariant& value);

/// Reads what writeValue() wrote. Never makes a variant of any other kind, whatever the bytes say.
QVariant readValue(QDataStream& stream);

}  // namespace Tamrix::Wire
