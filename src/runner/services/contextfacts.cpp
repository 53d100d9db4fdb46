// The operations of Runner on applications and their contexts.

#include <QFileInfo>
#include <algorithm>
#include <limits>

#include "base/environment.h"
#include "base/wholetext.h"
#include "platform/objectmodel/inspector.h"
#include "platform/testresult/testresult.h"
#include "runner/processes/shellwords.h"
#include "runner/services/runner.h"

namespace Tamrix {

namespace {

/// Applications run on this machine only.
Outcome<> checkHost(const QString& host) {
    const QStringList local = {QString(), QStringLiteral("localhost"), QStringLiteral("127.0.0.1"),
                               QStringLiteral("::1")};
    if (local.contains(host))
        return {};
    return fail(FailureKind::Refused,
                QStringLiteral("applications can be started and attached to on this machine only, "
                               "not on '%1'")
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

SharedPtr<ApplicationContext> Runner::startApplication(const QString& program, const QString& host,
                                                       int, int timeout, QString* error) {
    const auto started = [&]() -> Outcome<SharedPtr<Application>> {
        if (const Outcome<> checked = checkHost(host); !checked)
            return fail(checked.error());
        const Outcome<ApplicationStart> start = resolveApplication(program, m_places);
        if (!start)
            return fail(start.error());
        return noted(m_applications.start(*start, timeout));
    };
    return handedOver(started(), error);
}

Outcome<SharedPtr<Application>> Runner::noted(const Outcome<SharedPtr<Application>>& connected) {
    if (connected && m_testResult) {
        const Wire::Hello& hello = (*connected)->connection().hello();
        m_testResult->addEnvironment(
            QStringLiteral("Application '%1'").arg((*connected)->name),
            QStringLiteral("%1, Qt %2, %3").arg(hello.program, hello.qtVersion, hello.platform));
    }
    return connected;
}

SharedPtr<ApplicationContext> Runner::attachToApplication(const QString& name, const QString& host,
                                                          int, int timeout, QString* error) {
    const Outcome<> checked = checkHost(host);
    return handedOver(checked ? noted(m_applications.attach(name, timeout)) : fail(checked.error()),
                      error);
}

SharedPtr<ApplicationContext> Runner::startSpecialApplication(const QString& program,
                                                              const QStringList& arguments,
                                                              const QString& host, int, int timeout,
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
    return handedOver(m_applications.start(start, timeout), error);
}

SharedPtr<ApplicationContext> Runner::startSpecialApplication(const QString& program,
                                                              const QMap<QString, QString>& options,
                                                              const QString& host, int port,
                                                              int timeout, QString* error) {
    return startSpecialApplication(program, optionArguments(options), host, port, timeout, error);
}

bool Runner::detachApplication(SharedPtr<ApplicationContext> context) {
    const SharedPtr<Application> application = m_applications.checked(context);
    if (!application || !isValidContext(context))
        return false;
    application->detach();
    // The script goes on with what is left.
    if (m_applications.current() == application)
        m_applications.setCurrent(m_applications.first());
    return true;
}

SharedPtr<ApplicationContext> Runner::waitForApplicationLaunch(int timeout, QString* error) {
    return handedOver(m_applications.waitForLaunch(timeout), error);
}

// Contexts

SharedPtr<ApplicationContext> Runner::defaultApplicationContext() {
    return m_applications.first();
}

SharedPtr<ApplicationContext> Runner::applicationContext(const QString& name) {
    if (name.isEmpty())
        return m_applications.current();
    m_applications.work();
    return m_applications.find(name);
}

void Runner::setCurrentApplicationContext(SharedPtr<ApplicationContext> context) {
    m_applications.setCurrent(m_applications.checked(context));
}

QList<SharedPtr<ApplicationContext>> Runner::applicationContexts() {
    QList<SharedPtr<ApplicationContext>> contexts;
    for (const SharedPtr<Application>& application : m_applications.live())
        contexts.append(application);
    return contexts;
}

bool Runner::isValidContext(SharedPtr<ApplicationContext> context) {
    const SharedPtr<Application> application = m_applications.checked(context);
    if (application)
        application->work();
    return application && application->valid;
}

// Facts

SharedPtr<Application> Runner::running(const SharedPtr<ApplicationContext>& context) {
    const SharedPtr<Application> application = m_applications.checked(context);
    // The number of a process that has ended may be that of another one.
    if (application && application->isRunning())
        return application;
    QString reason = application ? application->endText() : Inspector::noApplicationText;
    if (reason.isEmpty())
        reason = QStringLiteral("The application '%1' has ended").arg(application->name);
    Inspector::self()->keep(Failure{FailureKind::Ended, reason});
    return {};
}

qint64 Runner::usedMemory(SharedPtr<ApplicationContext> context) {
    return running(context) ? residentMemory(context->pid) : -1;
}

qint64 Runner::totalTime(SharedPtr<ApplicationContext> context) {
    return running(context) ? cpuTime(context->pid) : -1;
}

QString Runner::environmentVariable(SharedPtr<ApplicationContext> context, const QString& name) {
    const SharedPtr<Application> application = m_applications.checked(context);
    if (!application)
        return {};
    return Inspector::self()->take(application->model().environmentVariable(name));
}

QString Runner::currentDirectory(SharedPtr<ApplicationContext> context) {
    return running(context) ? processDirectory(context->pid) : QString();
}

QString Runner::host(SharedPtr<ApplicationContext>) {
    return QStringLiteral("localhost");
}

int Runner::port(SharedPtr<ApplicationContext>) {
    // Applications are connected through a local socket, which has none.
    return 0;
}

bool Runner::isRunning(SharedPtr<ApplicationContext> context) {
    const SharedPtr<Application> application = m_applications.checked(context);
    return application && application->isRunning();
}

bool Runner::isFrozen(SharedPtr<ApplicationContext> context, int timeoutSeconds) {
    const SharedPtr<Application> application = m_applications.checked(context);
    if (!application || !isValidContext(context))
        return false;
    const auto milliseconds = static_cast<int>(
        std::clamp<qint64>(timeoutSeconds * 1000LL, 0, std::numeric_limits<int>::max()));
    const Outcome<> answer = application->connection().ping(milliseconds);
    return !answer && answer.error().kind == FailureKind::TimedOut;
}

int Runner::pid(SharedPtr<ApplicationContext> context) {
    return context ? context->pid : -1;
}

QString Runner::readOutput(const SharedPtr<ApplicationContext>& context,
                           QByteArray (ChildOutput::*stream)() const, bool* available) {
    const SharedPtr<Application> application = m_applications.checked(context);
    *available = application && application->program();
    if (!*available)
        return {};
    return wholeLocal8Bit((application->program()->output().*stream)());
}

QString Runner::readStdout(SharedPtr<ApplicationContext> context, bool* available) {
    return readOutput(context, &ChildOutput::standardOutput, available);
}

QString Runner::readStderr(SharedPtr<ApplicationContext> context, bool* available) {
    return readOutput(context, &ChildOutput::standardError, available);
}

QString Runner::osName(SharedPtr<ApplicationContext> context) {
    const SharedPtr<Application> application = m_applications.checked(context);
    return application ? application->connection().hello().osName : QString();
}

bool Runner::isTypeKnownInContext(const QString& typeName, int contextId) {
    const SharedPtr<Application> application = m_applications.find(contextId);
    return application && Inspector::self()->take(application->model().classByName(typeName));
}

}  // namespace Tamrix
