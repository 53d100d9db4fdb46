#include "runner/remote/sftpmessages.h"

#include <QtEndian>

namespace Tamrix::Sftp {

namespace {

// Which attributes follow.
constexpr quint32 hasSize = 0x1;
constexpr quint32 hasOwner = 0x2;
constexpr quint32 hasPermissions = 0x4;
constexpr quint32 hasTimes = 0x8;
constexpr quint32 hasExtended = 0x80000000;

// The kinds of a mode.
constexpr quint32 kindMask = 0170000;
constexpr quint32 directoryKind = 0040000;
constexpr quint32 fileKind = 0100000;
constexpr quint32 linkKind = 0120000;

/// A name with its long form and attributes takes at least this.
constexpr quint32 smallestName = 12;

/// Takes values off the front of a body. What is not there makes it fail for good.
class Reader {
public:
    explicit Reader(const QByteArray& body) : m_body(body) {}

    bool isSound() const { return m_isSound; }
    quint32 left() const { return static_cast<quint32>(m_body.size() - m_position); }

    quint32 number() { return take<quint32>(); }
    quint64 longNumber() { return take<quint64>(); }
    /// Shares the body's bytes: it outlives the text.
    QByteArray text() {
        const quint32 size = number();
        if (!m_isSound || size > left()) {
            m_isSound = false;
            return {};
        }
        const QByteArray bytes =
            QByteArray::fromRawData(m_body.constData() + m_position, static_cast<int>(size));
        m_position += static_cast<int>(size);
        return bytes;
    }

private:
    template <typename Number>
    Number take() {
        if (!m_isSound || left() < sizeof(Number)) {
            m_isSound = false;
            return 0;
        }
        const auto value = qFromBigEndian<Number>(m_body.constData() + m_position);
        m_position += static_cast<int>(sizeof(Number));
        return value;
    }

