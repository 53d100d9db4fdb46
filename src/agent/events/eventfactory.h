#pragma once

#include <QEvent>
#include <QObject>
#include <QVariantList>
#include <memory>
#include <vector>

#include "wire/messages.h"

namespace Tamrix::Agent {

/// Makes the events that sendEvent() sends, in their order, for a widget or another object.
/// Empty, with `*error` set, for an unknown event or arguments that don't fit. Coordinates are
/// relative to the object.
std::vector<std::unique_ptr<QEvent>> makeEvents(const QString& name, const QVariantList& arguments,
                                                const QPoint& globalOrigin, QString* error);

}  // namespace Tamrix::Agent
