#include "runner/processes/runwatch.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QByteArray>
#include <QFileInfo>
#include <cerrno>

#include "base/environment.h"

namespace Tamrix {

void RunWatch::start(const QString& runId, const QString& folder) {
    if (m_process >= 0)
        return;
    const QString path = Environment::getVariable(QLatin1String(prefixVariable)) +
                         QLatin1String("/lib/exec/tamrixwatch");
    int ends[2];
    if (!QFileInfo(path).isExecutable() || ::pipe2(ends, O_CLOEXEC) != 0) {
        qWarning("Programs may be left behind when the run is killed: '%s' can't be started",
                 qUtf8Printable(path));
        return;
    }

    QByteArray program = path.toLocal8Bit();
    QByteArray mark = (runId + QLatin1Char(':')).toLocal8Bit();
    QByteArray directory = folder.toLocal8Bit();
    char* arguments[] = {program.data(), mark.data(), directory.data(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[0], STDIN_FILENO);
    // Outside of the group that Ctrl-C and a kill of the whole group reach.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    pid_t process = -1;
    if (::posix_spawn(&process, program.constData(), &actions, &attributes, arguments, environ) ==
        0) {
        m_process = process;
        m_pipe = ends[1];
    } else {
        ::close(ends[1]);
    }
    ::close(ends[0]);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
}

RunWatch::~RunWatch() {
    if (m_process < 0)
        return;
    ::close(m_pipe);
    while (::waitpid(m_process, nullptr, 0) < 0 && errno == EINTR)
        continue;
}

}  // namespace Tamrix
