#pragma once

#include <QByteArray>
#include <QString>
#include <memory>

#include "base/export.h"
#include "shared/tsvparser/linescanner.h"

class QFile;

namespace Tamrix {

/// The text of a file, read at once and kept: as UTF-8 bytes where each part of them can be decoded
/// when somebody wants it, else decoded as a whole. Never changed after it was made.
class TAMRIX_EXPORT DelimitedText {
public:
    /// What is larger can't be read.
    static constexpr qint64 mostBytes = (qint64{1} << 30) - 64;
    /// Nor what has a line of more than this many bytes: such a file is no text, and each line may
    /// have to be held in memory several times.
    static constexpr qint64 mostLineBytes = qint64{64} << 20;

    /// Decodes as QTextStream does with the codec "UTF-8": a byte-order mark tells of other
    /// encodings, mistakes become replacement characters.
    explicit DelimitedText(const QByteArray& bytes);
    /// Reads an open file to its end; null, with a text for people in `*error`, if that fails.
    static std::shared_ptr<const DelimitedText> read(QFile* file, QString* error);

    /// Calls use(text, size) with the kept text, of char (UTF-8) or char16_t.
    template <typename Use>
    decltype(auto) visit(Use use) const {
        if (m_isDecoded)
            return use(reinterpret_cast<const char16_t*>(m_decoded.utf16()),
                       static_cast<std::size_t>(m_decoded.size()));
        return use(m_bytes.constData() + m_begin,
                   static_cast<std::size_t>(m_bytes.size() - m_begin));
    }

    /// The first line of the file, from 1, with bytes that are no UTF-8 although nothing tells of
    /// another encoding; 0 without one.
    int faultyLine() const { return m_faultyLine; }

    /// Why a text with a longer line than mostLineBytes can't be read.
    static QString tooLongLine();

    /// The text of a line.
    QString text(const TextLine& line) const;

private:
    QByteArray m_bytes;
    QString m_decoded;
    /// Behind a byte-order mark.
    int m_begin = 0;
    bool m_isDecoded = false;
    int m_faultyLine = 0;
};

inline QString decoded(const char* begin, const char* end) {
    return QString::fromUtf8(begin, static_cast<int>(end - begin));
}

inline QString decoded(const char16_t* begin, const char16_t* end) {
    return QString(reinterpret_cast<const QChar*>(begin), static_cast<int>(end - begin));
}

}  // namespace Tamrix
