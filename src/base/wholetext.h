#pragma once

#include <QByteArray>
#include <QString>

namespace Tamrix {

// Bytes from a file, a pipe or a connection as text. QString::fromUtf8() and fromLocal8Bit() of a
// QByteArray end at the first NUL without a word; these go to the end. What is not sound becomes
// U+FFFD; what is null stays null.

inline QString wholeUtf8(const QByteArray& bytes) {
    return bytes.isNull() ? QString() : QString::fromUtf8(bytes.constData(), bytes.size());
}

inline QString wholeLocal8Bit(const QByteArray& bytes) {
    return bytes.isNull() ? QString() : QString::fromLocal8Bit(bytes.constData(), bytes.size());
}

}  // namespace Tamrix
