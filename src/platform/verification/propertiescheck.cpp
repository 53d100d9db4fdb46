#include "platform/verification/check.h"
#include "platform/verification/expectations.h"
#include "platform/verification/observation.h"

namespace Tamrix {

namespace {

void checkProperty(const SharedPtr<Object>& object, const QString& objectName,
                   ExpectedProperty& property, Findings& findings) {
    const Outcome<QJsonValue> observed = observedProperty(object, property.name);
    if (!observed) {
        findings.lasting.append(QStringLiteral("Object '%1': '%2' can't be read: %3")
                                    .arg(objectName, property.name, observed.error().text));
        return;
    }
    const QString difference = differenceFrom(property.expected, *observed);
    if (difference.isEmpty())
        return;
    const QString text =
        QStringLiteral("Object '%1': %2 %3").arg(objectName, property.name, difference);
    if (auto* const value = std::get_if<PlainValue>(&property.expected)) {
        findings.renewable.append(text);
        // A tolerance is for numbers only.
        value->value = *observed;
        if (!observed->isDouble())
            value->tolerance = 0;
    } else {
        findings.lasting.append(text);
    }
}

}  // namespace

Findings check(const PropertiesPoint& point, const FindObject& findObject) {
    Findings findings;
    findings.things = QStringLiteral("properties");
    PropertiesPoint renewed = point;
    for (ExpectedObject& expected : renewed.objects) {
        findings.compared += static_cast<int>(expected.properties.size());
        const Outcome<SharedPtr<Object>> object = findObject(expected.name);
        if (!object) {
            findings.isObjectMissing = true;
            findings.lasting.append(object.error().text);
            continue;
        }
        for (ExpectedProperty& property : expected.properties)
            checkProperty(*object, expected.name, property, findings);
    }
    findings.renewed = renewed;
    return findings;
}

}  // namespace Tamrix
