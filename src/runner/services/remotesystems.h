#pragma once

#include "interpreter/bridge/runnerinterface.h"

namespace Tamrix {

/// The operations of the runner that need a remote system. None can be connected: they answer with
/// their failure value and say so.
class RemoteSystems : public virtual RunnerInterface {
public:
    /// What they say.
    static const QString noRemoteSystemText;

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
};

}  // namespace Tamrix
