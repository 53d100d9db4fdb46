// The operations of Runner that need an application: none can be connected.

#include "platform/objectmodel/inspector.h"
#include "runner/runner.h"

namespace Tamrix {

const QString Runner::noApplicationText = QStringLiteral("No application is connected");

namespace {

SharedPtr<ApplicationContext> failedContext(QString* error) {
    *error = Runner::noApplicationText;
    return {};
}

SharedPtr<Object> failedLookup() {
    Inspector::self()->setLastError(Runner::noApplicationText);
    return {};
}

QString noOutput(bool* available) {
    *available = false;
    return {};
}

}  // namespace

SharedPtr<ApplicationContext> Runner::startApplication(const QString&, const QString&, int, int,
                                                       QString* error) {
    return failedContext(error);
}

SharedPtr<ApplicationContext> Runner::attachToApplication(const QString&, const QString&, int, int,
                                                          QString* error) {
    return failedContext(error);
}

SharedPtr<ApplicationContext> Runner::startSpecialApplication(const QString&, const QStringList&,
                                                              const QString&, int, int,
                                                              QString* error) {
    return failedContext(error);
}

SharedPtr<ApplicationContext> Runner::startSpecialApplication(const QString&,
                                                              const QMap<QString, QString>&,
                                                              const QString&, int, int,
                                                              QString* error) {
    return failedContext(error);
}

bool Runner::detachApplication(SharedPtr<ApplicationContext>) {
    return false;
}

SharedPtr<ApplicationContext> Runner::waitForApplicationLaunch(int, QString* error) {
    return failedContext(error);
}

SharedPtr<ApplicationContext> Runner::defaultApplicationContext() {
    return {};
}

SharedPtr<ApplicationContext> Runner::applicationContext(const QString&) {
    return {};
}

void Runner::setCurrentApplicationContext(SharedPtr<ApplicationContext>) {}

QList<SharedPtr<ApplicationContext>> Runner::applicationContexts() {
    return {};
}

qint64 Runner::usedMemory(SharedPtr<ApplicationContext>) {
    return 0;
}

qint64 Runner::totalTime(SharedPtr<ApplicationContext>) {
    return 0;
}

QString Runner::environmentVariable(SharedPtr<ApplicationContext>, const QString&) {
    return {};
}

QString Runner::currentDirectory(SharedPtr<ApplicationContext>) {
    return {};
}

QString Runner::host(SharedPtr<ApplicationContext>) {
    return {};
}

int Runner::port(SharedPtr<ApplicationContext>) {
    return -1;
}

bool Runner::isRunning(SharedPtr<ApplicationContext>) {
    return false;
}

bool Runner::isFrozen(SharedPtr<ApplicationContext>, int) {
    return false;
}

int Runner::pid(SharedPtr<ApplicationContext>) {
    return -1;
}

SharedPtr<Object> Runner::waitForObjectByName(const QString&, bool, int) {
    return failedLookup();
}

SharedPtr<Object> Runner::waitForObject(SharedPtr<Object>, bool, int) {
    return failedLookup();
}

SharedPtr<Object> Runner::waitForObjectExists(const QString&, bool, int) {
    return failedLookup();
}

SharedPtr<Object> Runner::waitForObjectItem(SharedPtr<Object>, const QString&, int, int, int) {
    return failedLookup();
}

bool Runner::isValidContext(SharedPtr<ApplicationContext>) {
    return false;
}

QString Runner::readStdout(SharedPtr<ApplicationContext>, bool* available) {
    return noOutput(available);
}

QString Runner::readStderr(SharedPtr<ApplicationContext>, bool* available) {
    return noOutput(available);
}

QString Runner::osName(SharedPtr<ApplicationContext>) {
    return {};
}

bool Runner::objectHasComponents(int) {
    return false;
}

QStringList Runner::fetchObjectComponents(int) {
    return {};
}

bool Runner::keyEvent(const QString&, bool) {
    return false;
}

bool Runner::mouseEvent(SharedPtr<Object>, int, int, int, int, int, bool, bool) {
    return false;
}

QString Runner::highlightObject(SharedPtr<Object>, int) {
    return noApplicationText;
}

void Runner::stopHighlight() {}

FunctionCallResult<QSharedPointer<BackgroundTask>> Runner::startVideoCapture(
    SharedPtr<ApplicationContext>, QIODevice*) {
    return FunctionCallResult<QSharedPointer<BackgroundTask>>::error(noApplicationText);
}

bool Runner::isTypeKnownInContext(const QString&, int) {
    return false;
}

bool Runner::acquireRemoteObjectModel() {
    return false;
}

void Runner::releaseRemoteObjectModel() {}

SharedPtr<Object> Runner::objectGlobalBounds(SharedPtr<Object>) {
    return failedLookup();
}

void Runner::objectNotFound(const QString&, const QString&, QString* error) {
    *error = noApplicationText;
}

}  // namespace Tamrix
