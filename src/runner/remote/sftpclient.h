#pragma once

#include <QMap>
#include <memory>

#include "runner/remote/sftpmessages.h"
#include "runner/remote/sshchannel.h"

namespace Tamrix {

/// Files of another machine, by SFTP. Script thread only. Each operation waits for the server's
/// answer. A connection that fails once fails always.
class SftpClient {
public:
    /// Starts SFTP on the connection, which outlives the client.
    static Outcome<std::unique_ptr<SftpClient>> open(SshConnection& connection);

    // Failures tell the path.
    Outcome<PathFacts> status(const QString& path);
    Outcome<PathFacts> linkStatus(const QString& path);
    Outcome<QString> readLink(const QString& path);
    Outcome<QString> realPath(const QString& path);
    Outcome<QStringList> entries(const QString& path);
    Outcome<> makeDirectory(const QString& path);
    Outcome<> removeDirectory(const QString& path);
    Outcome<> removeFile(const QString& path);
    /// Refused when there is something under the new name.
    Outcome<> rename(const QString& from, const QString& to);
    /// Puts a file in the place of another one, at once where the server can.
    Outcome<> replace(const QString& from, const QString& to);

    /// An open file of the server.
    using Handle = QByteArray;
    Outcome<Handle> openForReading(const QString& path);
    /// Creates a file that was not there. Permissions of 0 are those that the server gives.
    Outcome<Handle> createFile(const QString& path, quint32 permissions);
    Outcome<PathFacts> status(const Handle& handle, const QString& path);
    Outcome<> takeOver(const Handle& handle, const PathFacts& facts, const QString& path);
    Outcome<> close(const Handle& handle, const QString& path);

    // For transfers, which have several requests on their way at a time.
    Outcome<quint32> sendRead(const Handle& handle, quint64 offset, quint32 size);
    Outcome<quint32> sendWrite(const Handle& handle, quint64 offset, const char* bytes, int size);
    /// The next answer to any request; waits.
    Outcome<Sftp::Reply> takeReply();
    /// The longest requests that the server takes.
    const Sftp::Limits& limits() const { return m_limits; }

    /// What a status tells of a path, in words.
    Failure failure(const Sftp::Status& status, const QString& path);
    /// Of an answer that is not what was asked for.
    Failure failure(const Sftp::Reply& reply, const QString& path);

private:
    explicit SftpClient(SshConnection& connection) : m_connection(connection) {}
    Outcome<> greet();
    Outcome<> send(const QByteArray& message);
    /// Sends a request and waits for its answer.
    Outcome<Sftp::Reply> ask(const Sftp::Request& request);
    /// The same for one that is answered by a status.
    Outcome<> order(const Sftp::Request& request, const QString& path);
    Outcome<PathFacts> askStatus(Sftp::Type type, const QByteArray& subject, const QString& path);
    Outcome<QString> askName(Sftp::Type type, const QString& path);
    Outcome<Handle> askHandle(const Sftp::Request& request, const QString& path);
    bool isFull(const QString& path);
    Sftp::Request request(Sftp::Type type) { return {type, ++m_lastId}; }
    Failure lost(const Failure& failure);

    SshConnection& m_connection;
    std::unique_ptr<SshChannel> m_channel;
    Sftp::Inbox m_inbox;
    QMap<QByteArray, QByteArray> m_extensions;
    Sftp::Limits m_limits{32768, 32768};
    quint32 m_lastId = 0;
    /// Why the stream is of no use any more; empty while it is.
    QString m_lostText;
};

}  // namespace Tamrix
