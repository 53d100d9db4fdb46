#include "platform/objectmodel/valueobject.h"

#include <QColor>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <memory>

#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectclass.h"
#include "wire/value.h"

namespace Tamrix {

namespace {

using Reader = QVariant (*)(const QVariant&);

struct ReadableProperty {
    const char* name;
    const char* typeName;
    Reader read;
};

struct ValueType {
    const char* className;
    std::vector<int> metaTypes;
    std::vector<ReadableProperty> properties;
};

const std::vector<ReadableProperty>& rectangleProperties() {
    static const std::vector<ReadableProperty> s_properties = {
        {"x", "int", [](const QVariant& v) { return QVariant(v.toRect().x()); }},
        {"y", "int", [](const QVariant& v) { return QVariant(v.toRect().y()); }},
        {"width", "int", [](const QVariant& v) { return QVariant(v.toRect().width()); }},
        {"height", "int", [](const QVariant& v) { return QVariant(v.toRect().height()); }},
    };
    return s_properties;
}

QColor colour(const QVariant& value) {
    return value.value<QColor>();
}

/// The types of values: which variants are of them, and what testers read on them.
const std::vector<ValueType>& valueTypes() {
    using Type = QMetaType;
    static const std::vector<ValueType> s_types = {
        {"void", {Type::UnknownType, Type::Void, Type::Nullptr}, {}},
        {"bool", {Type::Bool}, {}},
        {"int",
         {Type::Int, Type::UInt, Type::LongLong, Type::ULongLong, Type::Long, Type::ULong,
          Type::Short, Type::UShort, Type::Char, Type::SChar, Type::UChar},
         {}},
        {"double", {Type::Double, Type::Float}, {}},
        {"QString", {Type::QString, Type::QChar}, {}},
        {"QByteArray", {Type::QByteArray}, {}},
        {"QDateTime", {Type::QDateTime, Type::QDate, Type::QTime}, {}},
        {"QVariantList", {Type::QVariantList, Type::QStringList}, {}},
        {"QVariantMap", {Type::QVariantMap, Type::QVariantHash}, {}},
        {"QPoint",
         {Type::QPoint},
         {{"x", "int", [](const QVariant& v) { return QVariant(v.toPoint().x()); }},
          {"y", "int", [](const QVariant& v) { return QVariant(v.toPoint().y()); }}}},
        {"QPointF",
         {Type::QPointF},
         {{"x", "double", [](const QVariant& v) { return QVariant(v.toPointF().x()); }},
          {"y", "double", [](const QVariant& v) { return QVariant(v.toPointF().y()); }}}},
        {"QSize",
         {Type::QSize},
         {{"width", "int", [](const QVariant& v) { return QVariant(v.toSize().width()); }},
          {"height", "int", [](const QVariant& v) { return QVariant(v.toSize().height()); }}}},
        {"QSizeF",
         {Type::QSizeF},
         {{"width", "double", [](const QVariant& v) { return QVariant(v.toSizeF().width()); }},
          {"height", "double", [](const QVariant& v) { return QVariant(v.toSizeF().height()); }}}},
        {"QRect", {Type::QRect}, rectangleProperties()},
        {"QRectF",
         {Type::QRectF},
         {{"x", "double", [](const QVariant& v) { return QVariant(v.toRectF().x()); }},
          {"y", "double", [](const QVariant& v) { return QVariant(v.toRectF().y()); }},
          {"width", "double", [](const QVariant& v) { return QVariant(v.toRectF().width()); }},
          {"height", "double", [](const QVariant& v) { return QVariant(v.toRectF().height()); }}}},
        // A rectangle that is to be one of the screen is told so: its variant looks like any other.
        {"ScreenRectangle", {}, rectangleProperties()},
        {"QColor",
         {Type::QColor},
         {{"name", "QString", [](const QVariant& v) { return QVariant(colour(v).name()); }},
          {"red", "int", [](const QVariant& v) { return QVariant(colour(v).red()); }},
          {"green", "int", [](const QVariant& v) { return QVariant(colour(v).green()); }},
          {"blue", "int", [](const QVariant& v) { return QVariant(colour(v).blue()); }},
          {"alpha", "int", [](const QVariant& v) { return QVariant(colour(v).alpha()); }}}},
    };
    return s_types;
}

/// One class for each of the types above, in their order.
const std::vector<std::unique_ptr<Class>>& valueClasses() {
    static const std::vector<std::unique_ptr<Class>> s_classes = [] {
        std::vector<std::unique_ptr<Class>> made;
        for (const ValueType& type : valueTypes()) {
            made.push_back(std::make_unique<Class>(QLatin1String(type.className)));
            for (const ReadableProperty& property : type.properties) {
                made.back()->addProperty(QLatin1String(property.name),
                                         QLatin1String(property.typeName));
            }
        }
        return made;
    }();
    return s_classes;
}

/// Null for a variant of none of the types.
const Class* classOf(const QVariant& value) {
    const auto& types = valueTypes();
    for (size_t index = 0; index < types.size(); ++index) {
        const auto& metaTypes = types[index].metaTypes;
        if (std::find(metaTypes.begin(), metaTypes.end(), value.userType()) != metaTypes.end())
            return valueClasses()[index].get();
    }
    return nullptr;
}

}  // namespace

ValueObject::ValueObject(const QVariant& value) : ValueObject(value, classOf(value)) {}

ValueObject::ValueObject(const QVariant& value, const Class* objectClass)
    : Object(0, objectClass), m_value(value) {}

ObjectAttribute ValueObject::objectAttribute() const {
    return ObjectAttribute(ObjectAttribute::Kind::Value);
}

QVariant ValueObject::toVariant() const {
    switch (m_value.userType()) {
        case QMetaType::QPoint:
        case QMetaType::QPointF:
        case QMetaType::QSize:
        case QMetaType::QSizeF:
        case QMetaType::QRect:
        case QMetaType::QRectF:
        case QMetaType::QColor:
            return {};
        default:
            return m_value;
    }
}

QString ValueObject::text() const {
    const QString numbers = Wire::geometryText(m_value);
    const QString content = numbers.isNull() ? m_value.toString() : numbers;
    return content.isNull() ? QString() : QStringLiteral("%1(%2)").arg(className(), content);
}

Outcome<SharedPtr<Object>> ValueObject::readProperty(const Property& property) const {
    for (const ValueType& type : valueTypes()) {
        if (className() != QLatin1String(type.className))
            continue;
        for (const ReadableProperty& each : type.properties) {
            if (property.name() == QLatin1String(each.name))
                return SharedPtr<Object>(new ValueObject(each.read(m_value)));
        }
    }
    return Object::readProperty(property);
}

const Class* ValueObject::valueClass(const QString& name) {
    for (const auto& known : valueClasses()) {
        if (known->name() == name)
            return known.get();
    }
    return nullptr;
}

QVariant argumentValue(const SharedPtr<Object>& object) {
    if (!object)
        return {};
    if (const auto* const value = dynamic_cast<const ValueObject*>(object.get()))
        return value->value();
    return QVariant::fromValue(object);
}

}  // namespace Tamrix
