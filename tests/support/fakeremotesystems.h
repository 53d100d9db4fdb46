#pragma once

#include "interpreter/bridge/runnerinterface.h"

namespace Tamrix::Test {

/// No remote system can be connected.
class FakeRemoteSystems : public virtual RunnerInterface {
public:
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

private:
    template <typename T>
    static T fail(QString* error, T value) {
        *error = "not connected";
        return value;
    }
};

}  // namespace Tamrix::Test
