#include "runner/applications/applications.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QScopedValueRollback>
#include <algorithm>
#include <utility>

#include "base/blocking.h"
#include "base/environment.h"
#include "interpreter/bridge/testsettingstype.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/remote/remotemodel.h"
#include "runner/applications/attachable.h"
#include "runner/applications/displaystart.h"
#include "runner/applications/foreigntoolkit.h"
#include "runner/processes/interrupt.h"

namespace Tamrix {

namespace {

// How long an application is asked to close, and then to terminate, before it is killed.
constexpr int closePatience = 2000;
constexpr int terminatePatience = 1000;
/// How long the request to close may take.
constexpr int quitTimeout = 500;
/// How long what the last input does may take in one application before another one is asked.
constexpr int restTimeout = 5000;
constexpr int pollInterval = 50;
constexpr int closePollInterval = 10;
/// How long the last output of a program that has ended may take.
constexpr int outputPatience = 500;

/// What is left where no agent comes.
constexpr char withoutAgent[] =
    "; with hook=\"none\" in config.xml it is driven by its windows, pictures, mouse and keys";

Failure interruptedStart(const StartedProgram& program) {
    return {FailureKind::Failed,
            QStringLiteral("the run was interrupted while '%1' started").arg(program.start().name)};
}

}  // namespace

Applications::Applications() : m_runId(randomToken()), m_server(m_runId) {}

Applications::~Applications() {
    endAll();
}

Outcome<> Applications::prepare() {
    if (m_server.descriptor() >= 0)
        return {};
    clearLeftFolders();
    clearLeftSockets();
    const Outcome<> listening = m_server.listen();
    if (listening)
        m_watch.start(m_runId, m_server.folder());
    return listening;
}

Outcome<> Applications::useDisplay(const QString& display) {
    if (display.isEmpty() || display == QLatin1String("inherit"))
        return {};
    if (display != QLatin1String("auto")) {
        m_displayEnvironment = displayEnvironment(display);
        return {};
    }
    if (const Outcome<> prepared = prepare(); !prepared)
        return prepared;
    const Outcome<> started = m_privateDisplay.start(m_runId, m_server.folder());
    m_displayEnvironment = m_privateDisplay.environment();
    return started;
}

QString Applications::display() const {
    for (const auto& [name, value] : m_displayEnvironment) {
        if (name == QLatin1String("DISPLAY"))
            return value;
    }
    const QString wayland = Environment::getVariable(QStringLiteral("WAYLAND_DISPLAY"));
    return wayland.isEmpty() ? Environment::getVariable(QStringLiteral("DISPLAY")) : wayland;
}

// Starting

Outcome<SharedPtr<Application>> Applications::start(const ApplicationStart& wanted, int timeout) {
    if (const Outcome<> prepared = prepare(); !prepared)
        return fail(prepared.error());
    ApplicationStart start = wanted;
    start.program.mark = QStringLiteral("%1:%2").arg(m_runId, QString::number(++m_lastProgram));
    start.program.environment =
        m_displayEnvironment + m_caseEnvironment + wanted.program.environment;
    turnTo(0);
    start.launcher->prepare(&start.program, {m_server.socketPath(), m_server.token()});
    Outcome<std::unique_ptr<ChildProcess>> process = ChildProcess::start(start.program);
    if (!process)
        return fail(process.error());
    const auto program = std::make_shared<StartedProgram>(start, std::move(*process));
    m_programs.add(program);
    const int wait = timeout < 0 ? defaultStartTimeout : timeout;
    const QDeadlineTimer deadline(wait);
    const Outcome<SharedPtr<Application>> application =
        start.launcher->bringsAgent() ? waitForStart(program, deadline, wait)
                                      : waitForWindow(program, deadline, wait);
    const Outcome<> greeted =
        application ? greet(**application, deadline, wait) : fail(application.error());
    if (!greeted) {
        program->end(terminatePatience);
        m_programs.remove(program);
        forgetAll(program.get());
        return fail(greeted.error());
    }
    dropLaunched(*application);
    setCurrent(*application);
    program->watch();
    return application;
}

SharedPtr<Application> Applications::firstOf(const StartedProgram* program) {
    for (const SharedPtr<Application>& application : qAsConst(m_applications)) {
        if (application->program() == program)
            return application;
    }
    return {};
}

void Applications::dropLaunched(const SharedPtr<Application>& application) {
    m_launched.erase(std::remove(m_launched.begin(), m_launched.end(), application),
                     m_launched.end());
}

void Applications::forgetAll(const StartedProgram* program) {
    while (const SharedPtr<Application> application = firstOf(program)) {
        application->detach();
        dropLaunched(application);
        m_applications.removeOne(application);
    }
}

Outcome<SharedPtr<Application>> Applications::waitForStart(
    const std::shared_ptr<StartedProgram>& program, const QDeadlineTimer& deadline, int timeout) {
    m_server.takeRefusal();
    ForeignToolkitWatch foreignToolkit;
    QString refusal;
    while (true) {
        // In this order: a program may connect and end at once.
        const bool isAlive = program->isAlive();
        work();
        if (SharedPtr<Application> application = firstOf(program.get()))
            return application;
        if (isInterrupted())
            return fail(interruptedStart(*program));
        const AgentServer::Refusal refused = m_server.takeRefusal();
        if (!refused.text.isEmpty())
            refusal = QStringLiteral("\nA connection was refused: ") + refused.text;
        const bool isHopeless = refused.isFinal && program->includes(refused.process);
        const bool isHere = program->start().host.isEmpty();
        const QString obstacle = isAlive && isHere && foreignToolkit.isLookDue()
                                     ? foreignToolkit.look(program->processes())
                                     : QString();
        if (!isAlive || isHopeless || !obstacle.isEmpty() || deadline.hasExpired()) {
            const FailureKind kind = !isAlive                            ? FailureKind::Ended
                                     : isHopeless || !obstacle.isEmpty() ? FailureKind::Refused
                                                                         : FailureKind::TimedOut;
            return fail(kind, startFailure(*program, obstacle, isHopeless ? -1 : timeout) +
                                  refusal + program->lastErrorText());
        }
        waitForNews(static_cast<int>(std::min<qint64>(deadline.remainingTime(), pollInterval)));
    }
}

Outcome<SharedPtr<Application>> Applications::waitForWindow(
    const std::shared_ptr<StartedProgram>& program, const QDeadlineTimer& deadline, int timeout) {
    const QString name = program->start().name;
    DisplayStart start(program);
    while (true) {
        // In this order: a program may show a window and end at once.
        const bool isAlive = program->isAlive();
        Outcome<std::unique_ptr<Access>> access = start.look();
        if (!access) {
            return fail(access.error().kind,
                        QStringLiteral("'%1' was started, but %2").arg(name, access.error().text));
        }
        if (*access)
            return add(std::move(*access), name);
        if (isInterrupted())
            return fail(interruptedStart(*program));
        if (!isAlive) {
            program->output().waitForEnd(outputPatience);
            return fail(FailureKind::Ended,
                        QStringLiteral("'%1' ended before it showed a window: %2%3")
                            .arg(name, program->process().endText(), program->lastErrorText()));
        }
        if (deadline.hasExpired()) {
            return fail(FailureKind::TimedOut,
                        QStringLiteral("'%1' was started, but showed no window on the display "
                                       "'%2' within %3 ms%4")
                            .arg(name, start.display(), QString::number(timeout),
                                 program->lastErrorText()));
        }
        waitForNews(static_cast<int>(std::min<qint64>(deadline.remainingTime(), pollInterval)));
    }
}

QString Applications::startFailure(StartedProgram& program, const QString& obstacle, int timeout) {
    const QString name = program.start().name;
    if (program.process().hasEnded()) {
        program.output().waitForEnd(outputPatience);
        return QStringLiteral("'%1' ended before its agent connected: %2")
            .arg(name, program.process().endText());
    }
    if (!obstacle.isEmpty())
        return QStringLiteral("'%1' was started, but %2%3")
            .arg(name, obstacle, QLatin1String(withoutAgent));
    if (timeout < 0)
        return QStringLiteral("'%1' was started, but its agent can't be used").arg(name);
    if (isAgentLoaded(program.processes())) {
        return QStringLiteral(
                   "'%1' was started and has its agent, but its event loop did not run within %2 "
                   "ms")
            .arg(name, QString::number(timeout));
    }
    return QStringLiteral(
               "'%1' was started, but no agent in it connected within %2 ms; is it a program "
               "with Qt 5 or Qt 6?%3")
        .arg(name, QString::number(timeout), QLatin1String(withoutAgent));
}

Outcome<> Applications::greet(Application& application, const QDeadlineTimer& deadline,
                              int timeout) {
    const auto left = static_cast<int>(std::max<qint64>(deadline.remainingTime(), 0));
    const Outcome<> greeted = application.access().prepare(left);
    if (greeted)
        return {};
    if (greeted.error().kind == FailureKind::TimedOut) {
        return fail(FailureKind::TimedOut,
                    QStringLiteral("'%1' has connected, but does not answer within %2 ms")
                        .arg(application.name, QString::number(timeout)));
    }
    if (isInterrupted()) {
        return fail(FailureKind::Failed,
                    QStringLiteral("the run was interrupted while '%1' was waited for")
                        .arg(application.name));
    }
    return greeted;
}

Outcome<SharedPtr<Application>> Applications::attach(const QString& name, int timeout) {
    Outcome<std::shared_ptr<AgentConnection>> connected = connectToAttachable(name);
    if (!connected)
        return fail(connected.error());
    std::shared_ptr<AgentConnection> connection = std::move(*connected);
    connection->setIdleHook([this] { return !isInterrupted(); });
    const int wait = timeout < 0 ? defaultStartTimeout : timeout;
    const QDeadlineTimer deadline(wait);
    if (!connection->waitForHello(wait)) {
        return fail(
            FailureKind::Failed,
            QStringLiteral("'%1' can't be attached to: %2").arg(name, connection->errorText()));
    }
    SharedPtr<Application> application = add(std::move(connection), name);
    if (const Outcome<> greeted = greet(*application, deadline, wait); !greeted) {
        application->detach();
        m_applications.removeOne(application);
        return fail(greeted.error());
    }
    setCurrent(application);
    return application;
}

Outcome<SharedPtr<Application>> Applications::waitForLaunch(int timeout) {
    const int wait = timeout < 0 ? defaultStartTimeout : timeout;
    const QDeadlineTimer deadline(wait);
    while (true) {
        work();
        if (!m_launched.empty()) {
            SharedPtr<Application> application = m_launched.front();
            m_launched.pop_front();
            if (const Outcome<> greeted = greet(*application, deadline, wait); !greeted)
                return fail(greeted.error());
            if (!m_current || !m_current->valid)
                setCurrent(application);
            return application;
        }
        if (isInterrupted())
            return fail(FailureKind::Failed, QStringLiteral("the run was interrupted"));
        if (deadline.hasExpired()) {
            return fail(FailureKind::TimedOut,
                        QStringLiteral("no application was launched within %1 ms").arg(wait));
        }
        waitForNews(static_cast<int>(std::min<qint64>(deadline.remainingTime(), pollInterval)));
    }
}

// Contexts

QString Applications::uniqueName(const QString& name) {
    QString unique = name;
    for (int number = 2; find(unique); ++number)
        unique = QStringLiteral("%1_%2").arg(name, QString::number(number));
    return unique;
}

SharedPtr<Application> Applications::add(std::shared_ptr<AgentConnection> connection,
                                         const QString& name) {
    return add(std::make_unique<RemoteModel>(std::move(connection)), name);
}

SharedPtr<Application> Applications::add(std::unique_ptr<Access> access, const QString& name) {
    const auto program = m_programs.of(static_cast<pid_t>(access->facts().pid));
    return add(std::move(access), name, program);
}

SharedPtr<Application> Applications::add(std::unique_ptr<Access> access, const QString& name,
                                         const std::shared_ptr<StartedProgram>& program) {
    SharedPtr<Application> application(
        new Application(++m_lastId, uniqueName(name), std::move(access), program));
    // A request lets the others work, and ends when the run is interrupted.
    application->access().setIdleHook([this] {
        work();
        return !isInterrupted();
    });
    application->access().setTurnHook([this, id = application->id] { turnTo(id); });
    m_applications.append(application);
    return application;
}

QList<SharedPtr<Application>> Applications::live() {
    work();
    QList<SharedPtr<Application>> applications;
    for (const SharedPtr<Application>& application : qAsConst(m_applications)) {
        if (application->valid)
            applications.append(application);
    }
    return applications;
}

SharedPtr<Application> Applications::find(int id) {
    for (const SharedPtr<Application>& application : qAsConst(m_applications)) {
        if (application->id == id)
            return application;
    }
    return {};
}

SharedPtr<Application> Applications::find(const QString& name) {
    for (const SharedPtr<Application>& application : qAsConst(m_applications)) {
        if (application->name == name && application->valid)
            return application;
    }
    return {};
}

SharedPtr<Application> Applications::first() {
    return live().value(0);
}

void Applications::setCurrent(SharedPtr<Application> application) {
    m_current = application;
    Inspector::self()->setModel(application ? &application->access() : nullptr);
}

void Applications::turnTo(int id) {
    const int before = std::exchange(m_lastAsked, id);
    if (before == id)
        return;
    // Whoever fails to come to rest tells so when it is asked itself.
    if (const SharedPtr<Application> application = find(before); application && application->valid)
        static_cast<void>(application->access().settle(restTimeout));
}

SharedPtr<Application> Applications::checked(const SharedPtr<ApplicationContext>& context) {
    return context ? dynamicPointerCast<Application>(context) : SharedPtr<Application>();
}

SharedPtr<Application> Applications::owner(const SharedPtr<Object>& object) {
    for (const SharedPtr<Application>& application : qAsConst(m_applications)) {
        if (object && application->access().owns(object))
            return application;
    }
    return m_current;
}

Outcome<QString> Applications::helperMark() {
    if (const Outcome<> prepared = prepare(); !prepared)
        return fail(prepared.error());
    // With the number 0: not that of an application.
    return m_runId + QLatin1String(":0");
}

QString Applications::environmentVariable(const QString& name) const {
    for (auto entry = m_displayEnvironment.crbegin(); entry != m_displayEnvironment.crend();
         ++entry) {
        if (entry->first == name)
            return entry->second;
    }
    return Environment::getVariable(name);
}

// Working and waiting

void Applications::work() {
    if (m_isWorking)
        return;
    const QScopedValueRollback<bool> working(m_isWorking, true);
    m_server.work();
    for (auto& [connection, process] : m_server.takeAccepted()) {
        const auto program = m_programs.of(process);
        const QString name = program && !firstOf(program.get())
                                 ? program->start().name
                                 : connection->hello().program.section(QLatin1Char('/'), -1);
        m_launched.push_back(
            add(std::make_unique<RemoteModel>(std::move(connection)), name, program));
    }
    for (const SharedPtr<Application>& application : qAsConst(m_applications))
        application->work();
    m_programs.work();
}

void Applications::waitForNews(int milliseconds) {
    work();
    std::vector<pollfd> watched{{m_server.descriptor(), POLLIN, 0}};
    for (const SharedPtr<Application>& application : qAsConst(m_applications)) {
        if (application->valid)
            watched.push_back({application->access().descriptor(), POLLIN, 0});
    }
    blockingPoll(watched.data(), watched.size(), milliseconds);
    work();
    QCoreApplication::processEvents();
}

void Applications::startCall() {
    m_interruptBeforeCall = Interrupt::signalNumber();
    // A script may change the setting at any time.
    if (m_current)
        m_current->access().setReadyTimeout(TestSettingsType::s_waitForObjectTimeout);
}

bool Applications::isInterrupted() const {
    return Interrupt::signalNumber() != m_interruptBeforeCall || (m_goOn && !m_goOn());
}

// Ending

bool Applications::askToClose() {
    // What one does may end others.
    for (const SharedPtr<Application>& application : live())
        static_cast<void>(application->access().settle(closePatience));
    bool wasAsked = false;
    for (const SharedPtr<Application>& application : live()) {
        if (!application->program())
            continue;
        application->access().hurry(quitTimeout);
        wasAsked = application->access().quit() || wasAsked;
    }
    return wasAsked;
}

QStringList Applications::endAll() {
    startCall();
    work();
    m_programs.setEndCause(StartedPrograms::EndCause::AskedToClose);
    const QDeadlineTimer deadline(askToClose() ? closePatience : 0);
    while (!deadline.hasExpired() && m_programs.isAnyAlive())
        waitForNews(closePollInterval);

    work();
    m_programs.setEndCause(StartedPrograms::EndCause::Terminated);
    const QStringList left = m_programs.endAll(terminatePatience);
    setCurrent(nullptr);
    for (const SharedPtr<Application>& application : qAsConst(m_applications)) {
        if (application->valid)
            application->detach();
    }
    m_applications.clear();
    m_launched.clear();
    return left;
}

}  // namespace Tamrix
