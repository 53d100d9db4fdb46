#pragma once

#include <utility>

#include "interpreter/bridge/runnerinterface.h"
#include "platform/objectmodel/inspector.h"

namespace Tamrix::Test {

/// The runner of tests: facts are public members, and what needs an application gives the canned
/// answers, which fail by default. Calls that change something are written down.
class FakeRunner : public RunnerInterface {
public:
    // What the library is told.
    QString casePath;
    QString caseName = "tst_fake";
    QString suiteName = "suite_fake";
    QString resultDirectory;
    QString group = "the group";
    QString device = "the device";
    QList<SharedPtr<ApplicationContext>> contexts;
    /// Types that isTypeKnownInContext() knows, with the context's id.
    QList<std::pair<QString, int>> knownTypes;
    bool ideMode = false;
    bool hasObjectModel = false;
    TestResult* result = nullptr;

    // Answers about applications; `contexts` above are all of them.
    /// What starting, attaching and waiting for a launch give, and their error text.
    SharedPtr<ApplicationContext> started;
    QString startError = "not connected";
    SharedPtr<ApplicationContext> defaultContext;
    SharedPtr<ApplicationContext> currentContext;
    bool detaches = false;
    /// Why facts that need a running application can't be told; empty when they can.
    QString factError;
    /// Null when the application's output is not kept.
    QString output;
    /// What all waits for objects give; a failing one sets the inspector's error to lookupError.
    SharedPtr<Object> found;
    QString lookupError = "it is not there";
    /// What waitForObjectByName() gives instead when it is set.
    SharedPtr<Object> foundByName;
    bool takesInput = false;
    QString highlightError;
    SharedPtr<Object> bounds;
    /// Components of objects, by their remote ids.
    QMap<int, QStringList> components;

    // What the library did.
    /// Calls with their arguments: "snooze 1.5".
    QStringList calls;
    int acquired = 0;
    int released = 0;
    int processedEvents = 0;

