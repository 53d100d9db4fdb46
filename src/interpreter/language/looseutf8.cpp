#include "interpreter/language/looseutf8.h"

#include <cstring>

namespace Tamrix {

namespace {

/// Whether a lone surrogate begins at the place.
bool isLoneAt(const QString& text, int index) {
    if (!text.at(index).isSurrogate())
        return false;
    const bool isPair = text.at(index).isHighSurrogate() && index + 1 < text.size() &&
                        text.at(index + 1).isLowSurrogate();
    return !isPair;
}

bool isSurrogateAt(const char* bytes, int index, int size) {
    return index + 2 < size && bytes[index] == '\xED' && (bytes[index + 1] & 0xE0) == 0xA0 &&
           (bytes[index + 2] & 0xC0) == 0x80;
}

}  // namespace

QString fromWholeUtf8(const char* bytes, int size) {
    constexpr char mark[] = "\xEF\xBB\xBF";
    constexpr int markSize = 3;
    QString marks;
    while (size >= markSize && std::memcmp(bytes, mark, markSize) == 0) {
        marks += QChar(QChar::ByteOrderMark);
        bytes += markSize;
        size -= markSize;
    }
    const QString text = QString::fromUtf8(bytes, size);
    return marks.isEmpty() ? text : marks + text;
}

QByteArray toLooseUtf8(const QString& text) {
    if (text.isValidUtf16())
        return text.toUtf8();
    QByteArray bytes;
    int begin = 0;
    for (int index = 0; index < text.size(); ++index) {
        if (!isLoneAt(text, index)) {
            index += text.at(index).isHighSurrogate() ? 1 : 0;
            continue;
        }
        const ushort unit = text.at(index).unicode();
        bytes += text.midRef(begin, index - begin).toUtf8();
        bytes += static_cast<char>(0xE0 | (unit >> 12));
        bytes += static_cast<char>(0x80 | ((unit >> 6) & 0x3F));
        bytes += static_cast<char>(0x80 | (unit & 0x3F));
        begin = index + 1;
    }
    return bytes + text.midRef(begin).toUtf8();
}

QString fromLooseUtf8(const char* bytes, int size) {
    QString text;
    int begin = 0;
    for (int index = 0; index < size; ++index) {
        if (!isSurrogateAt(bytes, index, size))
            continue;
        text += fromWholeUtf8(bytes + begin, index - begin);
        text += QChar(0xD000 | ((bytes[index + 1] & 0x3F) << 6) | (bytes[index + 2] & 0x3F));
        begin = index + 3;
        index += 2;
    }
    return text + fromWholeUtf8(bytes + begin, size - begin);
}

}  // namespace Tamrix
