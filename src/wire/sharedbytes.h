#pragma once

#include <QByteArray>
#include <QString>

#include "base/export.h"

namespace Tamrix::Wire {

/// Memory through which another process of this machine and user hands over many bytes: they are
/// copied in there and out here, and go through no socket. Where the other process can't reach it,
/// the bytes come another way. One load at a time; what it takes is kept for the next one.
class TAMRIX_EXPORT SharedBytes {
public:
    SharedBytes() = default;
    ~SharedBytes();
    SharedBytes(const SharedBytes&) = delete;
    SharedBytes& operator=(const SharedBytes&) = delete;

    /// How the other process opens it; empty when there is none to be had. Made at the first call.
    QString path();
    /// The first bytes of what was written. Empty when less was written, or there is not so much
    /// memory.
    QByteArray read(qint64 size) const;

private:
    int m_descriptor = -1;
};

/// Writes into the memory of that path. False when it can't be reached.
TAMRIX_EXPORT bool writeSharedBytes(const QString& path, const uchar* bytes, qint64 size);

}  // namespace Tamrix::Wire