    SharedPtr<ApplicationContext> startApplication(const QString& program, const QString& host,
                                                   int port, int timeout, QString* error) override {
        return start("start " + program, host, port, timeout, error);
    }
    SharedPtr<ApplicationContext> attachToApplication(const QString& name, const QString& host,
                                                      int port, int timeout,
                                                      QString* error) override {
        return start("attach " + name, host, port, timeout, error);
    }
    SharedPtr<ApplicationContext> startSpecialApplication(const QString& program,
                                                          const QStringList& arguments,
                                                          const QString& host, int port,
                                                          int timeout, QString* error) override {
        return start("special " + program + " (" + arguments.join(", ") + ")", host, port, timeout,
                     error);
    }
    SharedPtr<ApplicationContext> startSpecialApplication(const QString&,
                                                          const QMap<QString, QString>&,
                                                          const QString&, int, int,
                                                          QString* error) override {
        return fail(error, SharedPtr<ApplicationContext>());
    }
    bool detachApplication(SharedPtr<ApplicationContext>) override { return detaches; }
    SharedPtr<ApplicationContext> waitForApplicationLaunch(int timeout, QString* error) override {
        return start("launch", "", -1, timeout, error);
    }
    SharedPtr<ApplicationContext> defaultApplicationContext() override { return defaultContext; }
    SharedPtr<ApplicationContext> applicationContext(const QString& name) override {
        if (name.isEmpty())
            return currentContext;
        for (const SharedPtr<ApplicationContext>& context : contexts) {
            if (context->name == name)
                return context;
        }
        return {};
    }
    void setCurrentApplicationContext(SharedPtr<ApplicationContext> context) override {
        currentContext = context;
    }
    QList<SharedPtr<ApplicationContext>> applicationContexts() override { return contexts; }
    qint64 usedMemory(SharedPtr<ApplicationContext>) override { return fact(1LL << 40); }
    qint64 totalTime(SharedPtr<ApplicationContext>) override { return fact(1LL << 41); }
    QString environmentVariable(SharedPtr<ApplicationContext>, const QString& name) override {
        return "value of " + name;
    }
    QString currentDirectory(SharedPtr<ApplicationContext>) override {
        return fact(QString("/cwd"));
    }
    QString host(SharedPtr<ApplicationContext>) override { return "host"; }
    int port(SharedPtr<ApplicationContext>) override { return 4711; }
    bool isRunning(SharedPtr<ApplicationContext> context) override { return context->valid; }
    bool isFrozen(SharedPtr<ApplicationContext>, int timeoutSeconds) override {
        return timeoutSeconds == 3;
    }
    int pid(SharedPtr<ApplicationContext>) override { return 99; }
    void snooze(double seconds) override { calls.append(QString("snooze %1").arg(seconds)); }
    SharedPtr<Object> waitForObjectByName(const QString& realName, bool, int timeout) override {
        const SharedPtr<Object> object = lookUp("wait for " + realName, timeout);
        return foundByName ? foundByName : object;
    }
    SharedPtr<Object> waitForObject(SharedPtr<Object> object, bool, int timeout) override {
        return lookUp("wait for object " + object->realName(), timeout);
    }
    SharedPtr<Object> waitForObjectExists(const QString& realName, bool, int timeout) override {
        return lookUp("wait until exists " + realName, timeout);
    }
    SharedPtr<Object> waitForObjectItem(SharedPtr<Object>, const QString& item, int row, int column,
                                        int timeout) override {
        return lookUp(QString("wait for item '%1' row %2 column %3").arg(item).arg(row).arg(column),
                      timeout);
    }
    SharedPtr<Object> waitForProperties(SharedPtr<Object> object, const QString& realName,
                                        const ObjectName& properties, int timeout) override {
        return lookUp(QString("wait until %1 has %2")
                          .arg(object ? object->realName() : realName, properties.qualifiedName()),
                      timeout);
    }
    bool isValidContext(SharedPtr<ApplicationContext> context) override { return context->valid; }
    QString readStdout(SharedPtr<ApplicationContext>, bool* available) override {
        *available = !output.isNull();
        return output;
    }
    QString readStderr(SharedPtr<ApplicationContext>, bool* available) override {
        *available = !output.isNull();
        return output;
    }
    QString osName(SharedPtr<ApplicationContext>) override { return "os"; }
    bool objectHasComponents(int remoteId) override { return components.contains(remoteId); }
    QStringList fetchObjectComponents(int remoteId) override { return components.value(remoteId); }
    QString testCasePath() override { return casePath; }
    QString settingsGroup() override { return group; }
    QString defaultDevice() override { return device; }
    bool keyEvent(const QString& key, bool press) override {
        calls.append((press ? "press " : "release ") + key);
        return takesInput || refuse();
    }
    bool mouseEvent(SharedPtr<Object> target, int mask, int x, int y, int button, int modifiers,
                    bool buttonChange, bool press) override {
        calls.append(QString("mouse %1 mask %2 at %3,%4 button %5 modifiers %6 change %7 press %8")
                         .arg(target ? target->objectName() : "-")
                         .arg(mask)
                         .arg(x)
                         .arg(y)
                         .arg(button)
                         .arg(modifiers)
                         .arg(buttonChange)
                         .arg(press));
        return takesInput || refuse();
    }
    QString highlightObject(SharedPtr<Object> object, int milliseconds) override {
        calls.append(QString("highlight %1 for %2").arg(object->objectName()).arg(milliseconds));
        return highlightError;
    }
    void stopHighlight() override { calls.append("stop highlight"); }
    FunctionCallResult<QSharedPointer<BackgroundTask>> startVideoCapture(
        SharedPtr<ApplicationContext>, QIODevice*) override {
        return FunctionCallResult<QSharedPointer<BackgroundTask>>::error("no application");
    }
    void processEvents() override { ++processedEvents; }
    QString testCaseName() override { return caseName; }
    QString testSuiteName() override { return suiteName; }
    void setImageSearchFixTarget(int) override {}
    int imageSearchFixTarget() override { return 0; }
    QString objectMapPath() override { return {}; }
    QString currentResultDirectory() override { return resultDirectory; }
    bool isTypeKnownInContext(const QString& typeName, int contextId) override {
        return knownTypes.contains({typeName, contextId});
    }
    bool acquireRemoteObjectModel() override {
        ++acquired;
        return hasObjectModel;
    }
    void releaseRemoteObjectModel() override { ++released; }
    QStringList filterArguments() override { return {}; }
    std::vector<unsigned> scenarioIndices() override { return {}; }
    bool isIDEMode() override { return ideMode; }
    int connectToRemoteSystem(const QString&, int, QString* error) override {
        return fail(error, -1);
    }
    void closeRemoteSystemConnection(int, QString* error) override { fail(error, 0); }
    QString getEnvironmentVariable(int, const QString&, QString* error) override {
        return fail(error, QString());
    }
    QString getOSName(int, QString* error) override { return fail(error, QString()); }
    QMap<QString, QVariant> executeCommand(int, const QList<QVariant>&, const QString&,
                                           const QMap<QString, QVariant>&, bool, bool, int,
                                           const QString&, QString* error) override {
        return fail(error, QMap<QString, QVariant>());
    }
    QStringList getRemoteDirectoryContent(int, const QString&, QString* error) override {
        return fail(error, QStringList());
    }
    QVariant getRemotePathProperty(int, const QString&, const QString&, QString* error) override {
        return fail(error, QVariant());
    }
    bool remotePathExists(int, const QString&, QString* error) override {
        return fail(error, false);
    }
    bool remoteRenamePath(int, const QString&, const QString&, QString* error) override {
        return fail(error, false);
    }
    bool remoteCreatePath(int, const QString&, bool, QString* error) override {
        return fail(error, false);
    }
    bool remoteDeletePath(int, const QString&, bool, QString* error) override {
        return fail(error, false);
    }
    bool remoteCreateFile(int, const QString&, const QString&, const QString&,
                          QString* error) override {
        return fail(error, false);
    }
    bool remoteDeleteFile(int, const QString&, QString* error) override {
        return fail(error, false);
    }
    bool remoteCopyPath(int, const QString&, const QString&, QString* error) override {
        return fail(error, false);
    }
    bool remoteUploadFile(int, const QString&, const QString&, QString* error) override {
        return fail(error, false);
    }
    bool remoteDownloadFile(int, const QString&, const QString&, QString* error) override {
        return fail(error, false);
    }
    unsigned runLevel() override { return 0; }
    SharedPtr<Object> objectGlobalBounds(SharedPtr<Object>) override {
        if (!bounds)
            refuse();
        return bounds;
    }
    TestResult* testResult() override { return result; }
    void objectNotFound(const QString& name, const QString& function, QString*) override {
        calls.append("not found " + name + " in " + function);
    }
    bool isVideoCaptureEnabled() override { return false; }

private:
    template <typename T>
    T fact(T value) const {
        if (!factError.isEmpty())
            Inspector::self()->setLastError(factError);
        return value;
    }
    template <typename T>
    static T fail(QString* error, T value) {
        *error = "not connected";
        return value;
    }
    SharedPtr<ApplicationContext> start(const QString& what, const QString& host, int port,
                                        int timeout, QString* error) {
        calls.append(
            QString("%1 host '%2' port %3 timeout %4").arg(what, host).arg(port).arg(timeout));
        *error = startError;
        return started;
    }
    SharedPtr<Object> lookUp(const QString& what, int timeout) {
        calls.append(what + " for " + QString::number(timeout) + " ms");
        if (!found)
            refuse();
        return found;
    }
    bool refuse() const {
        Inspector::self()->setLastError(lookupError);
        return false;
    }
};

}  // namespace Tamrix::Test
