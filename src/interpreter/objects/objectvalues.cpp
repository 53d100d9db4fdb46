#include "interpreter/objects/objectvalues.h"

#include <QDateTime>
#include <cmath>
#include <limits>

#include "interpreter/bridge/scriptcontext.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectclass.h"
#include "platform/objectmodel/valueobject.h"

namespace Tamrix {

namespace {

SharedPtr<ScriptArgument> listOf(ScriptContext* context, const QVariantList& values) {
    std::vector<SharedPtr<ScriptArgument>> list;
    list.reserve(values.size());
    for (const QVariant& value : values)
        list.push_back(valueOfVariant(context, value));
    return context->createList(list);
}

SharedPtr<ScriptArgument> mapOf(ScriptContext* context, const QVariantMap& values) {
    std::map<QString, SharedPtr<ScriptArgument>> map;
    for (auto it = values.cbegin(); it != values.cend(); ++it)
        map.emplace(it.key(), valueOfVariant(context, it.value()));
    return context->createMap(map);
}

/// Whether a language has the value, be it as text only.
bool isScriptValue(const QVariant& value) {
    switch (static_cast<QMetaType::Type>(value.userType())) {
        case QMetaType::UnknownType:
            return false;
        case QMetaType::QStringList:
        case QMetaType::QVariantList:
        case QMetaType::QVariantHash:
        case QMetaType::QVariantMap:
        case QMetaType::Nullptr:
        case QMetaType::Void:
            return true;
        default:
            return value.userType() == qMetaTypeId<SharedPtr<Object>>() ||
                   value.canConvert<QString>();
    }
}

/// Names of the types whose values a script's value is turned into.
bool isIntegerType(const QString& typeName) {
    static const QStringList s_names = {"int",      "uint",      "qlonglong", "qulonglong", "long",
                                        "ulong",    "short",     "ushort",    "char",       "uchar",
                                        "longlong", "ulonglong", "qint64",    "quint64"};
    return s_names.contains(typeName);
}

/// Of 64 bits at most.
bool isWhole(const ScriptArgument& number) {
    const double value = number.isInteger() ? 0 : number.toDouble();
    return std::trunc(value) == value && std::abs(value) < 0x1p63;
}

bool isFloatType(const QString& typeName) {
    return typeName == "double" || typeName == "float" || typeName == "qreal";
}

}  // namespace

SharedPtr<ScriptArgument> valueOfVariant(ScriptContext* context, const QVariant& value) {
    switch (static_cast<QMetaType::Type>(value.userType())) {
        case QMetaType::UnknownType:
        case QMetaType::Void:
        case QMetaType::Nullptr:
            return context->createNull();
        case QMetaType::Bool:
            return context->createBool(value.toBool());
        case QMetaType::Int:
        case QMetaType::Short:
        case QMetaType::UShort:
        case QMetaType::SChar:
        case QMetaType::UChar:
        case QMetaType::Char:
            return context->createInteger(value.toInt());
        case QMetaType::UInt:
        case QMetaType::Long:
        case QMetaType::LongLong:
            return context->createInt64(value.toLongLong());
        case QMetaType::ULong:
        case QMetaType::ULongLong:
            // Beyond what a script's integer surely holds only the magnitude is kept.
            if (value.toULongLong() > quint64(std::numeric_limits<qint64>::max()))
                return context->createDouble(double(value.toULongLong()));
            return context->createInt64(value.toLongLong());
        case QMetaType::Float:
        case QMetaType::Double:
            return context->createDouble(value.toDouble());
        case QMetaType::QByteArray:
            return context->createBytes(value.toByteArray());
        case QMetaType::QDate:
        case QMetaType::QDateTime:
            return context->createDateTime(value.toDateTime());
        case QMetaType::QStringList:
        case QMetaType::QVariantList:
            return listOf(context, value.toList());
        case QMetaType::QVariantHash:
        case QMetaType::QVariantMap:
            return mapOf(context, value.toMap());
        default:
            break;
    }
    if (value.userType() == qMetaTypeId<SharedPtr<Object>>())
        return valueOfObject(context, value.value<SharedPtr<Object>>());
    return context->createString(value.toString());
}

SharedPtr<ScriptArgument> valueOfObject(ScriptContext* context, SharedPtr<Object> object) {
    if (!object || (object->isNull() && object->className() == QLatin1String("void")))
        return context->createNull();
    const QVariant value = object->toVariant();
    return isScriptValue(value) ? valueOfVariant(context, value) : context->createObject(object);
}

Outcome<SharedPtr<Object>> objectOfValue(const SharedPtr<ScriptArgument>& value) {
    return objectOfValue(value, QString());
}

Outcome<SharedPtr<Object>> objectOfValue(const SharedPtr<ScriptArgument>& value,
                                         const QString& typeName) {
    if (value->isObject())
        return value->toObject();
    std::optional<QVariant> variant = value->toVariant();
    if (!variant)
        return fail(FailureKind::BadArgument, "A value of type '" + value->typeName() +
                                                  "' can't be passed to an application");
    // A number with a fraction stays one: the application refuses to cut it, and says for what.
    if (value->isNumber() && isIntegerType(typeName) && isWhole(*value))
        variant = value->toInt();
    else if (value->isNumber() && isFloatType(typeName))
        variant = value->toDouble();
    else if (value->isNumber() && typeName == QLatin1String("QString"))
        variant = value->toString();
    return Inspector::self()->createObject(*variant);
}

void ScriptContext::setObjectPropertiesResult(SharedPtr<Object> object) {
    // All at once: the application is asked one time only. One that can't be read is left out.
    const Outcome<PropertyList> properties = object->readProperties();
    if (!properties) {
        Inspector::self()->keep(properties.error());
        setError(properties.error().text);
        return;
    }
    std::map<QString, SharedPtr<ScriptArgument>> map;
    for (const auto& [name, value] : *properties)
        map.emplace(name, valueOfObject(this, value));
    const Class* const objectClass = object->objectClass();
    const int count = objectClass ? objectClass->numProperties() : 0;
    for (int index = 0; index < count; ++index) {
        const QString name = objectClass->property(index)->name();
        if (map.count(name) == 0)
            qWarning("Error reading %s property", name.toLocal8Bit().constData());
    }
    setResult(createMap(map));
}

}  // namespace Tamrix
