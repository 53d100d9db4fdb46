#include "shared/tsvparser/delimitedtext.h"

#include <QFile>
#include <QTextStream>
#include <algorithm>
#include <cstring>

#include "base/utf8.h"
#include "shared/tsvparser/plainutf8.h"

namespace Tamrix {

namespace {

/// Whether a byte-order mark tells of an encoding with more than one byte for each character.
bool isWide(const QByteArray& bytes) {
    return bytes.startsWith("\xff\xfe") || bytes.startsWith("\xfe\xff") ||
           bytes.startsWith(QByteArray("\0\0\xfe\xff", 4));
}

/// The line, from 1, of the first byte that is no UTF-8; 0 without one.
int lineOfFault(const QByteArray& bytes) {
    const int length = validUtf8Length(bytes.begin(), bytes.end());
    return length == bytes.size() ? 0 : bytes.left(length).count('\n') + 1;
}

}  // namespace

DelimitedText::DelimitedText(const QByteArray& bytes) {
    const int begin = bytes.startsWith("\xef\xbb\xbf") ? 3 : 0;
    if (isPlainUtf8(bytes.constData() + begin, static_cast<std::size_t>(bytes.size() - begin))) {
        m_bytes = bytes;
        m_begin = begin;
        return;
    }
    // What a mistake becomes depends on how the stream cuts the bytes into blocks.
    QTextStream stream(bytes);
    stream.setCodec("UTF-8");
    m_decoded = stream.readAll();
    m_isDecoded = true;
    m_faultyLine = isWide(bytes) ? 0 : lineOfFault(bytes);
}

std::shared_ptr<const DelimitedText> DelimitedText::read(QFile* file, QString* error) {
    // A device or a pipe doesn't tell its size before.
    constexpr qint64 pieceSize = 1 << 20;
    QByteArray bytes;
    int lineBegin = 0;
    if (file->size() <= mostBytes)
        bytes.reserve(static_cast<int>(file->size()));
    while (bytes.size() <= mostBytes && file->size() <= mostBytes) {
        const int size = bytes.size();
        bytes.resize(size + static_cast<int>(pieceSize));
        const qint64 count = file->read(bytes.data() + size, pieceSize);
        bytes.resize(size + static_cast<int>(std::max<qint64>(count, 0)));
        if (count <= 0)
            break;
        // In whatever encoding: a newline has this byte.
        const void* const newline =
            ::memrchr(bytes.constData() + size, '\n', static_cast<std::size_t>(count));
        if (newline)
            lineBegin = static_cast<int>(static_cast<const char*>(newline) - bytes.constData());
        if (bytes.size() - lineBegin > mostLineBytes) {
            *error = tooLongLine();
            return {};
        }
    }
    if (file->error() != QFile::NoError) {
        *error = file->errorString();
        return {};
    }
    if (file->size() > mostBytes || bytes.size() > mostBytes) {
        *error = QStringLiteral("it is larger than 1 GiB");
        return {};
    }
    return std::make_shared<const DelimitedText>(bytes);
}

QString DelimitedText::tooLongLine() {
    return QStringLiteral("it has a line of more than %1 MiB").arg(mostLineBytes >> 20);
}

QString DelimitedText::text(const TextLine& line) const {
    return visit([&](const auto* text, std::size_t) {
        const auto* const begin = text + line.begin;
        return decoded(begin, begin + line.length);
    });
}

}  // namespace Tamrix
