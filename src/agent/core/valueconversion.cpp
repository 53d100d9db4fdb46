#include "agent/core/valueconversion.h"

#include <QKeySequence>
#include <QMetaEnum>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QUuid>
#include <cmath>
#include <limits>

#include "agent/core/qtversion.h"
#include "agent/core/session.h"
#include "agent/core/vocabulary.h"

namespace Tamrix::Agent {

namespace {

bool isObject(const QVariant& value) {
    return value.userType() == qMetaTypeId<Wire::ObjectInfo>();
}

bool isNumber(int type) {
    return (type >= QMetaType::Int && type <= QMetaType::Double) ||
           (type >= QMetaType::Long && type <= QMetaType::Float);
}

/// Whether Qt may round what is real in the value for a type of integers.
bool isInRange(const QVariant& value, int typeId) {
    constexpr double most = std::numeric_limits<int>::max();
    constexpr double mostLong = 9e18;
    const auto isWithin = [](double number, double bound) { return std::abs(number) <= bound; };
    switch (value.userType()) {
        case QMetaType::Float:
        case QMetaType::Double:
            return typeId == QMetaType::Double || typeId == QMetaType::Float || !isNumber(typeId) ||
                   isWithin(value.toDouble(), mostLong);
        case QMetaType::QPointF:
            return typeId != QMetaType::QPoint ||
                   (isWithin(value.toPointF().x(), most) && isWithin(value.toPointF().y(), most));
        case QMetaType::QSizeF:
            return typeId != QMetaType::QSize || (isWithin(value.toSizeF().width(), most) &&
                                                  isWithin(value.toSizeF().height(), most));
        case QMetaType::QRectF: {
            const QRectF rect = value.toRectF();
            return typeId != QMetaType::QRect ||
                   (isWithin(rect.left(), most / 2) && isWithin(rect.top(), most / 2) &&
                    isWithin(rect.right(), most / 2) && isWithin(rect.bottom(), most / 2));
        }
        default:
            return true;
    }
}

/// Whether a number became another one, as one that does not fit does. A real number may lose
/// digits that its new type has no room for.
bool isOtherNumber(const QVariant& before, const QVariant& after) {
    const double wanted = before.toDouble();
    const double got = after.toDouble();
    if (std::isnan(wanted))
        return !std::isnan(got);
    if (after.userType() == QMetaType::Float)
        return std::isinf(got) != std::isinf(wanted) ||
               static_cast<double>(static_cast<float>(wanted)) != got;
    return wanted != got;
}

/// Whether Qt made something of a text that says nothing of it.
bool isLostText(const QString& text, const QVariant& converted) {
    const int type = converted.userType();
    if (type == QMetaType::QUuid)
        return converted.toUuid().isNull() && text.count(QLatin1Char('0')) < 32;
    if (type == QMetaType::QKeySequence)
        return !text.isEmpty() && converted.toString().isEmpty();
    // Qt looks at the limits of the large types alone.
    if (isNumber(type) && type != QMetaType::Double && type != QMetaType::Float)
        return converted.toLongLong() != text.toLongLong() &&
               converted.toULongLong() != text.toULongLong();
    return false;
}

/// The object of a handle as a pointer of class `typeName` ("QWidget*").
Fit convertObject(const QVariant& value, const QByteArray& typeName, QVariant* converted) {
    void* pointer = nullptr;
    if (isObject(value)) {
        const Element element =
            Session::self()->find(value.value<Wire::ObjectInfo>().handle).value_or(Element());
        const QByteArray wanted = QByteArray(typeName).replace('*', "").replace("const", "");
        if (element.isNull() || element.isItem() ||
            !element.object->inherits(wanted.trimmed().constData()))
            return Fit::None;
        pointer = element.object->qt_metacast(wanted.trimmed().constData());
    } else if (value.isValid()) {
        return Fit::None;
    }
    *converted = QVariant::fromValue(pointer);
    return Fit::Exact;
}

/// The enumeration of this name in the class or in its bases; invalid for none.
QMetaEnum findEnum(const QMetaObject* scope, const QByteArray& typeName) {
    const QByteArray name = typeName.mid(typeName.lastIndexOf(':') + 1);
    const QMetaObject* const qtNames = QMetaEnum::fromType<Qt::Orientation>().enclosingMetaObject();
    for (const QMetaObject* each : {scope, qtNames}) {
        for (int index = 0; each && index < each->enumeratorCount(); ++index) {
            const QMetaEnum candidate = each->enumerator(index);
            if (name == candidate.name() || name == candidate.enumName())
                return candidate;
        }
    }
    return {};
}

Fit convertEnum(const QVariant& value, const QMetaEnum& metaEnum, QVariant* converted) {
    bool isGood = isInRange(value, QMetaType::Int);
    int number = isGood ? value.toInt(&isGood) : 0;
    isGood = isGood && (!isNumber(value.userType()) || number == value.toDouble());
    if (value.userType() == QMetaType::QString && !isGood) {
        QByteArray keys = value.toString().toUtf8();
        keys = keys.mid(keys.lastIndexOf(':') + 1);
        number = metaEnum.keysToValue(keys.constData(), &isGood);
    }
    if (!isGood)
        return Fit::None;
    *converted = number;
    return Fit::Near;
}

}  // namespace

Fit convertValue(const QVariant& value, int typeId, const QByteArray& typeName,
                 const QMetaObject* scope, QVariant* converted) {
    if (typeName.endsWith('*'))
        return convertObject(value, typeName, converted);
    if (typeId == QMetaType::QVariant) {
        *converted = value;
        return Fit::Near;
    }
    const QMetaEnum metaEnum = findEnum(scope, typeName);
    if (metaEnum.isValid())
        return convertEnum(value, metaEnum, converted);
    if (typeId == QMetaType::UnknownType || isObject(value) || !value.isValid())
        return Fit::None;
    const int from = value.userType();
    *converted = value;
    if (from == typeId)
        return Fit::Exact;
    if (from == QMetaType::QString && typeId == QMetaType::Bool) {
        const QString text = normalizedWanted(true, value.toString());
        *converted = text == QLatin1String("true");
        return text == QLatin1String("true") || text == QLatin1String("false") ? Fit::Converted
                                                                               : Fit::None;
    }
    if (from == QMetaType::QString && typeId == QMetaType::QChar) {
        const QString text = value.toString();
        if (text.size() != 1)
            return Fit::None;
        *converted = text.at(0);
        return Fit::Converted;
    }
    if (!isInRange(value, typeId) || !convertVariant(converted, typeId))
        return Fit::None;
    if (from == QMetaType::QString && isLostText(value.toString(), *converted))
        return Fit::None;
    const bool becomesNumber =
        isNumber(typeId) || (QMetaType(typeId).flags() & QMetaType::IsEnumeration);
    if (isNumber(from) && becomesNumber && isOtherNumber(value, *converted))
        return Fit::None;
    return isNumber(from) && isNumber(typeId) ? Fit::Near : Fit::Converted;
}

QString describeValue(const QVariant& value) {
    if (isObject(value))
        return QStringLiteral("an object of class %1")
            .arg(value.value<Wire::ObjectInfo>().className);
    if (!value.isValid())
        return QStringLiteral("nothing");
    if (value.userType() == QMetaType::QString)
        return QStringLiteral("'%1'").arg(value.toString());
    const QString text = valueText(value);
    return text.isEmpty() ? QString::fromLatin1(value.typeName()) : text;
}

}  // namespace Tamrix::Agent
