#include "runner/remote/sftptransfer.h"

#include <unistd.h>

#include <QHash>
#include <QSet>
#include <algorithm>
#include <cerrno>
#include <functional>

#include "runner/remote/fileerrors.h"

namespace Tamrix {

using Sftp::StatusCode;
using Sftp::Type;

namespace {

/// What one request carries, if the server takes that much.
constexpr quint64 chunkSize = 128 * 1024;
/// How many bytes are on their way.
constexpr quint64 bytesUnderWay = 4 * 1024 * 1024;

/// Gives the bytes at an offset, as many as `buffer` holds or fewer at the end.
using Source = std::function<Outcome<int>(quint64 offset, QByteArray* buffer)>;

Outcome<> send(SftpClient& client, const SftpClient::Handle& handle, const Source& source,
               const QString& path) {
    const quint64 chunk = std::min(chunkSize, client.limits().write);
    const auto most = static_cast<int>(std::max<quint64>(bytesUnderWay / chunk, 1));
    QSet<quint32> underWay;
    QByteArray buffer(static_cast<int>(chunk), Qt::Uninitialized);
    quint64 offset = 0;
    bool isAtEnd = false;
    while (!isAtEnd || !underWay.isEmpty()) {
        // 1. Send as long as there is something to send and few requests are on their way.
        if (!isAtEnd && underWay.size() < most) {
            const Outcome<int> size = source(offset, &buffer);
            if (!size)
                return fail(size.error());
            isAtEnd = *size == 0;
            if (isAtEnd)
                continue;
            const Outcome<quint32> id = client.sendWrite(handle, offset, buffer.constData(), *size);
            if (!id)
                return fail(id.error());
            underWay.insert(*id);
            offset += static_cast<quint64>(*size);
            continue;
        }
        // 2. Else look what became of one.
        const Outcome<Sftp::Reply> reply = client.takeReply();
        if (!reply)
            return fail(reply.error());
        if (!underWay.remove(reply->id))
            continue;
        Sftp::Status status;
        const bool isDone = reply->type == Type::StatusReply &&
                            Sftp::readStatus(reply->body, &status) && status.code == StatusCode::Ok;
        if (!isDone)
            return fail(client.failure(*reply, path));
    }
    return {};
}

Outcome<> writeAt(int descriptor, quint64 offset, const QByteArray& bytes, const QString& path) {
    const char* data = bytes.constData();
    auto left = static_cast<size_t>(bytes.size());
    while (left > 0) {
        const ssize_t written = ::pwrite(descriptor, data, left, static_cast<off_t>(offset));
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return fail(fileFailure(errno, path));
        data += written;
        left -= static_cast<size_t>(written);
        offset += static_cast<quint64>(written);
    }
    return {};
}

/// A download on its way.
class Fetch {
public:
    Fetch(SftpClient& client, SftpClient::Handle handle, quint64 size)
        : m_client(client),
          m_handle(std::move(handle)),
          m_size(size),
          m_chunk(static_cast<quint32>(std::min(chunkSize, client.limits().read))) {}

    Outcome<> run(int descriptor, const QString& path, const QString& localPath) {
        while (true) {
            if (const Outcome<> asked = askForMore(); !asked)
                return asked;
            if (m_underWay.isEmpty())
                return {};
            const Outcome<Sftp::Reply> reply = m_client.takeReply();
            if (!reply)
                return fail(reply.error());
            const auto request = m_underWay.find(reply->id);
            if (request == m_underWay.end())
                continue;
            const Piece piece = *request;
            m_underWay.erase(request);
            if (const Outcome<> taken = take(*reply, piece, descriptor, path, localPath); !taken)
                return taken;
        }
    }

private:
    struct Piece {
        quint64 offset = 0;
        quint32 size = 0;
    };

    Outcome<> ask(const Piece& piece) {
        const Outcome<quint32> id = m_client.sendRead(m_handle, piece.offset, piece.size);
        if (!id)
            return fail(id.error());
        m_underWay.insert(*id, piece);
        return {};
    }

    /// Behind the size that was told there is one request at a time, until the end is seen.
    Outcome<> askForMore() {
        const auto most = static_cast<int>(std::max<quint64>(bytesUnderWay / m_chunk, 1));
        while (!m_isAtEnd && m_underWay.size() < most &&
               (m_offset < m_size || m_underWay.isEmpty())) {
            if (const Outcome<> asked = ask({m_offset, m_chunk}); !asked)
                return asked;
            m_offset += m_chunk;
        }
        return {};
    }

    Outcome<> take(const Sftp::Reply& reply, const Piece& piece, int descriptor,
                   const QString& path, const QString& localPath) {
        QByteArray data;
        if (reply.type == Type::DataReply && Sftp::readData(reply.body, &data) && !data.isEmpty() &&
            static_cast<quint32>(data.size()) <= piece.size) {
            if (const Outcome<> written = writeAt(descriptor, piece.offset, data, localPath);
                !written)
                return written;
            const auto size = static_cast<quint32>(data.size());
            // A server may give less than it was asked for.
            return size < piece.size ? ask({piece.offset + size, piece.size - size}) : Outcome<>();
        }
        Sftp::Status status;
        if (reply.type != Type::StatusReply || !Sftp::readStatus(reply.body, &status) ||
            status.code != StatusCode::EndOfFile)
            return fail(m_client.failure(reply, path));
        m_isAtEnd = true;
        return {};
    }

    SftpClient& m_client;
    const SftpClient::Handle m_handle;
    const quint64 m_size;
    const quint32 m_chunk;
    quint64 m_offset = 0;
    bool m_isAtEnd = false;
    QHash<quint32, Piece> m_underWay;
};

}  // namespace

Outcome<> sendFile(SftpClient& client, const SftpClient::Handle& handle, int descriptor,
                   const QString& localPath, const QString& path) {
    const Source source = [descriptor, &localPath](quint64 offset,
                                                   QByteArray* buffer) -> Outcome<int> {
        while (true) {
            const ssize_t size =
                ::pread(descriptor, buffer->data(), static_cast<size_t>(buffer->size()),
                        static_cast<off_t>(offset));
            if (size >= 0)
                return static_cast<int>(size);
            if (errno != EINTR)
                return fail(fileFailure(errno, localPath));
        }
    };
    return send(client, handle, source, path);
}

Outcome<> sendBytes(SftpClient& client, const SftpClient::Handle& handle, const QByteArray& bytes,
                    const QString& path) {
    const Source source = [&bytes](quint64 offset, QByteArray* buffer) -> Outcome<int> {
        const auto begin = static_cast<int>(offset);
        const int size = std::min(bytes.size() - begin, buffer->size());
        std::copy_n(bytes.constData() + begin, size, buffer->data());
        return size;
    };
    return send(client, handle, source, path);
}

Outcome<> fetchFile(SftpClient& client, const SftpClient::Handle& handle, quint64 size,
                    int descriptor, const QString& path, const QString& localPath) {
    return Fetch(client, handle, size).run(descriptor, path, localPath);
}

}  // namespace Tamrix
