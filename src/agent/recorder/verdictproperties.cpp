#include "agent/recorder/verdictproperties.h"

#include "agent/core/toolkit.h"

namespace Tamrix::Agent {

namespace {

/// A longer text is not expected as a whole.
constexpr int longestText = 500;

}  // namespace

QVariantMap verdictProperties(const Element& element) {
    const Toolkit* const toolkit = element.toolkit;
    const Wire::ObservedRole role = toolkit->role(element);
    const Wire::ObservedState state = toolkit->state(element);
    QVariantMap properties;
    const QString text = toolkit->text(element);
    const bool isField = !state.text.isNull();
    if (role != Wire::ObservedRole::Password && (isField || !text.isEmpty()) &&
        text.size() <= longestText)
        properties.insert(QStringLiteral("text"), text);
    bool isKnown = false;
    const QVariant checked = toolkit->property(element, QStringLiteral("checked"), &isKnown);
    if (isKnown && toolkit->checkMark(element))
        properties.insert(QStringLiteral("checked"), checked.toBool());
    if (state.value.isValid())
        properties.insert(QStringLiteral("value"), state.value);
    const bool isEnabled = toolkit->isEnabled(element);
    if (properties.isEmpty() || !isEnabled)
        properties.insert(QStringLiteral("enabled"), isEnabled);
    return properties;
}

}  // namespace Tamrix::Agent
