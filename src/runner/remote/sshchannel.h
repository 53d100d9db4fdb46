#pragma once

#include <QByteArray>
#include <memory>

#include "base/outcome.h"
#include "runner/remote/sshconnection.h"

struct ssh_channel_struct;

namespace Tamrix {

/// One channel of a connection: a command with its streams, or a subsystem. Nothing here waits but
/// where it says so.
class SshChannel {
public:
    enum class Stream { Output, Error };

    // These wait for the server's answer.
    static Outcome<std::unique_ptr<SshChannel>> command(SshConnection& connection,
                                                        const QByteArray& command);
    static Outcome<std::unique_ptr<SshChannel>> subsystem(SshConnection& connection,
                                                          const char* name);
    /// Closes the channel.
    ~SshChannel();
    SshChannel(const SshChannel&) = delete;
    SshChannel& operator=(const SshChannel&) = delete;

    SshConnection& connection() { return m_connection; }
    /// Reads what is there, 0 for nothing. Fails with the connection.
    Outcome<int> read(Stream stream, char* bytes, int size);
    /// Writes what the server takes now, 0 for nothing.
    Outcome<int> write(const char* bytes, int size);
    /// Writes all; waits.
    Outcome<> writeAll(const QByteArray& bytes);
    void endInput();
    /// Nothing comes on either stream any more.
    bool hasOutputEnded() const;
    /// The server has closed the channel: nothing more comes of it.
    bool isClosed() const;
    /// The exit code as a shell tells it, once the server has told; -1 before.
    int exitCode() const { return m_exitCode; }

private:
    struct Callbacks;

    explicit SshChannel(SshConnection& connection);
    static Outcome<std::unique_ptr<SshChannel>> open(SshConnection& connection);
    Failure connectionEnded();

    SshConnection& m_connection;
    ssh_channel_struct* m_channel;
    std::unique_ptr<Callbacks> m_callbacks;
    int m_exitCode = -1;
};

}  // namespace Tamrix
