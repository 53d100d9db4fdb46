#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

#include "base/outcome.h"
#include "runner/remote/system.h"

/// The messages of the SSH File Transfer Protocol, version 3. What a server sends is not trusted:
/// lengths are checked before anything is taken.
namespace Tamrix::Sftp {

inline constexpr quint32 protocolVersion = 3;
/// The longest message that is taken from a server: names of a folder, and as many bytes of a file
/// as are asked for at once.
inline constexpr quint32 longestMessage = 1024 * 1024;

enum class Type : quint8 {
    Init = 1,
    Version = 2,
    Open = 3,
    Close = 4,
    Read = 5,
    Write = 6,
    LinkStatus = 7,
    HandleStatus = 8,
    SetStatus = 9,
    SetHandleStatus = 10,
    OpenDirectory = 11,
    ReadDirectory = 12,
    Remove = 13,
    MakeDirectory = 14,
    RemoveDirectory = 15,
    RealPath = 16,
    Status = 17,
    Rename = 18,
    ReadLink = 19,
    StatusReply = 101,
    HandleReply = 102,
    DataReply = 103,
    NamesReply = 104,
    AttributesReply = 105,
    Extended = 200,
    ExtendedReply = 201
};

enum class StatusCode : quint32 {
    Ok = 0,
    EndOfFile = 1,
    NoSuchFile = 2,
    PermissionDenied = 3,
    Failed = 4,
    BadMessage = 5,
    NotSupported = 8
};

// How a file is opened.
inline constexpr quint32 openForReading = 0x01;
inline constexpr quint32 openForWriting = 0x02;
inline constexpr quint32 openCreates = 0x08;
inline constexpr quint32 openOnlyNew = 0x20;

/// Builds a message of the client.
class Request {
public:
    Request(Type type, quint32 id);
    Request& number(quint32 value);
    Request& longNumber(quint64 value);
    Request& text(const QByteArray& value) { return text(value.constData(), value.size()); }
    Request& text(const char* bytes, int size);
    /// No attributes.
    Request& noAttributes() { return number(0); }
    Request& permissions(quint32 permissions);
    Request& permissionsAndTimes(const PathFacts& facts);
    /// The whole message, with its length.
    QByteArray bytes() const;

private:
    QByteArray m_bytes;
};

/// The first message of a client.
QByteArray initMessage();

/// A message of a server.
struct Reply {
    Type type = Type::StatusReply;
    /// The request's; the version in the first message.
    quint32 id = 0;
    /// Behind that.
    QByteArray body;
};

/// Cuts the stream of a server into messages.
class Inbox {
public:
    void append(const char* bytes, int size) { m_bytes.append(bytes, size); }
    /// The next message; nothing when it is not whole yet. Fails for what can be no message; the
    /// stream is of no use then.
    Outcome<std::optional<Reply>> take();

private:
    QByteArray m_bytes;
    int m_begin = 0;
};

// Reading of bodies: false for one that is not whole.

struct Status {
    StatusCode code = StatusCode::Failed;
    QString text;
};
bool readStatus(const QByteArray& body, Status* status);
bool readHandle(const QByteArray& body, QByteArray* handle);
/// The bytes stay in the body.
bool readData(const QByteArray& body, QByteArray* data);
bool readNames(const QByteArray& body, QList<QByteArray>* names);
/// Of a path that is no link.
bool readAttributes(const QByteArray& body, PathFacts* facts);
/// Names of what a server can do beyond the protocol, with their versions.
bool readExtensions(const QByteArray& body, QMap<QByteArray, QByteArray>* extensions);
/// The longest read and write requests that a server takes; the answer to "limits@openssh.com".
struct Limits {
    quint64 read = 0;
    quint64 write = 0;
};
bool readLimits(const QByteArray& body, Limits* limits);
/// Whether a file system has no room for this user; the answer to "statvfs@openssh.com".
bool readIsFull(const QByteArray& body, bool* isFull);

}  // namespace Tamrix::Sftp
