#include "interpreter/bridge/scriptargument.h"

#include <string>

#include "platform/objectmodel/valueobject.h"

namespace Tamrix {

namespace {

/// How far a walk over a value and what it holds goes.
struct Limits {
    /// Names the value in messages.
    const char* what;
    int levels;
    /// Lists and maps. Such as stand in several places multiply with each level.
    int containers;
};

constexpr Limits nameLimits = {"The name of an object", maximalNameDepth, 10'000};
constexpr Limits valueLimits = {"A value for an application", maximalValueDepth, 1'000'000};

/// One level of a walk.
class Level {
public:
    explicit Level(const Limits& limits) {
        if (s_depth == 0)
            s_visited = 0;
        if (s_depth >= limits.levels)
            throw NestingError(std::string(limits.what) + " is nested deeper than " +
                               std::to_string(limits.levels) + ": does a part of it hold itself?");
        if (++s_visited > limits.containers)
            throw NestingError(std::string(limits.what) + " holds more than " +
                               std::to_string(limits.containers) + " lists and maps");
        ++s_depth;
    }
    ~Level() { --s_depth; }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;

private:
    inline static int s_depth = 0;
    inline static int s_visited = 0;
};

}  // namespace

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
    // Of what is both, the text counts.
    if (!isMap() || isString())
        return toString();
    const Level level(nameLimits);
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

bool ScriptArgument::isNull() const {
    return false;
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
        const Level level(valueLimits);
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
        const Level level(valueLimits);
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
    return argument ? argument->toRealName() : QString();
}

}  // namespace Tamrix
