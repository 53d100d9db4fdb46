#pragma once

#include <QByteArray>
#include <QString>

namespace Tamrix {

// Bytes as a text, for calls that carry text only: the script's side and the application's side put
// the bytes of test data files into it. It need not be sound Unicode.

/// As many bytes as a file may have that goes to an application, or comes from there.
inline constexpr qint64 mostTransportBytes = qint64{255} * 1024 * 1024;

/// The first character is "1" for an even number of bytes, "0" for an odd one. Each further
/// character holds two bytes, the first in its low half; of an odd number the last character holds
/// one.
inline QString encodedQString(const QByteArray& bytes) {
    const bool isEven = bytes.size() % 2 == 0;
    QString text(1 + (bytes.size() + 1) / 2, Qt::Uninitialized);
    QChar* unit = text.data();
    *unit++ = QLatin1Char(isEven ? '1' : '0');
    for (int i = 0; i < bytes.size(); i += 2) {
        const uchar high = i + 1 < bytes.size() ? static_cast<uchar>(bytes[i + 1]) : 0;
        *unit++ = QChar(static_cast<uchar>(bytes[i]), high);
    }
    return text;
}

/// The inverse; false, with `*bytes` as it was, for a text that encodedQString() never gives.
inline bool decodedQByteArray(const QString& text, QByteArray* bytes) {
    const QChar form = text.isEmpty() ? QChar() : text.at(0);
    const bool isOdd = form == QLatin1Char('0');
    if ((!isOdd && form != QLatin1Char('1')) || (isOdd && text.size() < 2))
        return false;
    QByteArray result;
    result.reserve(2 * (text.size() - 1));
    for (int i = 1; i < text.size(); ++i) {
        result += static_cast<char>(text.at(i).cell());
        result += static_cast<char>(text.at(i).row());
    }
    if (isOdd)
        result.chop(1);
    *bytes = result;
    return true;
}

}  // namespace Tamrix
