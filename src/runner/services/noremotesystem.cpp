// The operations of Runner that need a remote system: none can be connected.

#include "runner/services/runner.h"

namespace Tamrix {

const QString Runner::noRemoteSystemText = QStringLiteral("No remote system is connected");

namespace {

template <typename T>
T failed(QString* error, T value = {}) {
    *error = Runner::noRemoteSystemText;
    return value;
}

}  // namespace

int Runner::connectToRemoteSystem(const QString&, int, QString* error) {
    return failed(error, -1);
}

void Runner::closeRemoteSystemConnection(int, QString* error) {
    *error = noRemoteSystemText;
}

QString Runner::getEnvironmentVariable(int, const QString&, QString* error) {
    return failed<QString>(error);
}

QString Runner::getOSName(int, QString* error) {
    return failed<QString>(error);
}

QMap<QString, QVariant> Runner::executeCommand(int, const QList<QVariant>&, const QString&,
                                               const QMap<QString, QVariant>&, bool, bool, int,
                                               const QString&, QString* error) {
    return failed<QMap<QString, QVariant>>(error);
}

QStringList Runner::getRemoteDirectoryContent(int, const QString&, QString* error) {
    return failed<QStringList>(error);
}

QVariant Runner::getRemotePathProperty(int, const QString&, const QString&, QString* error) {
    return failed<QVariant>(error);
}

bool Runner::remotePathExists(int, const QString&, QString* error) {
    return failed(error, false);
}

bool Runner::remoteRenamePath(int, const QString&, const QString&, QString* error) {
    return failed(error, false);
}

bool Runner::remoteCreatePath(int, const QString&, bool, QString* error) {
    return failed(error, false);
}

bool Runner::remoteDeletePath(int, const QString&, bool, QString* error) {
    return failed(error, false);
}

bool Runner::remoteCreateFile(int, const QString&, const QString&, const QString&, QString* error) {
    return failed(error, false);
}

bool Runner::remoteDeleteFile(int, const QString&, QString* error) {
    return failed(error, false);
}

bool Runner::remoteCopyPath(int, const QString&, const QString&, QString* error) {
    return failed(error, false);
}

bool Runner::remoteUploadFile(int, const QString&, const QString&, QString* error) {
    return failed(error, false);
}

bool Runner::remoteDownloadFile(int, const QString&, const QString&, QString* error) {
    return failed(error, false);
}

}  // namespace Tamrix
