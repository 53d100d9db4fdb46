#pragma once

#include <QJsonValue>
#include <QString>

#include "platform/verification/verificationpoint.h"

namespace Tamrix {

// How files and messages write the same things.

/// A value as JSON on one line.
QString compactJson(const QJsonValue& value);
/// "#AARRGGBB"; all zero for no colour.
QString colorCode(const CellColor& color);

}  // namespace Tamrix
