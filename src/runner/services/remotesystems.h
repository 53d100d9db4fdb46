#pragma once

#include <map>
#include <memory>

#include "interpreter/bridge/runnerinterface.h"
#include "runner/remote/system.h"
#include "runner/services/runstate.h"

namespace Tamrix {

/// The operations of the runner on other machines and, as the default, this one. A connection ends
/// with the test case at the latest.
class RemoteSystems : public virtual RunnerInterface {
public:
    explicit RemoteSystems(RunState& state) : m_state(state) {}

    /// Without a host that of the user's settings file "server.ini"; without such a setting it is
    /// this machine.
    int connectToRemoteSystem(const QString& host, int port, QString* error) override;
    void closeRemoteSystemConnection(int handle, QString* error) override;
    QString getEnvironmentVariable(int handle, const QString& name, QString* error) override;
    QString getOSName(int handle, QString* error) override;
    /// The keys of the result are "exitcode", "stderr" and "stdout"; the time-out is in seconds, 0
    /// or less for none.
    QMap<QString, QVariant> executeCommand(int handle, const QList<QVariant>& command,
                                           const QString& workingDirectory,
                                           const QMap<QString, QVariant>& environment,
                                           bool keepLineEnding, bool clearEnvironment, int timeout,
                                           const QString& encoding, QString* error) override;
    /// Sorted.
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

protected:
    void closeRemoteSystems() { m_systems.clear(); }

private:
    /// Calls an operation with the system of the handle; `failed`, with the error set, when that
    /// does not work.
    template <typename Result, typename Operation>
    Result with(int handle, QString* error, Result failed, const Operation& operation);
    template <typename Operation>
    bool done(int handle, QString* error, const Operation& operation);

    RunState& m_state;
    std::map<int, std::unique_ptr<System>> m_systems;
    int m_lastHandle = 0;
};

}  // namespace Tamrix