    const QByteArray& m_body;
    int m_position = 0;
    bool m_isSound = true;
};

QByteArray copied(const QByteArray& shared) {
    return {shared.constData(), shared.size()};
}

PathFacts::Kind kindOf(quint32 mode) {
    switch (mode & kindMask) {
        case fileKind:
            return PathFacts::Kind::File;
        case directoryKind:
            return PathFacts::Kind::Directory;
        case linkKind:
            return PathFacts::Kind::Link;
        default:
            return PathFacts::Kind::Other;
    }
}

void readAttributes(Reader& reader, PathFacts* facts) {
    const quint32 flags = reader.number();
    if ((flags & hasSize) != 0)
        facts->size = reader.longNumber();
    if ((flags & hasOwner) != 0) {
        facts->ownerId = reader.number();
        facts->groupId = reader.number();
    }
    if ((flags & hasPermissions) != 0) {
        const quint32 mode = reader.number();
        facts->kind = kindOf(mode);
        facts->isLink = facts->kind == PathFacts::Kind::Link;
        facts->permissions = mode & 07777U;
    }
    if ((flags & hasTimes) != 0) {
        facts->lastAccessed = QDateTime::fromSecsSinceEpoch(reader.number());
        facts->lastModified = QDateTime::fromSecsSinceEpoch(reader.number());
    }
    if ((flags & hasExtended) == 0)
        return;
    const quint32 count = reader.number();
    for (quint32 index = 0; index < count && reader.isSound(); ++index) {
        reader.text();
        reader.text();
    }
}

}  // namespace

// Requests

Request::Request(Type type, quint32 id) {
    m_bytes.append(4, 0);
    m_bytes.append(static_cast<char>(type));
    number(id);
}

Request& Request::number(quint32 value) {
    const quint32 bytes = qToBigEndian(value);
    m_bytes.append(reinterpret_cast<const char*>(&bytes), sizeof(bytes));
    return *this;
}

Request& Request::longNumber(quint64 value) {
    const quint64 bytes = qToBigEndian(value);
    m_bytes.append(reinterpret_cast<const char*>(&bytes), sizeof(bytes));
    return *this;
}

Request& Request::text(const char* bytes, int size) {
    number(static_cast<quint32>(size));
    m_bytes.append(bytes, size);
    return *this;
}

Request& Request::permissions(quint32 permissions) {
    return number(hasPermissions).number(permissions);
}

Request& Request::permissionsAndTimes(const PathFacts& facts) {
    return number(hasPermissions | hasTimes)
        .number(facts.permissions & 0777U)
        .number(static_cast<quint32>(facts.lastAccessed.toSecsSinceEpoch()))
        .number(static_cast<quint32>(facts.lastModified.toSecsSinceEpoch()));
}

QByteArray Request::bytes() const {
    QByteArray message = m_bytes;
    qToBigEndian(static_cast<quint32>(m_bytes.size() - 4), message.data());
    return message;
}

QByteArray initMessage() {
    return Request(Type::Init, protocolVersion).bytes();
}

// Replies

Outcome<std::optional<Reply>> Inbox::take() {
    constexpr int headSize = 9;
    if (m_bytes.size() - m_begin < headSize)
        return std::optional<Reply>();
    const char* const head = m_bytes.constData() + m_begin;
    const auto length = qFromBigEndian<quint32>(head);
    if (length < headSize - 4 || length > longestMessage) {
        return fail(FailureKind::Failed,
                    QStringLiteral("the server's answer is no message of SFTP"));
    }
    const int size = 4 + static_cast<int>(length);
    if (m_bytes.size() - m_begin < size)
        return std::optional<Reply>();
    Reply reply;
    reply.type = static_cast<Type>(static_cast<uchar>(head[4]));
    reply.id = qFromBigEndian<quint32>(head + 5);
    reply.body = QByteArray(head + headSize, size - headSize);
    m_begin += size;
    // What was taken goes when it is the most: moving the rest each time would cost.
    if (m_begin > m_bytes.size() / 2) {
        m_bytes.remove(0, m_begin);
        m_begin = 0;
    }
    return std::optional<Reply>(std::move(reply));
}

bool readStatus(const QByteArray& body, Status* status) {
    Reader reader(body);
    status->code = static_cast<StatusCode>(reader.number());
    if (!reader.isSound())
        return false;
    // Old servers leave the text out.
    status->text = QString::fromUtf8(reader.text());
    return true;
}

bool readHandle(const QByteArray& body, QByteArray* handle) {
    Reader reader(body);
    *handle = copied(reader.text());
    return reader.isSound();
}

bool readData(const QByteArray& body, QByteArray* data) {
    Reader reader(body);
    *data = reader.text();
    return reader.isSound();
}

bool readNames(const QByteArray& body, QList<QByteArray>* names) {
    Reader reader(body);
    const quint32 count = reader.number();
    if (!reader.isSound() || count > reader.left() / smallestName)
        return false;
    for (quint32 index = 0; index < count && reader.isSound(); ++index) {
        names->append(copied(reader.text()));
        reader.text();
        PathFacts ignored;
        readAttributes(reader, &ignored);
    }
    return reader.isSound();
}

bool readAttributes(const QByteArray& body, PathFacts* facts) {
    Reader reader(body);
    readAttributes(reader, facts);
    return reader.isSound();
}

bool readExtensions(const QByteArray& body, QMap<QByteArray, QByteArray>* extensions) {
    Reader reader(body);
    while (reader.isSound() && reader.left() > 0) {
        const QByteArray name = copied(reader.text());
        const QByteArray version = copied(reader.text());
        if (reader.isSound())
            extensions->insert(name, version);
    }
    return reader.isSound();
}

bool readLimits(const QByteArray& body, Limits* limits) {
    Reader reader(body);
    reader.longNumber();  // the longest message
    limits->read = reader.longNumber();
    limits->write = reader.longNumber();
    return reader.isSound();
}

bool readIsFull(const QByteArray& body, bool* isFull) {
    Reader reader(body);
    // Sizes of blocks, their number, the free ones.
    for (int field = 0; field < 4; ++field)
        reader.longNumber();
    *isFull = reader.longNumber() == 0;
    return reader.isSound();
}

}  // namespace Tamrix::Sftp
