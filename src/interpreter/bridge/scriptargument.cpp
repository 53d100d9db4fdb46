#include "interpreter/bridge/scriptargument.h"

#include "platform/objectmodel/valueobject.h"

namespace Tamrix {

bool ScriptArgument::isStringLike() const {
    return isString();
}

bool ScriptArgument::isClass() const {
    return false;
}

const Class* ScriptArgument::toClass() const {
    return nullptr;
}

QString ScriptArgument::toRealName() const {
    if (!isMap())
        return toString();
    QMap<QString, PropertyValue> properties;
    for (const auto& [name, value] : toMap())
        properties.insert(name, value->toPropertyValue());
    return ObjectName(properties).qualifiedName();
}

QString ScriptArgument::callableIdentifier() const {
    return QStringLiteral("Callable|0x%1").arg(reinterpret_cast<quintptr>(this), 0, 16);
}

PropertyValue ScriptArgument::toPropertyValue() const {
    if (isString() || isNumber())
        return PropertyValue(toString(), 0, false);
    // The value is itself the name of an object.
    if (isMap())
        return PropertyValue(toRealName(), 0, true);
    if (isBool())
        return PropertyValue(QLatin1String(toBool() ? "true" : "false"), 0, false);
    const QString text = toString();
    return PropertyValue(text, 0, isMultiPropertyName(text));
}

const TestDataRecord* ScriptArgument::toTestDataRecord() const {
    return nullptr;
}

std::optional<QVariant> ScriptArgument::toVariant() const {
    if (isBool())
        return toBool();
    if (isInteger())
        return toInt();
    if (isNumber())
        return toDouble();
    if (isString())
        return toString();
    if (isObject())
        return argumentValue(toObject());
    if (isList()) {
        QVariantList values;
        for (const SharedPtr<ScriptArgument>& entry : toList()) {
            const std::optional<QVariant> value = entry->toVariant();
            if (!value)
                return {};
            values.append(*value);
        }
        return values;
    }
    if (isMap()) {
        QVariantMap values;
        for (const auto& [name, entry] : toMap()) {
            const std::optional<QVariant> value = entry->toVariant();
            if (!value)
                return {};
            values.insert(name, *value);
        }
        return values;
    }
    return {};
}

bool isStringOrObjectName(const SharedPtr<ScriptArgument>& argument) {
    return argument && (argument->isString() || argument->isMap());
}

QString serializeObjectName(const SharedPtr<ScriptArgument>& argument) {
    if (!argument)
        return {};
    return argument->isMap() && !argument->isString() ? argument->toRealName()
                                                      : argument->toString();
}

}  // namespace Tamrix
