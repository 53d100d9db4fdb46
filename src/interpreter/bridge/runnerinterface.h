#pragma once

#include <QList>
#include <QMap>
#include <QSharedPointer>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <vector>

#include "base/export.h"
#include "base/functioncallresult.h"
#include "base/outcome.h"
#include "base/shared.h"
#include "platform/objectmodel/applicationcontext.h"
#include "platform/objectmodel/object.h"
#include "platform/objectmodel/objectname.h"

class QIODevice;

namespace Tamrix {

class BackgroundTask;
class TestResult;

/// The services of the test runner that hosts the library: connections to applications, the result
/// sink, facts of the run. Implemented by the runner, which outlives every interpreter made on it.
///
/// All operations are called on the script thread. A blocking one returns when it is done and lets
/// the runner work meanwhile. None throws: a `QString*` named `error`, never null, is set on
/// failure and otherwise left empty, unless stated; a SharedPtr is null on failure, with
/// Inspector::lastError() set for object look-ups. Time-outs are milliseconds unless stated; -1
/// asks for the default.
class TAMRIX_EXPORT RunnerInterface {
public:
    virtual ~RunnerInterface() = default;

    // Applications. An empty host and port -1 stand for the default.
    virtual SharedPtr<ApplicationContext> startApplication(const QString& program,
                                                           const QString& host, int port,
                                                           int timeout, QString* error) = 0;
    virtual SharedPtr<ApplicationContext> attachToApplication(const QString& name,
                                                              const QString& host, int port,
                                                              int timeout, QString* error) = 0;
    /// Starts a helper program as an application.
    virtual SharedPtr<ApplicationContext> startSpecialApplication(const QString& program,
                                                                  const QStringList& arguments,
                                                                  const QString& host, int port,
                                                                  int timeout, QString* error) = 0;
    virtual SharedPtr<ApplicationContext> startSpecialApplication(
        const QString& program, const QMap<QString, QString>& options, const QString& host,
        int port, int timeout, QString* error) = 0;
    /// Closes the connection; false on failure.
    virtual bool detachApplication(SharedPtr<ApplicationContext> context) = 0;
    virtual SharedPtr<ApplicationContext> waitForApplicationLaunch(int timeout, QString* error) = 0;
    /// The first started or default context.
    virtual SharedPtr<ApplicationContext> defaultApplicationContext() = 0;
    /// The named context; the current one for an empty name.
    virtual SharedPtr<ApplicationContext> applicationContext(const QString& name) = 0;
    /// Makes the context the target of the operations that follow.
    virtual void setCurrentApplicationContext(SharedPtr<ApplicationContext> context) = 0;
    /// All live contexts.
    virtual QList<SharedPtr<ApplicationContext>> applicationContexts() = 0;
    /// Bytes used by the application.
    virtual qint64 usedMemory(SharedPtr<ApplicationContext> context) = 0;
    /// CPU time used, in milliseconds.
    virtual qint64 totalTime(SharedPtr<ApplicationContext> context) = 0;
    virtual QString environmentVariable(SharedPtr<ApplicationContext> context,
                                        const QString& name) = 0;
    virtual QString currentDirectory(SharedPtr<ApplicationContext> context) = 0;
    virtual QString host(SharedPtr<ApplicationContext> context) = 0;
    virtual int port(SharedPtr<ApplicationContext> context) = 0;
    virtual bool isRunning(SharedPtr<ApplicationContext> context) = 0;
    /// Whether the application answers no ping within the time-out.
    virtual bool isFrozen(SharedPtr<ApplicationContext> context, int timeoutSeconds) = 0;
    /// -1 when unknown.
    virtual int pid(SharedPtr<ApplicationContext> context) = 0;

    // Waiting.
    /// Sleeps, with the runner's snooze factor applied.
    virtual void snooze(double seconds) = 0;
    /// Polls until the object is there and ready. `ready` false: whatever lies over its middle, for
    /// what waits for a point of its own.
    virtual SharedPtr<Object> waitForObjectByName(const QString& realName, bool ready,
                                                  int timeout) = 0;
    virtual SharedPtr<Object> waitForObject(SharedPtr<Object> object, bool ready, int timeout) = 0;
    /// Polls until the object exists, ready or not.
    virtual SharedPtr<Object> waitForObjectExists(const QString& realName, bool ready,
                                                  int timeout) = 0;
    /// Polls for an item of a view, by its text (row and column -1) or by row and column (text
    /// null).
    virtual SharedPtr<Object> waitForObjectItem(SharedPtr<Object> object, const QString& item,
                                                int row, int column, int timeout) = 0;
    /// Polls until the object, or without one that of the name, exists, ready or not, and has all
    /// the properties, each compared as in a name. On failure the inspector's error tells what it
    /// had otherwise, and for how long. A runner that does not wait for properties has nothing to
    /// do here: it always fails.
    virtual SharedPtr<Object> waitForProperties(SharedPtr<Object> object, const QString& realName,
                                                const ObjectName& properties, int timeout);
    /// Calls a global function of the current application with the object of that name as its
    /// first argument, in front of `arguments`, as soon as it is there and can be reached. Fails
    /// when that is not so in time; else the value is what the call gave. The time-out is one for
    /// all that is waited for. A runner that can't wait and call at once need not implement it:
    /// then it is one after the other.
    virtual Outcome<Outcome<SharedPtr<Object>>> callWithName(const QString& realName,
                                                             const QString& function,
                                                             const ObjectList& arguments,
                                                             int timeout);
    virtual bool isValidContext(SharedPtr<ApplicationContext> context) = 0;
    /// What the application wrote; `*available` is false when its output is not kept.
    virtual QString readStdout(SharedPtr<ApplicationContext> context, bool* available) = 0;
    virtual QString readStderr(SharedPtr<ApplicationContext> context, bool* available) = 0;
    virtual QString osName(SharedPtr<ApplicationContext> context) = 0;

