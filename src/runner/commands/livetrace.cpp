#include "runner/commands/livetrace.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <cerrno>
#include <csignal>

#include "base/bytestream.h"
#include "runner/processes/processstate.h"
#include "runner/processes/terminal.h"

namespace Tamrix {

namespace {

/// For the server to listen, in milliseconds.
constexpr int patience = 5000;

/// Empty when none comes.
QByteArray firstLine(int pipe) {
    DescriptorReader reader(pipe);
    const QDeadlineTimer deadline(patience);
    QByteArray text;
    while (!text.contains('\n') && !deadline.hasExpired()) {
        pollfd watched{pipe, POLLIN, 0};
        ::poll(&watched, 1, static_cast<int>(deadline.remainingTime()));
        if (reader.read(&text) == ByteReader::State::Ended)
            break;
    }
    return text.contains('\n') ? text.trimmed() : QByteArray();
}

}  // namespace

LiveTrace::~LiveTrace() {
    if (m_server)
        ::kill(m_server->pid(), SIGTERM);
}

Outcome<> LiveTrace::show(const QString& folder, quint16 port) {
    if (port == 0)
        return {};
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        return fail(FailureKind::Failed, qt_error_string(errno));
    ProgramStart start;
    start.program = QStringLiteral("/proc/self/exe");
    start.arguments = QStringList{QStringLiteral("trace"), folder, QStringLiteral("--port"),
                                  QString::number(port)};
    // A thread that keeps what it writes would not come along when this process forks.
    start.keepsOutput = false;
    start.outputDescriptor = ends[1];
    Outcome<std::unique_ptr<ChildProcess>> server = ChildProcess::start(start);
    ::close(ends[1]);
    const QByteArray told = server ? firstLine(ends[0]) : QByteArray();
    ::close(ends[0]);
    if (!server)
        return fail(server.error());
    m_server = std::move(*server);
    // Why not, it has said itself.
    if (told.isEmpty())
        return fail(FailureKind::Failed, QStringLiteral("the trace can't be shown"));
    tell(QString::fromUtf8(told));
    return {};
}

}  // namespace Tamrix
