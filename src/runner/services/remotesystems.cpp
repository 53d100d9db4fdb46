#include "runner/services/remotesystems.h"

namespace Tamrix {

const QString RemoteSystems::noRemoteSystemText = QStringLiteral("No remote system is connected");

namespace {

template <typename T>
T failed(QString* error, T value = {}) {
    *error = RemoteSystems::noRemoteSystemText;
    return value;
}

}  // namespace

int RemoteSystems::connectToRemoteSystem(const QString&, int, QString* error) {
    return failed(error, -1);
}

void RemoteSystems::closeRemoteSystemConnection(int, QString* error) {
    *error = noRemoteSystemText;
}

QString RemoteSystems::getEnvironmentVariable(int, const QString&, QString* error) {
    return failed<QString>(error);
}

QString RemoteSystems::getOSName(int, QString* error) {
    return failed<QString>(error);
}

QMap<QString, QVariant> RemoteSystems::executeCommand(int, const QList<QVariant>&, const QString&,
                                                      const QMap<QString, QVariant>&, bool, bool,
                                                      int, const QString&, QString* error) {
    return failed<QMap<QString, QVariant>>(error);
}

QStringList RemoteSystems::getRemoteDirectoryContent(int, const QString&, QString* error) {
    return failed<QStringList>(error);
}

QVariant RemoteSystems::getRemotePathProperty(int, const QString&, const QString&, QString* error) {
    return failed<QVariant>(error);
}

bool RemoteSystems::remotePathExists(int, const QString&, QString* error) {
    return failed(error, false);
}

bool RemoteSystems::remoteRenamePath(int, const QString&, const QString&, QString* error) {
    return failed(error, false);
}

bool RemoteSystems::remoteCreatePath(int, const QString&, bool, QString* error) {
    return failed(error, false);
}

bool RemoteSystems::remoteDeletePath(int, const QString&, bool, QString* error) {
    return failed(error, false);
}

bool RemoteSystems::remoteCreateFile(int, const QString&, const QString&, const QString&,
                                     QString* error) {
    return failed(error, false);
}

bool RemoteSystems::remoteDeleteFile(int, const QString&, QString* error) {
    return failed(error, false);
}

bool RemoteSystems::remoteCopyPath(int, const QString&, const QString&, QString* error) {
    return failed(error, false);
}

bool RemoteSystems::remoteUploadFile(int, const QString&, const QString&, QString* error) {
    return failed(error, false);
}

bool RemoteSystems::remoteDownloadFile(int, const QString&, const QString&, QString* error) {
    return failed(error, false);
}

}  // namespace Tamrix
