#include "runner/relay/remoteprogram.h"

#include <sys/socket.h>
#include <unistd.h>

#include <QDataStream>
#include <QElapsedTimer>
#include <array>
#include <csignal>

#include "base/environment.h"
#include "base/filewriting.h"
#include "base/nativebytes.h"
#include "runner/relay/links.h"
#include "runner/remote/shellscript.h"
#include "runner/remote/sshchannel.h"
#include "wire/connection.h"
#include "wire/framechannel.h"
#include "wire/protocol.h"

namespace Tamrix::Relay {

namespace {

constexpr int pollInterval = 50;
constexpr int mostQueued = 4 * 1024 * 1024;

volatile std::sig_atomic_t s_isAskedToEnd = 0;

/// Starts the relay of the installation there: the one that the environment names, the one at the
/// same place as here, or the one of which tamrixrunner is in PATH. Any user's shell takes it.
QByteArray relayCommand() {
    const QByteArray script =
        "for p in \"$TAMRIX_PREFIX\" \"$0\"; do "
        "[ -n \"$p\" ] && [ -x \"$p/lib/exec/tamrixrelay\" ] && exec \"$p/lib/exec/tamrixrelay\"; "
        "done; "
        "r=$(command -v tamrixrunner) && r=$(readlink -f \"$r\") && p=${r%/bin/*} && "
        "[ -x \"$p/lib/exec/tamrixrelay\" ] && exec \"$p/lib/exec/tamrixrelay\"; "
        "echo \"there is no installation of Tamrix: neither TAMRIX_PREFIX nor $0 nor PATH leads to "
        "one\" >&2; exit 127";
    const QString prefix = Environment::getVariable(QLatin1String(prefixVariable));
    return "exec /bin/sh -c " + quotedForShell(script) + ' ' +
           quotedForShell(toNativeBytes(prefix));
}

class Way {
public:
    Way(SshConnection& connection, SshChannel& channel, const RemoteProgram& program)
        : m_connection(connection),
          m_channel(channel),
          m_program(program),
          m_links([this](const Frame& frame) { send(frame); }) {}

    Outcome<End> run() {
        m_sinceSign.start();
        while (!m_end) {
            if (const Outcome<> worked = work(); !worked)
                return fail(worked.error());
        }
        return *m_end;
    }

private:
    void send(const Frame& frame) { m_queued += encode(frame); }

    Outcome<> work() {
        // 1. What came.
        std::array<char, 65536> buffer;
        const Outcome<int> size = m_channel.read(SshChannel::Stream::Output, buffer.data(),
                                                 static_cast<int>(buffer.size()));
        if (!size)
            return fail(size.error());
        m_inbox.append(buffer.data(), *size);
        if (const Outcome<> taken = takeFrames(); !taken || m_end)
            return taken;
        if (const Outcome<> told = passErrors(); !told)
            return told;
        if (*size == 0 && m_channel.hasOutputEnded())
            return fail(FailureKind::Ended, endOfRelay());
        // 2. What is to be told.
        if (s_isAskedToEnd != 0 && !m_hasStopped) {
            m_hasStopped = true;
            send({Type::Stop, 0, {}});
        }
        if (m_sinceSign.elapsed() > aliveInterval) {
            m_sinceSign.restart();
            send({Type::Alive, 0, {}});
        }
        while (!m_queued.isEmpty()) {
            const Outcome<int> sent = m_channel.write(m_queued.constData(), m_queued.size());
            if (!sent)
                return fail(sent.error());
            if (*sent == 0)
                break;
            m_queued.remove(0, *sent);
        }
        // 3. What the run says.
        std::vector<pollfd> watched;
        m_links.watch(&watched, m_queued.size() < mostQueued);
        const Outcome<> waited = m_connection.wait(pollInterval, &watched);
        m_links.work(watched);
        return waited;
    }

    Outcome<> takeFrames() {
        while (!m_end) {
            const Outcome<std::optional<Frame>> frame = m_inbox.take();
            if (!frame)
                return fail(
                    FailureKind::Failed,
                    QStringLiteral("%1; it may be of another version").arg(frame.error().text));
            if (!*frame)
                return {};
            if (const Outcome<> taken = take(**frame); !taken)
                return taken;
        }
        return {};
    }

