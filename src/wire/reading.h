#pragma once

#include <QDataStream>
#include <QString>
#include <QtEndian>

#include "wire/protocol.h"

/// What reading untrusted streams needs. Internal to the encodings: nobody else includes it.
namespace Tamrix::Wire {

inline void setCorrupt(QDataStream& stream) {
    stream.setStatus(QDataStream::ReadCorruptData);
}

/// Reads the count of a container whose elements take at least `elementSize` bytes each. A count
/// that is above maximalCount, or that the rest of the stream can't hold, is a fault: nothing is
/// reserved for it. 0 on a fault.
inline int readCount(QDataStream& stream, int elementSize) {
    quint32 count = 0;
    stream >> count;
    if (stream.status() != QDataStream::Ok)
        return 0;
    if (count > maximalCount ||
        count > static_cast<quint64>(stream.device()->bytesAvailable()) / elementSize) {
        setCorrupt(stream);
        return 0;
    }
    return static_cast<int>(count);
}

/// Whether the length that comes next can be true; looks without taking it.
inline bool hasWholeBlock(QDataStream& stream) {
    char head[sizeof(quint32)];
    if (stream.device()->peek(head, sizeof head) < qint64(sizeof head)) {
        stream.setStatus(QDataStream::ReadPastEnd);
        return false;
    }
    const auto length = qFromBigEndian<quint32>(head);
    constexpr quint32 nullBlock = 0xffffffff;
    if (length != nullBlock && length > stream.device()->bytesAvailable() - 4) {
        setCorrupt(stream);
        return false;
    }
    return true;
}

inline QString readText(QDataStream& stream) {
    QString text;
    if (hasWholeBlock(stream))
        stream >> text;
    return text;
}

inline QByteArray readBytes(QDataStream& stream) {
    QByteArray bytes;
    if (hasWholeBlock(stream))
        stream >> bytes;
    return bytes;
}

}  // namespace Tamrix::Wire
