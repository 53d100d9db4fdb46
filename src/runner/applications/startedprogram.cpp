#include "runner/applications/startedprogram.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace Tamrix {

namespace {

/// How many lines of standard error a message shows.
constexpr int shownErrorLines = 10;

}  // namespace

StartedProgram::StartedProgram(ApplicationStart start, std::unique_ptr<ChildProcess> process)
    : m_start(std::move(start)),
      m_process(std::move(process)),
      m_endDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, m_process->pid(), 0))) {}

StartedProgram::~StartedProgram() {
    end(0);
    if (m_endDescriptor >= 0)
        ::close(m_endDescriptor);
}

ProcessFilter StartedProgram::filter() const {
    // The program leads a session of its own; its number is not given away as long as one of its
    // processes is there.
    return {m_start.program.mark.toStdString(), true, m_process->pid()};
}

std::vector<pid_t> StartedProgram::processes() const {
    return m_isGone ? std::vector<pid_t>() : findProcesses(filter());
}

bool StartedProgram::includes(pid_t process) const {
    return !m_isGone && isMeant(process, filter());
}

bool StartedProgram::isGone() {
    if (!m_isGone && m_process->hasEnded())
        m_isGone = processes().empty();
    return m_isGone;
}

bool StartedProgram::isAlive() {
    return !isGone();
}

bool StartedProgram::settle() {
    if (!m_process->hasEnded())
        return false;
    if (m_endDescriptor >= 0)
        ::close(std::exchange(m_endDescriptor, -1));
    // Its output ends with the last of its processes, unless one has closed it.
    m_hasSettled = m_process->output()->settle() && isGone();
    return m_hasSettled;
}

void StartedProgram::keepLittleOutput() {
    m_process->output()->keepLittle();
}

int StartedProgram::end(int patience) {
    if (isGone())
        return 0;
    std::vector<pid_t> killed;
    const int left = endProcesses(filter(), patience, &killed);
    m_wasKilled =
        m_wasKilled || std::find(killed.begin(), killed.end(), m_process->pid()) != killed.end();
    m_process->hasEnded();
    m_isGone = left == 0 && m_process->hasEnded();
    return left;
}

void StartedProgram::noteApplication(const QString& name, bool isExitExpected) {
    if (m_applicationName.isEmpty())
        m_applicationName = name;
    m_isExitExpected = m_isExitExpected || isExitExpected;
}

QString StartedProgram::endText() const {
    return QStringLiteral("The application '%1' has ended: %2%3")
        .arg(m_applicationName, m_process->endText(), lastErrorText());
}

QString StartedProgram::lastErrorText() const {
    const QString lines = output().lastErrorLines(shownErrorLines);
    return lines.isEmpty() ? QString()
                           : QStringLiteral("\nThe last lines of its standard error:\n") + lines;
}

}  // namespace Tamrix