    Outcome<> take(const Frame& frame) {
        if (!m_isGreeted && frame.type != Type::Hello)
            return fail(FailureKind::Failed, QStringLiteral("the relay there did not greet"));
        QString error;
        switch (frame.type) {
            case Type::Hello:
                return greet(frame.body);
            case Type::Failed:
                return fail(FailureKind::Failed, QString::fromUtf8(frame.body));
            case Type::Open:
                open(frame.link);
                break;
            case Type::Data:
            case Type::Close:
                m_links.take(frame);
                break;
            case Type::Output:
                writeAll(STDOUT_FILENO, frame.body, &error);
                break;
            case Type::Errors:
                writeAll(STDERR_FILENO, frame.body, &error);
                break;
            case Type::Ended: {
                End end;
                if (!decode(frame.body, &end))
                    return fail(FailureKind::Failed,
                                QStringLiteral("the relay's answer is not understood"));
                m_end = end;
                break;
            }
            default:
                break;
        }
        return {};
    }

    Outcome<> greet(const QByteArray& theirs) {
        if (theirs != greeting()) {
            return fail(
                FailureKind::Refused,
                QStringLiteral("the installation there is another one than here: it tells "
                               "\"%1\", this is \"%2\"")
                    .arg(QString::fromLatin1(theirs.left(200)), QString::fromLatin1(greeting())));
        }
        m_isGreeted = true;
        send({Type::Start, 0, encode(m_program.start)});
        return {};
    }

    void open(quint32 link) {
        const Outcome<int> descriptor = Wire::connectLocalSocket(m_program.agentSocket);
        if (descriptor)
            m_links.add(link, *descriptor);
        else
            send({Type::Close, link, {}});
    }

    /// What the other machine says beside the way.
    Outcome<> passErrors() {
        std::array<char, 4096> buffer;
        const Outcome<int> size = m_channel.read(SshChannel::Stream::Error, buffer.data(),
                                                 static_cast<int>(buffer.size()));
        if (!size)
            return fail(size.error());
        QString ignored;
        writeAll(STDERR_FILENO, QByteArray(buffer.data(), *size), &ignored);
        return {};
    }

    QString endOfRelay() const {
        return m_isGreeted ? QStringLiteral("the relay there has ended, and the program with it")
                           : QStringLiteral("no relay was started there");
    }

    SshConnection& m_connection;
    SshChannel& m_channel;
    const RemoteProgram& m_program;
    Links m_links;
    Inbox m_inbox;
    QByteArray m_queued;
    QElapsedTimer m_sinceSign;
    bool m_isGreeted = false;
    bool m_hasStopped = false;
    std::optional<End> m_end;
};

}  // namespace

Outcome<End> runRemoteProgram(const RemoteProgram& program) {
    const Outcome<std::unique_ptr<SshConnection>> connection = SshConnection::open(program.target);
    if (!connection)
        return fail(connection.error());
    const Outcome<std::unique_ptr<SshChannel>> channel =
        SshChannel::command(**connection, relayCommand());
    if (!channel)
        return fail(channel.error());
    std::signal(SIGTERM, [](int) { s_isAskedToEnd = 1; });
    return Way(**connection, **channel, program).run();
}

std::optional<RemoteProgram> takeProgramFromEnvironment() {
    const auto take = [](const char* variable) {
        const QString name = QLatin1String(variable);
        const QString value = Environment::getVariable(name);
        Environment::unsetVariable(name);
        return value;
    };
    RemoteProgram program;
    if (!decode(take(startVariable).toLatin1(), &program))
        return std::nullopt;
    program.agentSocket = take(Wire::connectVariable);
    program.start.token = take(Wire::tokenVariable);
    return program;
}

QByteArray encode(const RemoteProgram& program) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(Wire::streamVersion);
    stream << program.target.host << qint32{program.target.port} << encode(program.start);
    return bytes.toBase64();
}

bool decode(const QByteArray& text, RemoteProgram* program) {
    QDataStream stream(QByteArray::fromBase64(text));
    stream.setVersion(Wire::streamVersion);
    qint32 port = -1;
    QByteArray start;
    stream >> program->target.host >> port >> start;
    program->target.port = port;
    return stream.status() == QDataStream::Ok && decode(start, &program->start);
}

}  // namespace Tamrix::Relay
