#include "runner/relay/relaymessages.h"

#include <QDataStream>
#include <QtEndian>

#include "wire/protocol.h"

namespace Tamrix::Relay {

namespace {

constexpr int headSize = 9;

template <typename Write>
QByteArray written(const Write& write) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(Wire::streamVersion);
    write(stream);
    return bytes;
}

template <typename Read>
bool wasRead(const QByteArray& bytes, const Read& read) {
    QDataStream stream(bytes);
    stream.setVersion(Wire::streamVersion);
    read(stream);
    return stream.status() == QDataStream::Ok && stream.atEnd();
}

}  // namespace

QByteArray greeting() {
    return "tamrix-relay " + QByteArray::number(protocolVersion) + ' ' +
           QByteArray::number(Wire::protocolVersion) + ' ' + TAMRIX_VERSION;
}

QByteArray encode(const Frame& frame) {
    QByteArray bytes(headSize, 0);
    qToBigEndian(static_cast<quint32>(frame.body.size()), bytes.data());
    bytes[4] = static_cast<char>(frame.type);
    qToBigEndian(frame.link, bytes.data() + 5);
    return bytes + frame.body;
}

Outcome<std::optional<Frame>> Inbox::take() {
    if (m_bytes.size() < headSize)
        return std::optional<Frame>();
    const auto length = qFromBigEndian<quint32>(m_bytes.constData());
    const auto type = static_cast<quint8>(m_bytes[4]);
    if (length > longestBody || type < static_cast<quint8>(Type::Hello) ||
        type > static_cast<quint8>(Type::Alive))
        return fail(FailureKind::Failed, QStringLiteral("what came is no message of a relay"));
    const int size = headSize + static_cast<int>(length);
    if (m_bytes.size() < size)
        return std::optional<Frame>();
    Frame frame{static_cast<Type>(type), qFromBigEndian<quint32>(m_bytes.constData() + 5),
                m_bytes.mid(headSize, static_cast<int>(length))};
    m_bytes.remove(0, size);
    return std::optional<Frame>(std::move(frame));
}

QByteArray encode(const Start& start) {
    return written([&start](QDataStream& stream) {
        stream << start.words << start.hook << start.workingDirectory << start.environment
               << start.token;
    });
}

bool decode(const QByteArray& bytes, Start* start) {
    return wasRead(bytes, [start](QDataStream& stream) {
        stream >> start->words >> start->hook >> start->workingDirectory >> start->environment >>
            start->token;
    });
}

QByteArray encode(const End& end) {
    return written([&end](QDataStream& stream) { stream << end.exitCode << end.signal; });
}

bool decode(const QByteArray& bytes, End* end) {
    return wasRead(bytes, [end](QDataStream& stream) { stream >> end->exitCode >> end->signal; });
}

}  // namespace Tamrix::Relay
