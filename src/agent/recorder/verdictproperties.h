#pragma once

#include <QVariantMap>

#include "agent/core/element.h"

namespace Tamrix::Agent {

/// What a verdict expects of an element: the properties in which a person reads its state, as they
/// are now. Of what shows nothing, that it is enabled or not. Never empty; no passwords.
QVariantMap verdictProperties(const Element& element);

}  // namespace Tamrix::Agent
