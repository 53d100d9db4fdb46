#pragma once

#include <QJsonValue>
#include <QString>

#include "platform/verification/verificationpoint.h"

namespace Tamrix {

/// A value for people: texts in quotes, everything else as JSON has it.
QString describedValue(const QJsonValue& value);

/// How the value differs from what is expected: "is 'a', expected 'b'". Empty when it does not.
QString differenceFrom(const ExpectedValue& expected, const QJsonValue& observed);

/// Whether a value that was observed can take the place of the expected one: patterns and columns
/// stay what they are.
bool isRenewable(const ExpectedValue& expected);

/// "#AARRGGBB", or "none".
QString colorText(const CellColor& color);

/// An element for people: QPushButton 'save' "Save".
QString describedElement(const VisualElement& element);
/// "10,20 with 80x24 pixels"
QString describedPlace(const QRect& place);

}  // namespace Tamrix
