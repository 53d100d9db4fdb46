#pragma once

#include "interpreter/bridge/runnerinterface.h"
#include "runner/services/remoteapplication.h"
#include "runner/services/runstate.h"

namespace Tamrix {

/// The operations of the runner on applications and their contexts.
class ApplicationServices : public virtual RunnerInterface {
public:
    explicit ApplicationServices(RunState& state) : m_state(state) {}

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

private:
    /// The application, of which the results have been told.
    Outcome<SharedPtr<Application>> noted(const Outcome<SharedPtr<Application>>& connected);
    /// The application of a context as long as its process runs; else null with the inspector's
    /// error set.
    SharedPtr<Application> running(const SharedPtr<ApplicationContext>& context);
    QString readOutput(const SharedPtr<ApplicationContext>& context,
                       QByteArray (ChildOutput::*stream)() const, bool* available);

    RunState& m_state;
    RemoteProcesses m_remoteProcesses;
};

}  // namespace Tamrix
