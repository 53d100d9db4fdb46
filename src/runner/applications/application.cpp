#include "runner/applications/application.h"

#include <unistd.h>

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QStringList>
#include <utility>

#include "base/blocking.h"
#include "interpreter/bridge/backgroundtask.h"
#include "runner/processes/shellwords.h"

namespace Tamrix {

namespace {

/// How long a process may take to end, behind its connection or when it is asked to.
constexpr int endPatience = 1000;

QString commandLineOf(const ApplicationFacts& facts) {
    return quotedShellWords(QStringList{facts.program} + facts.arguments);
}

/// The fields of /proc/PID/stat from the state on, which is the third one and has index 0 here.
QList<QByteArray> statusFields(pid_t process) {
    QFile file(QStringLiteral("/proc/%1/stat").arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray line = file.readAll();
    return line.mid(line.lastIndexOf(')') + 2).split(' ');
}

}  // namespace

Application::Application(int id, const QString& name, std::unique_ptr<Access> access,
                         std::shared_ptr<StartedProgram> program)
    : m_access(std::move(access)), m_program(std::move(program)) {
    m_isFirst = m_program && !m_program->hasApplication();
    const ApplicationFacts facts = m_access->facts();
    this->id = id;
    this->name = name;
    pid = static_cast<int>(facts.pid);
    valid = true;
    toolkitVersion = facts.toolkit;
    startTime = QDateTime::currentDateTime();
    commandLine = isMainProcess() && host().isEmpty() ? m_program->start().commandLine()
                                                      : commandLineOf(facts);
    m_access->setEndText([this] { return endText(); });
    m_access->setStallTest([this] { return isStalled(); });
    if (m_program)
        m_program->noteApplication(name, isExitExpected);
    if (isMainProcess())
        m_access->setProcessDescriptor(m_program->endDescriptor());
}

Application::~Application() {
    // The objects that a script still holds keep the connection.
    m_access->setEndText({});
    m_access->setStallTest({});
    m_access->setIdleHook({});
    m_access->setTurnHook({});
    m_access->setProcessDescriptor(-1);
}

bool Application::isMainProcess() {
    if (!m_program)
        return false;
    // The number of a process on another machine says nothing here.
    return host().isEmpty() ? m_program->process().pid() == pid : m_isFirst;
}

QString Application::host() const {
    return m_program ? m_program->start().host : QString();
}

void Application::work() {
    if (m_program)
        m_program->noteApplication(name, isExitExpected);
    valid = m_access->takeNews();
    if (!isMainProcess() || !m_program->process().hasEnded())
        return;
    // A child that the process forked may hold the other end open.
    if (valid)
        m_access->close(QStringLiteral("the process has ended"));
    m_access->setProcessDescriptor(-1);
    valid = false;
}

bool Application::isRunning() {
    if (isMainProcess())
        return !m_program->process().hasEnded();
    return host().isEmpty() ? isProcessRunning(pid) : valid;
}

bool Application::isStalled() {
    // What another machine tells of its processes takes too long to be asked for here.
    if (!host().isEmpty())
        return false;
    const qint64 before = std::exchange(m_lastCpuTime, cpuTime(pid));
    return m_lastCpuTime == before && processState(pid) != "R";
}

QString Application::endText() {
    work();
    if (valid)
        return {};
    if (m_isDetached)
        return QStringLiteral("The application '%1' was detached").arg(name);
    QElapsedTimer timer;
    timer.start();
    while (isRunning() && timer.elapsed() < endPatience)
        blockingSleep(5000);
    if (isRunning()) {
        return QStringLiteral("The connection to the application '%1' has ended: %2")
            .arg(name, m_access->endReason());
    }
    if (!isMainProcess())
        return QStringLiteral("The application '%1' has ended").arg(name);
    m_program->output().waitForEnd(200);
    return m_program->endText();
}

void Application::detach() {
    m_isDetached = true;
    m_access->close(QStringLiteral("it was detached"));
    valid = false;
}

void Application::stop(const QString& message) {
    ApplicationContext::stop(message);
    if (const QSharedPointer<BackgroundTask> video = std::exchange(videoCapture, {}))
        video->stop(message, {});
    isExitExpected = true;
    if (m_program)
        m_program->end(endPatience);
    detach();
}

qint64 cpuTime(pid_t process) {
    const QList<QByteArray> fields = statusFields(process);
    constexpr int userTime = 11;
    constexpr int systemTime = 12;
    if (fields.size() <= systemTime)
        return -1;
    const qint64 ticks = fields.at(userTime).toLongLong() + fields.at(systemTime).toLongLong();
    return ticks * 1000 / ::sysconf(_SC_CLK_TCK);
}

QString processDirectory(pid_t process) {
    return QFileInfo(QStringLiteral("/proc/%1/cwd").arg(process)).symLinkTarget();
}

QByteArray processState(pid_t process) {
    return statusFields(process).value(0);
}

bool isProcessRunning(pid_t process) {
    const QByteArray state = processState(process);
    return !state.isEmpty() && state != "Z" && state != "X";
}

}  // namespace Tamrix