    // Variable views of the debugger.
    virtual bool objectHasComponents(int remoteId) = 0;
    /// Components as type#name=value, in the order in which they are listed; the name of one that
    /// has components itself has a "+" in front.
    virtual QStringList fetchObjectComponents(int remoteId) = 0;

    // Facts of the run.
    /// Path of the running test case's script.
    virtual QString testCasePath() = 0;
    virtual QString settingsGroup() = 0;
    virtual QString defaultDevice() = 0;

    // Input.
    virtual bool keyEvent(const QString& key, bool press) = 0;
    /// One low-level mouse event. `mask`: 1 for a target, plus 8 for coordinates. A move has both
    /// flags false, a release `buttonChange` alone, a press both.
    virtual bool mouseEvent(SharedPtr<Object> target, int mask, int x, int y, int button,
                            int modifiers, bool buttonChange, bool press) = 0;
    /// -1 milliseconds: without end. Returns an error text.
    virtual QString highlightObject(SharedPtr<Object> object, int milliseconds) = 0;
    virtual void stopHighlight() = 0;
    /// On success the task owns the device, on an error the caller still does.
    virtual FunctionCallResult<QSharedPointer<BackgroundTask>> startVideoCapture(
        SharedPtr<ApplicationContext> context, QIODevice* device) = 0;

    /// Lets the runner work during a wait of the library.
    virtual void processEvents() = 0;
    virtual QString testCaseName() = 0;
    virtual QString testSuiteName() = 0;
    virtual void setImageSearchFixTarget(int target) = 0;
    virtual int imageSearchFixTarget() = 0;
    virtual QString objectMapPath() = 0;
    /// The folder for results of the run; empty when none was chosen.
    virtual QString currentResultDirectory() = 0;
    virtual bool isTypeKnownInContext(const QString& typeName, int contextId) = 0;
    /// Takes the remote object model for one script call; false when there is nothing to take, and
    /// then nothing is to be released.
    virtual bool acquireRemoteObjectModel() = 0;
    virtual void releaseRemoteObjectModel() = 0;
    /// The tag filters of the run.
    virtual QStringList filterArguments() = 0;
    /// The scenario numbers of the run.
    virtual std::vector<unsigned> scenarioIndices() = 0;
    /// Whether the run is controlled by the integrated front end.
    virtual bool isIDEMode() = 0;

    // Remote systems: `handle` comes from connectToRemoteSystem().
    virtual int connectToRemoteSystem(const QString& host, int port, QString* error) = 0;
    virtual void closeRemoteSystemConnection(int handle, QString* error) = 0;
    virtual QString getEnvironmentVariable(int handle, const QString& name, QString* error) = 0;
    virtual QString getOSName(int handle, QString* error) = 0;
    virtual QMap<QString, QVariant> executeCommand(int handle, const QList<QVariant>& command,
                                                   const QString& workingDirectory,
                                                   const QMap<QString, QVariant>& environment,
                                                   bool keepLineEnding, bool clearEnvironment,
                                                   int timeout, const QString& encoding,
                                                   QString* error) = 0;
    virtual QStringList getRemoteDirectoryContent(int handle, const QString& path,
                                                  QString* error) = 0;
    virtual QVariant getRemotePathProperty(int handle, const QString& path, const QString& property,
                                           QString* error) = 0;
    virtual bool remotePathExists(int handle, const QString& path, QString* error) = 0;
    virtual bool remoteRenamePath(int handle, const QString& oldPath, const QString& newPath,
                                  QString* error) = 0;
    virtual bool remoteCreatePath(int handle, const QString& path, bool recursive,
                                  QString* error) = 0;
    virtual bool remoteDeletePath(int handle, const QString& path, bool recursive,
                                  QString* error) = 0;
    virtual bool remoteCreateFile(int handle, const QString& path, const QString& content,
                                  const QString& encoding, QString* error) = 0;
    virtual bool remoteDeleteFile(int handle, const QString& path, QString* error) = 0;
    virtual bool remoteCopyPath(int handle, const QString& from, const QString& to,
                                QString* error) = 0;
    virtual bool remoteUploadFile(int handle, const QString& localPath, const QString& remotePath,
                                  QString* error) = 0;
    virtual bool remoteDownloadFile(int handle, const QString& remotePath, const QString& localPath,
                                    QString* error) = 0;

    /// The level that feature runs pass on to their engine.
    virtual unsigned runLevel() = 0;
    /// The object's screen rectangle object.
    virtual SharedPtr<Object> objectGlobalBounds(SharedPtr<Object> object) = 0;
    /// The live result sink, may be null.
    virtual TestResult* testResult() = 0;
    /// Enters the debugging of a failed look-up. `*error` holds why it failed; when it comes back
    /// empty, the look-up is made again.
    virtual void objectNotFound(const QString& name, const QString& function, QString* error) = 0;
    /// Whether video capture is switched on for the whole run.
    virtual bool isVideoCaptureEnabled() = 0;
};

}  // namespace Tamrix
