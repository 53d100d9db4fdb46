#include "platform/objectmodel/passwordfields.h"

#include "platform/objectmodel/objectclass.h"

namespace Tamrix {

namespace {

/// Null for what has no such property.
SharedPtr<Object> propertyOf(const SharedPtr<Object>& object, const QString& name) {
    const Class* const objectClass = object ? object->objectClass() : nullptr;
    const Property* const property = objectClass ? objectClass->property(name) : nullptr;
    return property ? object->readProperty(*property).value_or(nullptr) : nullptr;
}

/// Whether a property of the name tells that what is entered is hidden.
bool isHiding(const SharedPtr<Object>& object, const QString& mode) {
    const SharedPtr<Object> echoMode = propertyOf(object, mode);
    // 0: what is entered is shown.
    return echoMode && echoMode->toVariant().toInt() != 0;
}

}  // namespace

QStringList hiddenProperties(const SharedPtr<Object>& object) {
    if (isHiding(object, QStringLiteral("echoMode")))
        return {QStringLiteral("text"), QStringLiteral("selectedText"),
                QStringLiteral("displayText"), QStringLiteral("password")};
    if (isHiding(object, QStringLiteral("textEchoMode")))
        return {QStringLiteral("textValue")};
    return {};
}

QString hiddenText(const SharedPtr<Object>& object) {
    for (const QString& name : hiddenProperties(object)) {
        if (const SharedPtr<Object> text = propertyOf(object, name))
            return text->toVariant().toString();
    }
    return {};
}

bool isForPasswords(const SharedPtr<Object>& object) {
    return !hiddenProperties(object).isEmpty();
}

}  // namespace Tamrix
