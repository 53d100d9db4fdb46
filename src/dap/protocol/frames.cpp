#include "dap/protocol/frames.h"

#include <QList>
#include <QString>

namespace Tamrix::Dap {

namespace {

constexpr char headerEnd[] = "\r\n\r\n";
constexpr int headerEndLength = 4;

tl::unexpected<Failure> badHeader(const QString& problem) {
    return fail(FailureKind::BadArgument,
                QStringLiteral("the header of a message %1").arg(problem));
}

/// A header's field as a message shows it.
QString shown(const QByteArray& field) {
    const int longest = 60;
    return QString::fromLatin1(field.left(longest)).simplified();
}

}  // namespace

QByteArray framed(const QByteArray& message) {
    return "Content-Length: " + QByteArray::number(message.size()) + headerEnd + message;
}

Outcome<std::optional<QByteArray>> FrameReader::take() {
    if (m_length < 0) {
        const int end = m_buffer.indexOf(headerEnd);
        if (end > longestHeader || (end < 0 && m_buffer.size() > longestHeader))
            return badHeader(QStringLiteral("is longer than %1 bytes").arg(longestHeader));
        if (end < 0)
            return std::nullopt;
        if (const Outcome<> read = readHeader(m_buffer.left(end)); !read)
            return fail(read.error());
        m_buffer.remove(0, end + headerEndLength);
    }
    if (m_buffer.size() < m_length)
        return std::nullopt;
    QByteArray message = m_buffer.left(m_length);
    m_buffer.remove(0, m_length);
    m_length = -1;
    return message;
}

Outcome<> FrameReader::readHeader(const QByteArray& header) {
    int length = -1;
    QByteArray rest = header;
    for (const QByteArray& line : rest.replace("\r\n", "\n").split('\n')) {
        const int colon = line.indexOf(':');
        if (colon <= 0)
            return badHeader(QStringLiteral("has a line without a name: '%1'").arg(shown(line)));
        // Fields of other names are for others.
        if (line.left(colon).trimmed().toLower() != "content-length")
            continue;
        const QByteArray value = line.mid(colon + 1).trimmed();
        bool isNumber = false;
        const qulonglong number = value.toULongLong(&isNumber);
        if (!isNumber || value.startsWith('+'))
            return badHeader(QStringLiteral("has no number as length: '%1'").arg(shown(value)));
        if (number > longestMessage)
            return badHeader(QStringLiteral("tells a length of %1 bytes; at most %2 are taken")
                                 .arg(QString::number(number), QString::number(longestMessage)));
        length = static_cast<int>(number);
    }
    if (length < 0)
        return badHeader(QStringLiteral("has no Content-Length"));
    m_length = length;
    return {};
}

}  // namespace Tamrix::Dap
