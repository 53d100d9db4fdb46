#include "runner/services/applicationservices.h"

#include <QFileInfo>
#include <algorithm>
#include <limits>

#include "base/environment.h"
#include "base/processmemory.h"
#include "base/wholetext.h"
#include "platform/objectmodel/inspector.h"
#include "platform/testresult/testresult.h"
#include "runner/processes/shellwords.h"
#include "runner/services/remoteapplication.h"

namespace Tamrix {

namespace {

bool isThisMachine(const QString& host) {
    const QStringList local = {QString(), QStringLiteral("localhost"), QStringLiteral("127.0.0.1"),
                               QStringLiteral("::1")};
    return local.contains(host);
}

/// What is of this machine only.
Outcome<> checkHost(const QString& host) {
    if (isThisMachine(host))
        return {};
    return fail(
        FailureKind::Refused,
        QStringLiteral("only startApplication() reaches another machine; this works on this "
                       "machine only, not on '%1'")
            .arg(host));
}

/// What a script gets: null with `*error` set on failure.
SharedPtr<ApplicationContext> handedOver(const Outcome<SharedPtr<Application>>& application,
                                         QString* error) {
    if (application)
        return *application;
    *error = application.error().text;
    return {};
}

/// "--name=value" each: the form in which helper programs take options.
QStringList optionArguments(const QMap<QString, QString>& options) {
    QStringList arguments;
    for (auto option = options.cbegin(); option != options.cend(); ++option)
        arguments.append(QStringLiteral("--%1=%2").arg(option.key(), option.value()));
    return arguments;
}

}  // namespace

SharedPtr<ApplicationContext> ApplicationServices::startApplication(const QString& program,
                                                                    const QString& host, int port,
                                                                    int timeout, QString* error) {
    const auto started = [&]() -> Outcome<SharedPtr<Application>> {
        const Outcome<ApplicationStart> start =
            isThisMachine(host) ? resolveApplication(program, m_state.facts.places)
                                : remoteApplication(program, {host, port}, m_state.facts.places);
        if (!start)
            return fail(start.error());
        return noted(m_state.applications.start(*start, timeout));
    };
    return handedOver(started(), error);
}

Outcome<SharedPtr<Application>> ApplicationServices::noted(
    const Outcome<SharedPtr<Application>>& connected) {
    if (connected && m_state.facts.testResult) {
        const ApplicationFacts facts = (*connected)->access().facts();
        m_state.facts.testResult->addEnvironment(
            QStringLiteral("Application '%1'").arg((*connected)->name),
            QStringLiteral("%1, %2, %3").arg(facts.program, facts.toolkit, facts.platform));
    }
    if (connected && m_state.facts.onApplication)
        m_state.facts.onApplication(*connected);
    return connected;
}

SharedPtr<ApplicationContext> ApplicationServices::attachToApplication(const QString& name,
                                                                       const QString& host, int,
                                                                       int timeout,
                                                                       QString* error) {
    const Outcome<> checked = checkHost(host);
    return handedOver(
        checked ? noted(m_state.applications.attach(name, timeout)) : fail(checked.error()), error);
}

SharedPtr<ApplicationContext> ApplicationServices::startSpecialApplication(
    const QString& program, const QStringList& arguments, const QString& host, int, int timeout,
    QString* error) {
    if (const Outcome<> checked = checkHost(host); !checked) {
        *error = checked.error().text;
        return {};
    }
    const QString path = Environment::getVariable(QLatin1String(prefixVariable)) +
                         QLatin1String("/lib/exec/") + program;
    if (!QFileInfo(path).isExecutable()) {
        *error = QStringLiteral("the helper program '%1' is not installed: there is no '%2'")
                     .arg(program, path);
        return {};
    }
    ApplicationStart start;
    start.name = program;
    start.program.program = path;
    start.program.arguments = arguments;
    return handedOver(m_state.applications.start(start, timeout), error);
}

SharedPtr<ApplicationContext> ApplicationServices::startSpecialApplication(
    const QString& program, const QMap<QString, QString>& options, const QString& host, int port,
    int timeout, QString* error) {
    return startSpecialApplication(program, optionArguments(options), host, port, timeout, error);
}

bool ApplicationServices::detachApplication(SharedPtr<ApplicationContext> context) {
    const SharedPtr<Application> application = m_state.applications.checked(context);
    if (!application || !isValidContext(context))
        return false;
    application->detach();
    // The script goes on with what is left.
    if (m_state.applications.current() == application)
        m_state.applications.setCurrent(m_state.applications.first());
    return true;
}

SharedPtr<ApplicationContext> ApplicationServices::waitForApplicationLaunch(int timeout,
                                                                            QString* error) {
    return handedOver(noted(m_state.applications.waitForLaunch(timeout)), error);
}

// Contexts

SharedPtr<ApplicationContext> ApplicationServices::defaultApplicationContext() {
    return m_state.applications.first();
}

SharedPtr<ApplicationContext> ApplicationServices::applicationContext(const QString& name) {
    if (name.isEmpty())
        return m_state.applications.current();
    m_state.applications.work();
    return m_state.applications.find(name);
}

void ApplicationServices::setCurrentApplicationContext(SharedPtr<ApplicationContext> context) {
    m_state.applications.setCurrent(m_state.applications.checked(context));
}

QList<SharedPtr<ApplicationContext>> ApplicationServices::applicationContexts() {
    QList<SharedPtr<ApplicationContext>> contexts;
    for (const SharedPtr<Application>& application : m_state.applications.live())
        contexts.append(application);
    return contexts;
}

bool ApplicationServices::isValidContext(SharedPtr<ApplicationContext> context) {
    const SharedPtr<Application> application = m_state.applications.checked(context);
    if (application)
        application->work();
    return application && application->valid;
}

// Facts

SharedPtr<Application> ApplicationServices::running(const SharedPtr<ApplicationContext>& context) {
    const SharedPtr<Application> application = m_state.applications.checked(context);
    // The number of a process that has ended may be that of another one.
    if (application && application->isRunning())
        return application;
    QString reason = application ? application->endText() : Inspector::noApplicationText;
    if (reason.isEmpty())
        reason = QStringLiteral("The application '%1' has ended").arg(application->name);
    Inspector::self()->keep(Failure{FailureKind::Ended, reason});
    return {};
}

qint64 ApplicationServices::usedMemory(SharedPtr<ApplicationContext> context) {
    const SharedPtr<Application> application = running(context);
    if (application && !application->host().isEmpty())
        return m_remoteProcesses.residentMemory(*application);
    return application ? residentMemory(context->pid) : -1;
}

qint64 ApplicationServices::totalTime(SharedPtr<ApplicationContext> context) {
    const SharedPtr<Application> application = running(context);
    if (application && !application->host().isEmpty())
        return m_remoteProcesses.cpuTime(*application);
    return application ? cpuTime(context->pid) : -1;
}

QString ApplicationServices::environmentVariable(SharedPtr<ApplicationContext> context,
                                                 const QString& name) {
    const SharedPtr<Application> application = m_state.applications.checked(context);
    if (!application)
        return {};
    return Inspector::self()->take(application->access().environmentVariable(name));
}

QString ApplicationServices::currentDirectory(SharedPtr<ApplicationContext> context) {
    const SharedPtr<Application> application = running(context);
    if (application && !application->host().isEmpty())
        return m_remoteProcesses.directory(*application);
    return application ? processDirectory(context->pid) : QString();
}

QString ApplicationServices::host(SharedPtr<ApplicationContext> context) {
    const SharedPtr<Application> application = m_state.applications.checked(context);
    const QString host = application ? application->host() : QString();
    return host.isEmpty() ? QStringLiteral("localhost") : host;
}

int ApplicationServices::port(SharedPtr<ApplicationContext> context) {
    const SharedPtr<Application> application = m_state.applications.checked(context);
    // Those of this machine are connected through a local socket, which has none.
    if (!application || application->host().isEmpty())
        return 0;
    return std::max(application->program()->start().port, 0);
}

bool ApplicationServices::isRunning(SharedPtr<ApplicationContext> context) {
    const SharedPtr<Application> application = m_state.applications.checked(context);
    return application && application->isRunning();
}

bool ApplicationServices::isFrozen(SharedPtr<ApplicationContext> context, int timeoutSeconds) {
    const SharedPtr<Application> application = m_state.applications.checked(context);
    if (!application || !isValidContext(context))
        return false;
    const auto milliseconds = static_cast<int>(
        std::clamp<qint64>(timeoutSeconds * 1000LL, 0, std::numeric_limits<int>::max()));
    const Outcome<> answer = application->access().ping(milliseconds);
    return !answer && answer.error().kind == FailureKind::TimedOut;
}

int ApplicationServices::pid(SharedPtr<ApplicationContext> context) {
    return context ? context->pid : -1;
}

QString ApplicationServices::readOutput(const SharedPtr<ApplicationContext>& context,
                                        QByteArray (ChildOutput::*stream)() const,
                                        bool* available) {
    const SharedPtr<Application> application = m_state.applications.checked(context);
    *available = application && application->program();
    if (!*available)
        return {};
    return wholeLocal8Bit((application->program()->output().*stream)());
}

QString ApplicationServices::readStdout(SharedPtr<ApplicationContext> context, bool* available) {
    return readOutput(context, &ChildOutput::standardOutput, available);
}

QString ApplicationServices::readStderr(SharedPtr<ApplicationContext> context, bool* available) {
    return readOutput(context, &ChildOutput::standardError, available);
}

QString ApplicationServices::osName(SharedPtr<ApplicationContext> context) {
    const SharedPtr<Application> application = m_state.applications.checked(context);
    return application ? application->access().facts().osName : QString();
}

bool ApplicationServices::isTypeKnownInContext(const QString& typeName, int contextId) {
    const SharedPtr<Application> application = m_state.applications.find(contextId);
    return application && Inspector::self()->take(application->access().classByName(typeName));
}

}  // namespace Tamrix
