#pragma once

#include <utility>

#include "interpreter/bridge/runnerinterface.h"

namespace Tamrix::Test {

/// The runner of tests: facts are public members, everything that needs an application fails.
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

    // What the library did.
    int acquired = 0;
    int released = 0;
    int processedEvents = 0;

    SharedPtr<ApplicationContext> startApplication(const QString&, const QString&, int, int,
                                                   QString* error) override {
        return noContext(error);
    }
    SharedPtr<ApplicationContext> attachToApplication(const QString&, const QString&, int, int,
                                                      QString* error) override {
        return noContext(error);
    }
    SharedPtr<ApplicationContext> startSpecialApplication(const QString&, const QStringList&,
                                                          const QString&, int, int,
                                                          QString* error) override {
        return noContext(error);
    }
    SharedPtr<ApplicationContext> startSpecialApplication(const QString&,
                                                          const QMap<QString, QString>&,
                                                          const QString&, int, int,
                                                          QString* error) override {
        return noContext(error);
    }
    bool detachApplication(SharedPtr<ApplicationContext>) override { return false; }
    SharedPtr<ApplicationContext> waitForApplicationLaunch(int, QString* error) override {
        return noContext(error);
    }
    SharedPtr<ApplicationContext> defaultApplicationContext() override { return {}; }
    SharedPtr<ApplicationContext> applicationContext(const QString&) override { return {}; }
    void setCurrentApplicationContext(SharedPtr<ApplicationContext>) override {}
    QList<SharedPtr<ApplicationContext>> applicationContexts() override { return contexts; }
    qint64 usedMemory(SharedPtr<ApplicationContext>) override { return 0; }
    qint64 totalTime(SharedPtr<ApplicationContext>) override { return 0; }
    QString environmentVariable(SharedPtr<ApplicationContext>, const QString&) override {
        return {};
    }
    QString currentDirectory(SharedPtr<ApplicationContext>) override { return {}; }
    QString host(SharedPtr<ApplicationContext>) override { return {}; }
    int port(SharedPtr<ApplicationContext>) override { return -1; }
    bool isRunning(SharedPtr<ApplicationContext>) override { return false; }
    bool isFrozen(SharedPtr<ApplicationContext>, int) override { return false; }
    int pid(SharedPtr<ApplicationContext>) override { return -1; }
    void snooze(double) override {}
    SharedPtr<Object> waitForObjectByName(const QString&, bool, int) override { return {}; }
    SharedPtr<Object> waitForObject(SharedPtr<Object>, bool, int) override { return {}; }
    SharedPtr<Object> waitForObjectExists(const QString&, bool, int) override { return {}; }
    SharedPtr<Object> waitForObjectItem(SharedPtr<Object>, const QString&, int, int, int) override {
        return {};
    }
    bool isValidContext(SharedPtr<ApplicationContext>) override { return false; }
    QString readStdout(SharedPtr<ApplicationContext>, bool* available) override {
        *available = false;
        return {};
    }
    QString readStderr(SharedPtr<ApplicationContext>, bool* available) override {
        *available = false;
        return {};
    }
    QString osName(SharedPtr<ApplicationContext>) override { return {}; }
    bool objectHasComponents(int) override { return false; }
    QStringList fetchObjectComponents(int) override { return {}; }
    QString testCasePath() override { return casePath; }
    QString settingsGroup() override { return group; }
    QString defaultDevice() override { return device; }
    bool keyEvent(const QString&, bool) override { return false; }
    bool mouseEvent(SharedPtr<Object>, int, int, int, int, int, bool, bool) override {
        return false;
    }
    QString highlightObject(SharedPtr<Object>, int) override { return "no application"; }
    void stopHighlight() override {}
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
    SharedPtr<Object> objectGlobalBounds(SharedPtr<Object>) override { return {}; }
    TestResult* testResult() override { return result; }
    void objectNotFound(const QString&, const QString&, QString*) override {}
    bool isVideoCaptureEnabled() override { return false; }

private:
    template <typename T>
    static T fail(QString* error, T value) {
        *error = "not connected";
        return value;
    }
    static SharedPtr<ApplicationContext> noContext(QString* error) {
        return fail(error, SharedPtr<ApplicationContext>());
    }
};

}  // namespace Tamrix::Test
