#include "wire/value.h"

#include <QColor>
#include <QDateTime>
#include <QLocale>
#include <QMetaEnum>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QVector>

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
    Remote = 13,
    RealPoint = 14,
    RealSize = 15,
    RealRectangle = 16
};

/// How a date's clock stands to UTC.
enum DateClock : quint8 { InvalidDate = 0, LocalClock = 1, UtcClock = 2, OffsetClock = 3 };

/// Dates further away from 1970 are invalid: 100 million days, in milliseconds.
constexpr qint64 farthestDate = 8'640'000'000'000'000;
/// Seconds.
constexpr qint32 largestOffset = 24 * 60 * 60;

void writeKind(QDataStream& stream, Kind kind) {
    stream << static_cast<quint8>(kind);
}

/// Not Qt's own encoding, which takes whatever time zone a stream names.
void writeDate(QDataStream& stream, const QDateTime& date) {
    const qint64 milliseconds = date.isValid() ? date.toMSecsSinceEpoch() : 0;
    DateClock clock = OffsetClock;
    if (!date.isValid() || milliseconds < -farthestDate || milliseconds > farthestDate)
        clock = InvalidDate;
    else if (date.timeSpec() == Qt::LocalTime)
        clock = LocalClock;
    else if (date.timeSpec() == Qt::UTC)
        clock = UtcClock;
    stream << static_cast<quint8>(clock) << milliseconds
           << qint32(clock == OffsetClock ? date.offsetFromUtc() : 0);
}

QDateTime readDate(QDataStream& stream) {
    quint8 clock = InvalidDate;
    qint64 milliseconds = 0;
    qint32 offset = 0;
    stream >> clock >> milliseconds >> offset;
    if (clock > OffsetClock || milliseconds < -farthestDate || milliseconds > farthestDate ||
        offset < -largestOffset || offset > largestOffset) {
        setCorrupt(stream);
        return {};
    }
    switch (clock) {
        case LocalClock:
            return QDateTime::fromMSecsSinceEpoch(milliseconds);
        case UtcClock:
            return QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC);
        case OffsetClock:
            return QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::OffsetFromUTC, offset);
        default:
            return {};
    }
}

/// Whether the type is one of flags that its class declares with Q_FLAG.
bool isFlagsType(int type) {
    const QMetaObject* const declaring = QMetaType(type).metaObject();
    const QByteArray name = QMetaType(type).name();
    return declaring && QMetaType(type).sizeOf() == sizeof(int) &&
           declaring->indexOfEnumerator(name.mid(name.lastIndexOf(':') + 1)) >= 0;
}

/// Values that are of no kind of their own.
void writeConverted(QDataStream& stream, const QVariant& value) {
    const int type = value.userType();
    if (QMetaType(type).flags() & QMetaType::IsEnumeration) {
        writeKind(stream, Integer);
        stream << value.toLongLong();
    } else if (isFlagsType(type)) {
        // Variants know flags as bytes only.
        writeKind(stream, Integer);
        stream << qint64(*static_cast<const int*>(value.constData()));
    } else if (value.canConvert<QVariantList>() && !value.canConvert<QString>()) {
        // Not toList(), which knows lists of variants and of texts only.
        writeValue(stream, QVariant(value.value<QVariantList>()));
    } else if (value.canConvert<QVariantMap>() && !value.canConvert<QString>()) {
        writeValue(stream, QVariant(value.value<QVariantMap>()));
    } else if (value.canConvert<QString>()) {
        writeKind(stream, String);
        stream << value.toString();
    } else {
        writeKind(stream, Nothing);
    }
}

/// Reads one value and those that are nested in it.
class ValueReader {
public:
    explicit ValueReader(QDataStream& stream) : m_stream(stream) {}

