#pragma once

#include <QEvent>
#include <QSet>
#include <QString>
#include <optional>

namespace Tamrix::Agent {

/// The types of events that a name means: one ("MouseButtonPress"), or those of a class
/// ("QMouseEvent"). Empty for an unknown name.
QSet<int> eventTypesOf(const QString& name);

/// The type of a name as QEvent::Type has it.
std::optional<QEvent::Type> eventTypeOf(const QString& name);

}  // namespace Tamrix::Agent
