#include "runner/commands/livetrace.h"

#include <csignal>

#include "base/blocking.h"
#include "runner/processes/processstate.h"
#include "runner/processes/terminal.h"

namespace Tamrix {

namespace {

/// For the server to listen, in milliseconds.
constexpr int patience = 5000;
constexpr int interval = 20;
constexpr unsigned long microsecondsEach = 1000;

}  // namespace

LiveTrace::~LiveTrace() {
    if (m_server)
        ::kill(m_server->pid(), SIGTERM);
}

Outcome<> LiveTrace::show(const QString& folder, quint16 port) {
    if (port == 0)
        return {};
    ProgramStart start;
    start.program = QStringLiteral("/proc/self/exe");
    start.arguments = QStringList{QStringLiteral("trace"), folder, QStringLiteral("--port"),
                                  QString::number(port)};
    Outcome<std::unique_ptr<ChildProcess>> server = ChildProcess::start(start);
    if (!server)
        return fail(server.error());
    m_server = std::move(*server);
    for (int waited = 0; waited < patience; waited += interval) {
        if (const QByteArray told = m_server->output()->standardOutput(); told.contains('\n')) {
            tell(QString::fromUtf8(told.trimmed()));
            return {};
        }
        if (m_server->hasEnded()) {
            m_server->output()->waitForEnd(patience);
            return fail(FailureKind::Failed, QStringLiteral("the trace can't be shown: %1")
                                                 .arg(m_server->output()->lastErrorLines(1)));
        }
        blockingSleep(interval * microsecondsEach);
    }
    return fail(FailureKind::TimedOut, QStringLiteral("the trace is not shown in time"));
}

}  // namespace Tamrix
