#include "runner/remote/sftpclient.h"

#include <algorithm>
#include <array>

#include "base/nativebytes.h"
#include "runner/remote/fileerrors.h"

namespace Tamrix {

using Sftp::StatusCode;
using Sftp::Type;

namespace {

const QByteArray limitsExtension = QByteArrayLiteral("limits@openssh.com");
const QByteArray renameExtension = QByteArrayLiteral("posix-rename@openssh.com");
const QByteArray spaceExtension = QByteArrayLiteral("statvfs@openssh.com");

Failure notUnderstood() {
    return {FailureKind::Failed, QStringLiteral("the server's answer is not understood")};
}

}  // namespace

Outcome<std::unique_ptr<SftpClient>> SftpClient::open(SshConnection& connection) {
    std::unique_ptr<SftpClient> client(new SftpClient(connection));
    Outcome<std::unique_ptr<SshChannel>> channel = SshChannel::subsystem(connection, "sftp");
    if (!channel)
        return fail(channel.error());
    client->m_channel = std::move(*channel);
    if (const Outcome<> greeted = client->greet(); !greeted)
        return fail(greeted.error());
    return client;
}

Outcome<> SftpClient::greet() {
    if (const Outcome<> sent = send(Sftp::initMessage()); !sent)
        return sent;
    const Outcome<Sftp::Reply> version = takeReply();
    if (!version)
        return fail(version.error());
    if (version->type != Type::Version || version->id < Sftp::protocolVersion ||
        !Sftp::readExtensions(version->body, &m_extensions))
        return fail(lost(notUnderstood()));
    if (!m_extensions.contains(limitsExtension))
        return {};
    const Outcome<Sftp::Reply> reply = ask(request(Type::Extended).text(limitsExtension));
    if (!reply)
        return fail(reply.error());
    Sftp::Limits limits;
    if (reply->type != Type::ExtendedReply || !Sftp::readLimits(reply->body, &limits))
        return {};
    // 0 is no limit.
    constexpr quint64 most = 256 * 1024 - 1024;
    m_limits.read = limits.read == 0 ? most : std::min(limits.read, most);
    m_limits.write = limits.write == 0 ? most : std::min(limits.write, most);
    return {};
}

// Messages

Failure SftpClient::lost(const Failure& failure) {
    if (m_lostText.isEmpty())
        m_lostText = failure.text;
    return {FailureKind::Ended, m_lostText};
}

Outcome<> SftpClient::send(const QByteArray& message) {
    if (!m_lostText.isEmpty())
        return fail(FailureKind::Ended, m_lostText);
    if (const Outcome<> sent = m_channel->writeAll(message); !sent)
        return fail(lost(sent.error()));
    return {};
}

Outcome<Sftp::Reply> SftpClient::takeReply() {
    std::array<char, 65536> buffer;
    while (m_lostText.isEmpty()) {
        Outcome<std::optional<Sftp::Reply>> reply = m_inbox.take();
        if (!reply)
            return fail(lost(reply.error()));
        if (*reply)
            return std::move(**reply);
        const Outcome<int> size = m_channel->read(SshChannel::Stream::Output, buffer.data(),
                                                  static_cast<int>(buffer.size()));
        if (!size)
            return fail(lost(size.error()));
        if (*size > 0) {
            m_inbox.append(buffer.data(), *size);
            continue;
        }
        // What the server writes beside the protocol would fill the channel.
        if (const Outcome<int> other = m_channel->read(SshChannel::Stream::Error, buffer.data(),
                                                       static_cast<int>(buffer.size()));
            !other)
            return fail(lost(other.error()));
        if (m_channel->hasOutputEnded())
            return fail(lost({FailureKind::Ended,
                              QStringLiteral("the server has ended the transfer of files")}));
        if (const Outcome<> waited = m_connection.wait(100); !waited)
            return fail(lost(waited.error()));
    }
    return fail(FailureKind::Ended, m_lostText);
}

Outcome<Sftp::Reply> SftpClient::ask(const Sftp::Request& request) {
    if (const Outcome<> sent = send(request.bytes()); !sent)
        return fail(sent.error());
    const quint32 id = m_lastId;
    while (true) {
        Outcome<Sftp::Reply> reply = takeReply();
        // What a transfer that failed did not take any more is passed over.
        if (!reply || reply->id == id)
            return reply;
    }
}

Outcome<> SftpClient::order(const Sftp::Request& request, const QString& path) {
    const Outcome<Sftp::Reply> reply = ask(request);
    if (!reply)
        return fail(reply.error());
    Sftp::Status status;
    const bool isStatus =
        reply->type == Type::StatusReply && Sftp::readStatus(reply->body, &status);
    if (isStatus && status.code == StatusCode::Ok)
        return {};
    return fail(failure(*reply, path));
}

// Failures

bool SftpClient::isFull(const QString& path) {
    if (m_extensions.value(spaceExtension) != "2")
        return false;
    const int slash = path.lastIndexOf(QLatin1Char('/'));
    const QString folder = slash < 0 ? QStringLiteral(".") : path.left(slash + 1);
    const Outcome<Sftp::Reply> reply =
        ask(request(Type::Extended).text(spaceExtension).text(toNativeBytes(folder)));
    bool isFull = false;
    return reply && reply->type == Type::ExtendedReply && Sftp::readIsFull(reply->body, &isFull) &&
           isFull;
}

Failure SftpClient::failure(const Sftp::Status& status, const QString& path) {
    switch (status.code) {
        case StatusCode::NoSuchFile:
            return fileFailure(FileProblem::NotThere, path);
        case StatusCode::PermissionDenied:
            return fileFailure(FileProblem::NoPermission, path);
        case StatusCode::BadMessage:
            return fileFailure(FileProblem::NoName, path);
        case StatusCode::NotSupported:
            return {FailureKind::Refused,
                    QStringLiteral("'%1': the server can't do that").arg(path)};
        default:
            break;
    }
    // The protocol has no code for this.
    if (isFull(path))
        return fileFailure(FileProblem::NoSpace, path);
    return {FailureKind::Failed,
            QStringLiteral("'%1': the server tells \"%2\"")
                .arg(path, status.text.isEmpty() ? QStringLiteral("failure") : status.text)};
}

Failure SftpClient::failure(const Sftp::Reply& reply, const QString& path) {
    Sftp::Status status;
    if (reply.type != Type::StatusReply || !Sftp::readStatus(reply.body, &status) ||
        status.code == StatusCode::Ok)
        return lost(notUnderstood());
    return failure(status, path);
}

// Paths

Outcome<PathFacts> SftpClient::askStatus(Type type, const QByteArray& subject,
                                         const QString& path) {
    const Outcome<Sftp::Reply> reply = ask(request(type).text(subject));
    if (!reply)
        return fail(reply.error());
    PathFacts facts;
    if (reply->type == Type::AttributesReply && Sftp::readAttributes(reply->body, &facts))
        return facts;
    return fail(failure(*reply, path));
}

Outcome<PathFacts> SftpClient::status(const QString& path) {
    return askStatus(Type::Status, toNativeBytes(path), path);
}

Outcome<PathFacts> SftpClient::linkStatus(const QString& path) {
    return askStatus(Type::LinkStatus, toNativeBytes(path), path);
}

Outcome<QString> SftpClient::askName(Type type, const QString& path) {
    const Outcome<Sftp::Reply> reply = ask(request(type).text(toNativeBytes(path)));
    if (!reply)
        return fail(reply.error());
    QList<QByteArray> names;
    if (reply->type == Type::NamesReply && Sftp::readNames(reply->body, &names) &&
        names.size() == 1)
        return fromNativeBytes(names.constFirst());
    return fail(failure(*reply, path));
}

Outcome<QString> SftpClient::readLink(const QString& path) {
    return askName(Type::ReadLink, path);
}

Outcome<QString> SftpClient::realPath(const QString& path) {
    return askName(Type::RealPath, path);
}

Outcome<QStringList> SftpClient::entries(const QString& path) {
    const Outcome<Handle> handle =
        askHandle(request(Type::OpenDirectory).text(toNativeBytes(path)), path);
    if (!handle)
        return fail(handle.error());
    QStringList entries;
    while (true) {
        const Outcome<Sftp::Reply> reply = ask(request(Type::ReadDirectory).text(*handle));
        if (!reply)
            return fail(reply.error());
        QList<QByteArray> names;
        Sftp::Status status;
        if (reply->type == Type::StatusReply && Sftp::readStatus(reply->body, &status) &&
            status.code == StatusCode::EndOfFile)
            break;
        if (reply->type != Type::NamesReply || !Sftp::readNames(reply->body, &names)) {
            const Failure why = failure(*reply, path);
            static_cast<void>(close(*handle, path));
            return fail(why);
        }
        for (const QByteArray& name : qAsConst(names)) {
            if (name != "." && name != "..")
                entries.append(fromNativeBytes(name));
        }
    }
    if (const Outcome<> closed = close(*handle, path); !closed)
        return fail(closed.error());
    return entries;
}

Outcome<> SftpClient::makeDirectory(const QString& path) {
    return order(request(Type::MakeDirectory).text(toNativeBytes(path)).noAttributes(), path);
}

Outcome<> SftpClient::removeDirectory(const QString& path) {
    return order(request(Type::RemoveDirectory).text(toNativeBytes(path)), path);
}

Outcome<> SftpClient::removeFile(const QString& path) {
    return order(request(Type::Remove).text(toNativeBytes(path)), path);
}

Outcome<> SftpClient::rename(const QString& from, const QString& to) {
    return order(request(Type::Rename).text(toNativeBytes(from)).text(toNativeBytes(to)), from);
}

Outcome<> SftpClient::replace(const QString& from, const QString& to) {
    if (m_extensions.value(renameExtension) == "1") {
        return order(request(Type::Extended)
                         .text(renameExtension)
                         .text(toNativeBytes(from))
                         .text(toNativeBytes(to)),
                     to);
    }
    // Without it there is a moment in which neither file has the name.
    static_cast<void>(removeFile(to));
    return order(request(Type::Rename).text(toNativeBytes(from)).text(toNativeBytes(to)), to);
}

// Files

Outcome<SftpClient::Handle> SftpClient::askHandle(const Sftp::Request& request,
                                                  const QString& path) {
    const Outcome<Sftp::Reply> reply = ask(request);
    if (!reply)
        return fail(reply.error());
    Handle handle;
    if (reply->type == Type::HandleReply && Sftp::readHandle(reply->body, &handle))
        return handle;
    return fail(failure(*reply, path));
}

Outcome<SftpClient::Handle> SftpClient::openForReading(const QString& path) {
    return askHandle(
        request(Type::Open).text(toNativeBytes(path)).number(Sftp::openForReading).noAttributes(),
        path);
}

Outcome<SftpClient::Handle> SftpClient::createFile(const QString& path, quint32 permissions) {
    Sftp::Request open = request(Type::Open);
    open.text(toNativeBytes(path))
        .number(Sftp::openForWriting | Sftp::openCreates | Sftp::openOnlyNew);
    return askHandle(permissions == 0 ? open.noAttributes() : open.permissions(permissions), path);
}

Outcome<PathFacts> SftpClient::status(const Handle& handle, const QString& path) {
    return askStatus(Type::HandleStatus, handle, path);
}

Outcome<> SftpClient::takeOver(const Handle& handle, const PathFacts& facts, const QString& path) {
    return order(request(Type::SetHandleStatus).text(handle).permissionsAndTimes(facts), path);
}

Outcome<> SftpClient::close(const Handle& handle, const QString& path) {
    return order(request(Type::Close).text(handle), path);
}

Outcome<quint32> SftpClient::sendRead(const Handle& handle, quint64 offset, quint32 size) {
    const Outcome<> sent =
        send(request(Type::Read).text(handle).longNumber(offset).number(size).bytes());
    if (!sent)
        return fail(sent.error());
    return m_lastId;
}

Outcome<quint32> SftpClient::sendWrite(const Handle& handle, quint64 offset, const char* bytes,
                                       int size) {
    const Outcome<> sent =
        send(request(Type::Write).text(handle).longNumber(offset).text(bytes, size).bytes());
    if (!sent)
        return fail(sent.error());
    return m_lastId;
}

}  // namespace Tamrix
