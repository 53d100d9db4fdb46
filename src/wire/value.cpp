#include "wire/value.h"

#include <QColor>
#include <QDateTime>
#include <QPoint>
#include <QRect>
#include <QSize>

#include "wire/messages.h"
#include "wire/reading.h"

namespace Tamrix::Wire {

namespace {

/// The kinds of values that travel, by the number that stands in front of each.
enum Kind : quint8 {
    Nothing = 0,
    Bool = 1,
    Integer = 2,
    Double = 3,
    String = 4,
    Bytes = 5,
    Date = 6,
    Point = 7,
    Size = 8,
    Rectangle = 9,
    Colour = 10,
    List = 11,
    Map = 12,
    Remote = 13
};

void writeKind(QDataStream& stream, Kind kind) {
    stream << static_cast<quint8>(kind);
}

/// Values that are of no kind of their own.
void writeConverted(QDataStream& stream, const QVariant& value) {
    if (value.canConvert<QVariantList>() && !value.canConvert<QString>()) {
        writeValue(stream, QVariant(value.toList()));
    } else if (value.canConvert<QString>()) {
        writeKind(stream, String);
        stream << value.toString();
    } else {
        writeKind(stream, Nothing);
    }
}

template <typename T>
QVariant readAs(QDataStream& stream) {
    T value{};
    stream >> value;
    return QVariant::fromValue(value);
}

QVariant readList(QDataStream& stream, int depth);
QVariant readMap(QDataStream& stream, int depth);

QVariant readNested(QDataStream& stream, int depth) {
    quint8 kind = Nothing;
    stream >> kind;
    if (stream.status() != QDataStream::Ok)
        return {};
    switch (kind) {
        case Nothing:
            return {};
        case Bool:
            return readAs<bool>(stream);
        case Integer:
            return readAs<qint64>(stream);
        case Double:
            return readAs<double>(stream);
        case String:
            return readText(stream);
        case Bytes:
            return readBytes(stream);
        case Date:
            return readAs<QDateTime>(stream);
        case Point:
            return readAs<QPoint>(stream);
        case Size:
            return readAs<QSize>(stream);
        case Rectangle:
            return readAs<QRect>(stream);
        case Colour: {
            quint32 rgba = 0;
            stream >> rgba;
            return QColor::fromRgba(rgba);
        }
        case List:
            return readList(stream, depth);
        case Map:
            return readMap(stream, depth);
        case Remote: {
            ObjectInfo object;
            stream >> object;
            return QVariant::fromValue(object);
        }
        default:
            setCorrupt(stream);
            return {};
    }
}

QVariant readList(QDataStream& stream, int depth) {
    QVariantList list;
    const int count = readCount(stream, 1);
    if (depth >= maximalDepth)
        setCorrupt(stream);
    for (int index = 0; index < count && stream.status() == QDataStream::Ok; ++index)
        list.append(readNested(stream, depth + 1));
    return list;
}

QVariant readMap(QDataStream& stream, int depth) {
    QVariantMap map;
    const int count = readCount(stream, 5);
    if (depth >= maximalDepth)
        setCorrupt(stream);
    for (int index = 0; index < count && stream.status() == QDataStream::Ok; ++index) {
        const QString key = readText(stream);
        map.insert(key, readNested(stream, depth + 1));
    }
    return map;
}

}  // namespace

void writeValue(QDataStream& stream, const QVariant& value) {
    const int type = value.userType();
    if (type == qMetaTypeId<ObjectInfo>()) {
        writeKind(stream, Remote);
        stream << value.value<ObjectInfo>();
        return;
    }
    switch (type) {
        case QMetaType::UnknownType:
        case QMetaType::Void:
        case QMetaType::Nullptr:
            writeKind(stream, Nothing);
            return;
        case QMetaType::Bool:
            writeKind(stream, Bool);
            stream << value.toBool();
            return;
        case QMetaType::Char:
        case QMetaType::SChar:
        case QMetaType::UChar:
        case QMetaType::Short:
        case QMetaType::UShort:
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::Long:
        case QMetaType::ULong:
        case QMetaType::LongLong:
            writeKind(stream, Integer);
            stream << value.toLongLong();
            return;
        case QMetaType::ULongLong:
            // What does not fit keeps its size rather than its last digits.
            if (value.toULongLong() > static_cast<quint64>(std::numeric_limits<qint64>::max())) {
                writeKind(stream, Double);
                stream << static_cast<double>(value.toULongLong());
            } else {
                writeKind(stream, Integer);
                stream << value.toLongLong();
            }
            return;
        case QMetaType::Float:
        case QMetaType::Double:
            writeKind(stream, Double);
            stream << value.toDouble();
            return;
        case QMetaType::QString:
            writeKind(stream, String);
            stream << value.toString();
            return;
        case QMetaType::QByteArray:
            writeKind(stream, Bytes);
            stream << value.toByteArray();
            return;
        case QMetaType::QDateTime:
            writeKind(stream, Date);
            stream << value.toDateTime();
            return;
        case QMetaType::QPoint:
        case QMetaType::QPointF:
            writeKind(stream, Point);
            stream << value.toPointF().toPoint();
            return;
        case QMetaType::QSize:
        case QMetaType::QSizeF:
            writeKind(stream, Size);
            stream << value.toSizeF().toSize();
            return;
        case QMetaType::QRect:
        case QMetaType::QRectF:
            writeKind(stream, Rectangle);
            stream << value.toRectF().toRect();
            return;
        case QMetaType::QColor:
            writeKind(stream, Colour);
            stream << static_cast<quint32>(value.value<QColor>().rgba());
            return;
        case QMetaType::QVariantMap:
        case QMetaType::QVariantHash: {
            const QVariantMap map = value.toMap();
            writeKind(stream, Map);
            stream << static_cast<quint32>(map.size());
            for (auto it = map.cbegin(); it != map.cend(); ++it) {
                stream << it.key();
                writeValue(stream, it.value());
            }
            return;
        }
        case QMetaType::QVariantList:
        case QMetaType::QStringList: {
            const QVariantList list = value.toList();
            writeKind(stream, List);
            stream << static_cast<quint32>(list.size());
            for (const QVariant& each : list)
                writeValue(stream, each);
            return;
        }
        default:
            writeConverted(stream, value);
    }
}

QVariant readValue(QDataStream& stream) {
    return readNested(stream, 0);
}

}  // namespace Tamrix::Wire
