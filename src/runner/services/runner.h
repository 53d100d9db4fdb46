#pragma once

#include <QString>
#include <functional>

#include "interpreter/bridge/debugger.h"
#include "interpreter/bridge/runnerinterface.h"
#include "platform/testresult/lineinfo.h"
#include "runner/applications/applications.h"

namespace Tamrix {

/// The services that this program gives to scripts. It can't connect to remote systems: operations
/// that need one answer with their failure value and say so. Script thread only; needs a
/// QCoreApplication for waits.
///
/// Events of applications run their handlers in the script at the end of the script's calls, in
/// waits and in processEvents(), never while a request is under way.
class Runner : public RunnerInterface {
public:
    /// What the operations that need a remote system say.
    static const QString noRemoteSystemText;

    // Facts of the run, set by the one who runs the suite.
    void setSuite(const QString& name) { m_suiteName = name; }
    void setTestCase(const QString& name, const QString& scriptPath);
    /// An absolute path, or empty when no folder for results was chosen.
    void setResultDirectory(const QString& directory) { m_resultDirectory = directory; }
    /// Not owned, may be null.
    void setTestResult(TestResult* result) { m_testResult = result; }
    /// Where applications and the map of object names are looked for.
    void setPlaces(const ApplicationPlaces& places) { m_places = places; }
    Applications& applications() { return m_applications; }
    /// Reports programs that ended without being asked to, at the last line of the script that
    /// called a function: an Error for a crash, a Warning for an exit code other than 0.
    void reportUnexpectedEnds();
    const Applications& applications() const { return m_applications; }

    // Waiting and facts: runner.cpp.
    /// Ends early when the run is interrupted.
    void snooze(double seconds) override;
    void processEvents() override;
    QString testCasePath() override { return m_scriptPath; }
    QString settingsGroup() override { return {}; }
    QString defaultDevice() override { return {}; }
    QString testCaseName() override { return m_caseName; }
    QString testSuiteName() override { return m_suiteName; }
    void setImageSearchFixTarget(int target) override { m_imageSearchFixTarget = target; }
    int imageSearchFixTarget() override { return m_imageSearchFixTarget; }
    /// Of the suite's map, whether it has one or not; empty without a suite.
    QString objectMapPath() override;
    QString currentResultDirectory() override { return m_resultDirectory; }
    QStringList filterArguments() override { return {}; }
    std::vector<unsigned> scenarioIndices() override { return {}; }
    bool isIDEMode() override { return false; }
    unsigned runLevel() override { return 0; }
    TestResult* testResult() override { return m_testResult; }
    bool isVideoCaptureEnabled() override { return false; }

    // Applications and their contexts: contextfacts.cpp.
    SharedPtr<ApplicationContext> startApplication(const QString& program, const QString& host,
                                                   int port, int timeout, QString* error) override;
    SharedPtr<ApplicationContext> attachToApplication(const QString& name, const QString& host,
                                                      int port, int timeout,
                                                      QString* error) override;
    SharedPtr<ApplicationContext> startSpecialApplication(const QString& program,
                                                          const QStringList& arguments,
                                                          const QString& host, int port,
                                                          int timeout, QString* error) override;
    SharedPtr<ApplicationContext> startSpecialApplication(const QString& program,
                                                          const QMap<QString, QString>& options,
                                                          const QString& host, int port,
                                                          int timeout, QString* error) override;
    bool detachApplication(SharedPtr<ApplicationContext> context) override;
    SharedPtr<ApplicationContext> waitForApplicationLaunch(int timeout, QString* error) override;
    SharedPtr<ApplicationContext> defaultApplicationContext() override;
    SharedPtr<ApplicationContext> applicationContext(const QString& name) override;
    void setCurrentApplicationContext(SharedPtr<ApplicationContext> context) override;
    QList<SharedPtr<ApplicationContext>> applicationContexts() override;
    qint64 usedMemory(SharedPtr<ApplicationContext> context) override;
    qint64 totalTime(SharedPtr<ApplicationContext> context) override;
    QString environmentVariable(SharedPtr<ApplicationContext> context,
                                const QString& name) override;
    QString currentDirectory(SharedPtr<ApplicationContext> context) override;
    QString host(SharedPtr<ApplicationContext> context) override;
    int port(SharedPtr<ApplicationContext> context) override;
    bool isRunning(SharedPtr<ApplicationContext> context) override;
    bool isFrozen(SharedPtr<ApplicationContext> context, int timeoutSeconds) override;
    int pid(SharedPtr<ApplicationContext> context) override;
    bool isValidContext(SharedPtr<ApplicationContext> context) override;
    /// All that was kept of the stream since the application started.
    QString readStdout(SharedPtr<ApplicationContext> context, bool* available) override;
    QString readStderr(SharedPtr<ApplicationContext> context, bool* available) override;
    QString osName(SharedPtr<ApplicationContext> context) override;
    bool isTypeKnownInContext(const QString& typeName, int contextId) override;