    QVariant read(int depth) {
        quint8 kind = Nothing;
        m_stream >> kind;
        // A value takes many times the memory of its byte.
        if (++m_count > maximalCount)
            setCorrupt(m_stream);
        if (m_stream.status() != QDataStream::Ok)
            return {};
        switch (kind) {
            case Nothing:
                return {};
            case Bool:
                return readAs<bool>();
            case Integer:
                return readAs<qint64>();
            case Double:
                return readAs<double>();
            case String:
                return readText(m_stream);
            case Bytes:
                return readBytes(m_stream);
            case Date:
                return readDate(m_stream);
            case Point:
                return readAs<QPoint>();
            case Size:
                return readAs<QSize>();
            case Rectangle:
                return readAs<QRect>();
            case Colour:
                return QColor::fromRgba(readAs<quint32>().toUInt());
            case List:
                return readList(depth);
            case Map:
                return readMap(depth);
            case Remote:
                return readAs<ObjectInfo>();
            case RealPoint:
                return readAs<QPointF>();
            case RealSize:
                return readAs<QSizeF>();
            case RealRectangle:
                return readAs<QRectF>();
            default:
                setCorrupt(m_stream);
                return {};
        }
    }

private:
    template <typename T>
    QVariant readAs() {
        T value{};
        m_stream >> value;
        return QVariant::fromValue(value);
    }

    /// The count of a container at this depth, 0 on a fault.
    int readContainerCount(int elementSize, int depth) {
        const int count = readCount(m_stream, elementSize);
        if (depth < maximalDepth)
            return count;
        setCorrupt(m_stream);
        return 0;
    }

    QVariant readList(int depth) {
        QVariantList list;
        const int count = readContainerCount(1, depth);
        for (int index = 0; index < count && m_stream.status() == QDataStream::Ok; ++index)
            list.append(read(depth + 1));
        return list;
    }

    QVariant readMap(int depth) {
        QVariantMap map;
        const int count = readContainerCount(5, depth);
        for (int index = 0; index < count && m_stream.status() == QDataStream::Ok; ++index) {
            const QString key = readText(m_stream);
            map.insert(key, read(depth + 1));
        }
        return map;
    }

    QDataStream& m_stream;
    quint32 m_count = 0;
};

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
        case QMetaType::LongLong:
            writeKind(stream, Integer);
            stream << value.toLongLong();
            return;
        case QMetaType::ULong:
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
            writeDate(stream, value.toDateTime());
            return;
        case QMetaType::QPoint:
            writeKind(stream, Point);
            stream << value.toPoint();
            return;
        case QMetaType::QPointF:
            writeKind(stream, RealPoint);
            stream << value.toPointF();
            return;
        case QMetaType::QSize:
            writeKind(stream, Size);
            stream << value.toSize();
            return;
        case QMetaType::QSizeF:
            writeKind(stream, RealSize);
            stream << value.toSizeF();
            return;
        case QMetaType::QRect:
            writeKind(stream, Rectangle);
            stream << value.toRect();
            return;
        case QMetaType::QRectF:
            writeKind(stream, RealRectangle);
            stream << value.toRectF();
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

QString geometryText(const QVariant& value) {
    QVector<qreal> numbers;
    switch (value.userType()) {
        case QMetaType::QPoint:
        case QMetaType::QPointF:
            numbers = {value.toPointF().x(), value.toPointF().y()};
            break;
        case QMetaType::QSize:
        case QMetaType::QSizeF:
            numbers = {value.toSizeF().width(), value.toSizeF().height()};
            break;
        case QMetaType::QRect:
        case QMetaType::QRectF: {
            const QRectF rect = value.toRectF();
            numbers = {rect.x(), rect.y(), rect.width(), rect.height()};
            break;
        }
        default:
            return {};
    }
    QStringList texts;
    for (const qreal number : qAsConst(numbers))
        texts.append(QString::number(number, 'g', QLocale::FloatingPointShortest));
    return texts.join(QLatin1String(", "));
}

QVariant readValue(QDataStream& stream) {
    return ValueReader(stream).read(0);
}

}  // namespace Tamrix::Wire
