#include "runner/startedprogram.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <utility>

namespace Tamrix {

namespace {

/// How many lines of standard error a message shows.
constexpr int shownErrorLines = 10;

}  // namespace

StartedProgram::StartedProgram(ApplicationStart start, std::unique_ptr<ChildProcess> process,
                               const QString& mark)
    : m_start(std::move(start)),
      m_process(std::move(process)),
      m_mark(mark.toStdString()),
      m_endDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, m_process->pid(), 0))) {}

StartedProgram::~StartedProgram() {
    end(0);
    if (m_endDescriptor >= 0)
        ::close(m_endDescriptor);
}

ProcessFilter StartedProgram::filter() const {
    // The program leads a session of its own; its number is not given away as long as one of its
    // processes is there.
    return {m_mark, true, m_process->pid()};
}

bool StartedProgram::includes(pid_t process) const {
    return isMeant(process, filter());
}

bool StartedProgram::isAlive() {
    return !m_process->hasEnded() || !findProcesses(filter()).empty();
}

int StartedProgram::end(int patience) {
    const int left = endProcesses(filter(), patience);
    m_process->hasEnded();
    return left;
}

QString StartedProgram::lastErrorText() const {
    const QString lines = output().lastErrorLines(shownErrorLines);
    return lines.isEmpty() ? QString()
                           : QStringLiteral("\nThe last lines of its standard error:\n") + lines;
}

}  // namespace Tamrix
