#include "runner/remote/sshchannel.h"

#include <libssh/callbacks.h>
#include <libssh/libssh.h>

#include <algorithm>
#include <csignal>
#include <cstring>

namespace Tamrix {

namespace {

/// The number of a signal that the protocol names; 0 for one that it does not know.
int signalNumber(const char* name) {
    struct Row {
        const char* name;
        int number;
    };
    static const Row s_rows[] = {{"ABRT", SIGABRT}, {"ALRM", SIGALRM}, {"FPE", SIGFPE},
                                 {"HUP", SIGHUP},   {"ILL", SIGILL},   {"INT", SIGINT},
                                 {"KILL", SIGKILL}, {"PIPE", SIGPIPE}, {"QUIT", SIGQUIT},
                                 {"SEGV", SIGSEGV}, {"TERM", SIGTERM}, {"USR1", SIGUSR1},
                                 {"USR2", SIGUSR2}};
    for (const Row& row : s_rows) {
        if (name && std::strcmp(name, row.name) == 0)
            return row.number;
    }
    return 0;
}

}  // namespace

struct SshChannel::Callbacks {
    ssh_channel_callbacks_struct functions{};

    explicit Callbacks(int* exitCode) {
        functions.userdata = exitCode;
        functions.channel_exit_status_function = [](ssh_session, ssh_channel, int status,
                                                    void* code) {
            *static_cast<int*>(code) = status;
        };
        functions.channel_exit_signal_function = [](ssh_session, ssh_channel, const char* signal,
                                                    int, const char*, const char*, void* code) {
            *static_cast<int*>(code) = 128 + signalNumber(signal);
        };
        ssh_callbacks_init(&functions);
    }
};

SshChannel::SshChannel(SshConnection& connection)
    : m_connection(connection),
      m_channel(ssh_channel_new(connection.session())),
      m_callbacks(std::make_unique<Callbacks>(&m_exitCode)) {
    if (m_channel)
        ssh_set_channel_callbacks(m_channel, &m_callbacks->functions);
}

SshChannel::~SshChannel() {
    if (!m_channel)
        return;
    ssh_remove_channel_callbacks(m_channel, &m_callbacks->functions);
    ssh_channel_free(m_channel);
}

Outcome<std::unique_ptr<SshChannel>> SshChannel::open(SshConnection& connection) {
    std::unique_ptr<SshChannel> channel(new SshChannel(connection));
    if (!channel->m_channel)
        return fail(channel->connectionEnded());
    ssh_channel const raw = channel->m_channel;
    const Outcome<> opened =
        connection.repeat([raw] { return ssh_channel_open_session(raw); },
                          QStringLiteral("the server opens no further channel"));
    if (!opened)
        return fail(opened.error());
    return channel;
}

Outcome<std::unique_ptr<SshChannel>> SshChannel::command(SshConnection& connection,
                                                         const QByteArray& command) {
    Outcome<std::unique_ptr<SshChannel>> channel = open(connection);
    if (!channel)
        return channel;
    ssh_channel const raw = (*channel)->m_channel;
    const Outcome<> started = connection.repeat(
        [raw, command] { return ssh_channel_request_exec(raw, command.constData()); },
        QStringLiteral("the server runs no commands"));
    if (!started)
        return fail(started.error());
    return channel;
}

Outcome<std::unique_ptr<SshChannel>> SshChannel::subsystem(SshConnection& connection,
                                                           const char* name) {
    Outcome<std::unique_ptr<SshChannel>> channel = open(connection);
    if (!channel)
        return channel;
    ssh_channel const raw = (*channel)->m_channel;
    const Outcome<> started =
        connection.repeat([raw, name] { return ssh_channel_request_subsystem(raw, name); },
                          QStringLiteral("the server has no %1").arg(QLatin1String(name)));
    if (!started)
        return fail(started.error());
    return channel;
}

Failure SshChannel::connectionEnded() {
    const QString text = m_connection.endText();
    return {FailureKind::Ended,
            text.isEmpty() ? QStringLiteral("the server has closed the channel") : text};
}

Outcome<int> SshChannel::read(Stream stream, char* bytes, int size) {
    const int result = ssh_channel_read_nonblocking(m_channel, bytes, static_cast<uint32_t>(size),
                                                    stream == Stream::Error ? 1 : 0);
    // Behind the end of the output, reading takes no messages any more. The exit code may be one:
    // asking for it takes them, and does not wait.
    if (result == SSH_EOF)
        ssh_channel_get_exit_status(m_channel);
    if (result == SSH_EOF || result == SSH_AGAIN)
        return 0;
    if (result < 0)
        return fail(connectionEnded());
    return result;
}

Outcome<int> SshChannel::write(const char* bytes, int size) {
    // What the server has no room for would be waited for elsewhere.
    const uint32_t room = ssh_channel_window_size(m_channel);
    const uint32_t count = std::min(static_cast<uint32_t>(size), room);
    if (!m_connection.endText().isEmpty() || ssh_channel_is_closed(m_channel) != 0)
        return fail(connectionEnded());
    if (count == 0)
        return 0;
    const int result = ssh_channel_write(m_channel, bytes, count);
    if (result == SSH_AGAIN)
        return 0;
    if (result < 0)
        return fail(connectionEnded());
    return result;
}

Outcome<> SshChannel::writeAll(const QByteArray& bytes) {
    int written = 0;
    while (true) {
        const Outcome<int> count = write(bytes.constData() + written, bytes.size() - written);
        if (!count)
            return fail(count.error());
        written += *count;
        if (written == bytes.size())
            return {};
        // Looking for errors also takes in how much room the server has, which looking for output
        // does only when none is there.
        char nothing = 0;
        if (const Outcome<int> read = this->read(Stream::Error, &nothing, 0); !read)
            return fail(read.error());
        if (const Outcome<> waited = m_connection.wait(100); !waited)
            return waited;
    }
}

void SshChannel::endInput() {
    ssh_channel_send_eof(m_channel);
}

bool SshChannel::hasOutputEnded() const {
    return ssh_channel_is_eof(m_channel) != 0 || isClosed();
}

bool SshChannel::isClosed() const {
    return ssh_channel_is_closed(m_channel) != 0;
}

}  // namespace Tamrix