    // Waits for objects: objectwaits.cpp.
    SharedPtr<Object> waitForObjectByName(const QString& realName, bool ready,
                                          int timeout) override;
    SharedPtr<Object> waitForObject(SharedPtr<Object> object, bool ready, int timeout) override;
    SharedPtr<Object> waitForObjectExists(const QString& realName, bool ready,
                                          int timeout) override;
    SharedPtr<Object> waitForObjectItem(SharedPtr<Object> object, const QString& item, int row,
                                        int column, int timeout) override;
    SharedPtr<Object> waitForProperties(SharedPtr<Object> object, const QString& realName,
                                        const ObjectName& properties, int timeout) override;

    // Objects and input: applicationinput.cpp.
    bool objectHasComponents(int remoteId) override;
    QStringList fetchObjectComponents(int remoteId) override;
    bool keyEvent(const QString& key, bool press) override;
    bool mouseEvent(SharedPtr<Object> target, int mask, int x, int y, int button, int modifiers,
                    bool buttonChange, bool press) override;
    QString highlightObject(SharedPtr<Object> object, int milliseconds) override;
    void stopHighlight() override;
    FunctionCallResult<QSharedPointer<BackgroundTask>> startVideoCapture(
        SharedPtr<ApplicationContext> context, QIODevice* device) override;
    /// Also notes where the script is, for what goes wrong with applications meanwhile.
    bool acquireRemoteObjectModel() override;
    void releaseRemoteObjectModel() override;
    SharedPtr<Object> objectGlobalBounds(SharedPtr<Object> object) override;
    void objectNotFound(const QString& name, const QString& function, QString* error) override;

    // What needs a remote system: noremotesystem.cpp.
    int connectToRemoteSystem(const QString& host, int port, QString* error) override;
    void closeRemoteSystemConnection(int handle, QString* error) override;
    QString getEnvironmentVariable(int handle, const QString& name, QString* error) override;
    QString getOSName(int handle, QString* error) override;
    QMap<QString, QVariant> executeCommand(int handle, const QList<QVariant>& command,
                                           const QString& workingDirectory,
                                           const QMap<QString, QVariant>& environment,
                                           bool keepLineEnding, bool clearEnvironment, int timeout,
                                           const QString& encoding, QString* error) override;
    QStringList getRemoteDirectoryContent(int handle, const QString& path, QString* error) override;
    QVariant getRemotePathProperty(int handle, const QString& path, const QString& property,
                                   QString* error) override;
    bool remotePathExists(int handle, const QString& path, QString* error) override;
    bool remoteRenamePath(int handle, const QString& oldPath, const QString& newPath,
                          QString* error) override;
    bool remoteCreatePath(int handle, const QString& path, bool recursive, QString* error) override;
    bool remoteDeletePath(int handle, const QString& path, bool recursive, QString* error) override;
    bool remoteCreateFile(int handle, const QString& path, const QString& content,
                          const QString& encoding, QString* error) override;
    bool remoteDeleteFile(int handle, const QString& path, QString* error) override;
    bool remoteCopyPath(int handle, const QString& from, const QString& to,
                        QString* error) override;
    bool remoteUploadFile(int handle, const QString& localPath, const QString& remotePath,
                          QString* error) override;
    bool remoteDownloadFile(int handle, const QString& remotePath, const QString& localPath,
                            QString* error) override;

private:
    /// The application, of which the results have been told.
    Outcome<SharedPtr<Application>> noted(const Outcome<SharedPtr<Application>>& connected);
    /// The application of a context as long as its process runs; else null with the inspector's
    /// error set.
    SharedPtr<Application> running(const SharedPtr<ApplicationContext>& context);

    /// One look for an object. Fails when the application gave no answer in time or refused.
    using Look =
        std::function<Outcome<LookUpAnswer>(RemoteModel& model, bool isLastLook, int lookTimeout)>;

    /// `what` names the object in messages.
    Outcome<SharedPtr<Object>> waitUntilFound(const SharedPtr<Application>& application,
                                              const QString& what, Wire::Wanted wanted, int timeout,
                                              const Look& look);
    SharedPtr<Object> waitForName(const QString& name, Wire::Wanted wanted, int timeout);
    /// The model of the object's application, of the current one for null; a failure when there is
    /// none or it ended.
    Outcome<RemoteModel*> modelOf(const SharedPtr<Object>& object);
    PropertyList components(int remoteId);
    QString readOutput(const SharedPtr<ApplicationContext>& context,
                       QByteArray (ChildOutput::*stream)() const, bool* available);
    /// Takes what has come from applications, runs the handlers of events, and lets the debugger
    /// look whether it is to pause.
    void work();
    void noteCall();
    void runHandlers();
    void runHandler(const QString& callback);

    QString m_suiteName;
    QString m_caseName;
    QString m_scriptPath;
    QString m_resultDirectory;
    TestResult* m_testResult = nullptr;
    int m_imageSearchFixTarget = 0;
    ApplicationPlaces m_places;
    Applications m_applications;
    int m_callDepth = 0;
    /// Where the last call of the script stands that began while an application ran.
    LineInfo m_lastCall;
    bool m_isRunningHandlers = false;
};

}  // namespace Tamrix
