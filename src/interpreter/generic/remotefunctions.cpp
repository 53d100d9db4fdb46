#include "interpreter/generic/remotefunctions.h"

#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/generic/remotearguments.h"

namespace Tamrix {

namespace {

constexpr const char* pathError = "remote path needs to be specified as string.";
constexpr const char* localPathError = "local path needs to be specified as string.";

/// Sets the text as the error when there is one; true when there is none.
bool succeeded(ScriptContext* context, const QString& error, const QString& message) {
    if (error.isEmpty())
        return true;
    context->setError(message);
    return false;
}

/// The result of a property by the type that the runner gives. False for a type that scripts do not
/// get.
bool setPropertyResult(ScriptContext* context, const QString& name, const QVariant& value) {
    // Sizes may be above what an integer of a script holds.
    if (name == QLatin1String("size")) {
        context->setDoubleResult(value.toString().toDouble());
        return true;
    }
    switch (value.type()) {
        case QVariant::Bool:
            context->setBoolResult(value.toBool());
            return true;
        case QVariant::Int:
            context->setIntegerResult(value.toInt());
            return true;
        case QVariant::Double:
            context->setDoubleResult(value.toDouble());
            return true;
        case QVariant::String:
            context->setStringResult(value.toString());
            return true;
        case QVariant::StringList:
            context->setListResult(value.toStringList());
            return true;
        case QVariant::Date:
        case QVariant::DateTime:
            context->setDateTimeResult(value.toDateTime());
            return true;
        default:
            return false;
    }
}

}  // namespace

// Connections

void RemoteSystemApi::connectToRemoteSystem(ScriptContext* context) {
    constexpr const char* usage =
        "_tamrix_connect_to_remote_system() or _tamrix_connect_to_remote_system(host, port)";
    const bool isDefault = context->argumentCount() == 0;
    RemoteCall call(context, isDefault ? 0 : 2, 2, usage);
    QString host;
    int port = -1;
    if (!isDefault) {
        host = call.text(0, "remote system host needs to be specified as string.");
        const SharedPtr<ScriptArgument> number = context->argument(1);
        if (!number || !number->isInteger())
            call.refuse(
                QStringLiteral("remote system port needs to be specified as integral number."));
        else
            port = static_cast<int>(qBound(-2LL, number->toInt(), 65536LL));
    }
    RunnerInterface* const runner = call.runner();
    if (!runner)
        return;
    QString error;
    const int handle = runner->connectToRemoteSystem(host, port, &error);
    const QString message =
        isDefault ? QStringLiteral(
                        "Failed to connect to default tamrix server system, received error: %1")
                        .arg(error)
                  : QStringLiteral("Failed to connect to remote system %1:%2, received error: %3")
                        .arg(host, QString::number(port), error);
    if (succeeded(context, error, message))
        context->setIntegerResult(handle);
}

void RemoteSystemApi::closeRemoteSystemConnection(ScriptContext* context) {
    RemoteCall call(context, 1, 1, "_tamrix_close_remote_system_connection(handle)");
    const int handle =
        call.handle("remote system connection handle needs to be specified as integral number.");
    RunnerInterface* const runner = call.runner();
    if (!runner)
        return;
    QString error;
    runner->closeRemoteSystemConnection(handle, &error);
    if (succeeded(context, error,
                  QStringLiteral("Failed to close connection to remote system by handle %1, "
                                 "received error: %2")
                      .arg(QString::number(handle), error)))
        context->setNullResult();
}

// The system

void RemoteSystemApi::getEnvironmentVariable(ScriptContext* context) {
    RemoteCall call(context, 2, 2, "_tamrix_remote_get_environment_variable( handle, envvarname )");
    const int handle = call.handle();
    const QString name = call.text(1, "environment variable needs to be specified as string.");
    RunnerInterface* const runner = call.runner();
    if (!runner)
        return;
    QString error;
    const QString value = runner->getEnvironmentVariable(handle, name, &error);
    if (succeeded(context, error,
                  QStringLiteral("Failed to retrieve environment variable '%1' from remote system: "
                                 "%2")
                      .arg(name, error)))
        context->setStringResult(value);
}

void RemoteSystemApi::getOSName(ScriptContext* context) {
    RemoteCall call(context, 1, 1, "_tamrix_remote_get_os_name( handle )");
    const int handle = call.handle();
    RunnerInterface* const runner = call.runner();
    if (!runner)
        return;
    QString error;
    const QString name = runner->getOSName(handle, &error);
    if (succeeded(context, error,
                  QStringLiteral("Failed to retrieve OS name from remote system: %1").arg(error)))
        context->setStringResult(name);
}

// Paths

void RemoteSystemApi::remotePathExists(ScriptContext* context) {
    RemoteCall call(context, 2, 2, "_tamrix_remote_path_exists( handle, remotePath )");
    const int handle = call.handle();
    const QString path = call.text(1, pathError);
    RunnerInterface* const runner = call.runner();
    if (!runner)
        return;
    QString error;
    const bool exists = runner->remotePathExists(handle, path, &error);
    if (succeeded(context, error,
                  QStringLiteral("Failed to retrieve exists property for remote path '%1' from "
                                 "remote system: %2")
                      .arg(path, error)))
        context->setBoolResult(exists);
}

void RemoteSystemApi::remoteRenamePath(ScriptContext* context) {
    RemoteCall call(context, 3, 3,
                    "_tamrix_remote_rename_path( handle, oldRemotePath, newRemotePath )");
    const int handle = call.handle();
    const QString from = call.text(1, "old remote path needs to be specified as string.");
    const QString to = call.text(2, "new remote path needs to be specified as string.");
    RunnerInterface* const runner = call.runner();
    if (!runner)
        return;
    QString error;
    const bool done = runner->remoteRenamePath(handle, from, to, &error);
    if (succeeded(context, error,
                  QStringLiteral("Failed to rename old path '%1' to new path '%2' on remote "
                                 "system: %3")
                      .arg(from, to, error)))
        context->setBoolResult(done);
}

void RemoteSystemApi::remoteCreatePath(ScriptContext* context) {
    RemoteCall call(context, 2, 3, "_tamrix_remote_create_path( handle, remotePath, [recursive] )");
    const int handle = call.handle();
    const QString path = call.text(1, pathError);
    const bool recursive = call.flag(2);
    RunnerInterface* const runner = call.runner();
    if (!runner)
        return;
    QString error;
    const bool done = runner->remoteCreatePath(handle, path, recursive, &error);
    if (succeeded(
            context, error,
            QStringLiteral("Failed to create path '%1' on remote system: %2").arg(path, error)))
        context->setBoolResult(done);
}

void RemoteSystemApi::remoteDeletePath(ScriptContext* context) {
    RemoteCall call(context, 2, 3, "_tamrix_remote_delete_path( handle, remotePath, [recursive] )");
    const int handle = call.handle();
    const QString path = call.text(1, pathError);
    const bool recursive = call.flag(2);
    RunnerInterface* const runner = call.runner();
    if (!runner)
        return;
    QString error;
    const bool done = runner->remoteDeletePath(handle, path, recursive, &error);
    if (succeeded(
            context, error,
            QStringLiteral("Failed to delete path '%1' on remote system: %2").arg(path, error)))
        context->setBoolResult(done);
}

void RemoteSystemApi::remoteCreateFile(ScriptContext* context) {
    // The usage has had this spelling from the first.
    RemoteCall call(context, 4, 4,
                    "_tamrix_remote_create_file ( handle, remotePath, content, enconding )");
    const int handle = call.handle();
    const QString path = call.text(1, pathError);
    const QString content = call.text(2, "file content needs to be specified as string.");
    const QString encoding = call.text(3, "file encoding needs to be specified as string.");
    RunnerInterface* const runner = call.runner();
    if (!runner)
        return;
    QString error;
    const bool done = runner->remoteCreateFile(handle, path, content, encoding, &error);
    if (succeeded(
            context, error,
            QStringLiteral("Failed to create file '%1' on remote system: %2").arg(path, error)))
        context->setBoolResult(done);
}

void RemoteSystemApi::remoteDeleteFile(ScriptContext* context) {
    RemoteCall call(context, 2, 2, "_tamrix_remote_delete_file( handle, remotePath )");
    const int handle = call.handle();
    const QString path = call.text(1, pathError);
    RunnerInterface* const runner = call.runner();
    if (!runner)
        return;
    QString error;
    const bool done = runner->remoteDeleteFile(handle, path, &error);
    if (succeeded(
            context, error,
            QStringLiteral("Failed to delete file '%1' on remote system: %2").arg(path, error)))
        context->setBoolResult(done);
}

void RemoteSystemApi::remoteCopyPath(ScriptContext* context) {
    RemoteCall call(context, 3, 3,
                    "_tamrix_remote_copy_path( handle, srcRemotePath, dstRemotePath )");
    const int handle = call.handle();
    const QString from = call.text(1, "source remote path needs to be specified as string.");
    const QString to = call.text(2, "destination remote path needs to be specified as string.");
    RunnerInterface* const runner = call.runner();
    if (!runner)
        return;
    QString error;
    const bool done = runner->remoteCopyPath(handle, from, to, &error);
    if (succeeded(context, error,
                  QStringLiteral("Failed to copy source path '%1' to destination path '%2' on "
                                 "remote system: %3")
                      .arg(from, to, error)))
        context->setBoolResult(done);
}

void RemoteSystemApi::remoteUploadFile(ScriptContext* context) {
    RemoteCall call(context, 3, 3, "_tamrix_remote_upload_file( handle, localPath, remotePath )");
    const int handle = call.handle();
    const QString local = call.text(1, localPathError);
    const QString remote = call.text(2, pathError);
    RunnerInterface* const runner = call.runner();
    if (!runner)
        return;
    QString error;
    const bool done = runner->remoteUploadFile(handle, local, remote, &error);
    if (succeeded(context, error,
                  QStringLiteral("Failed to upload file from local path '%1' to remote path '%2' "
                                 "on remote system: %3")
                      .arg(local, remote, error)))
        context->setBoolResult(done);
}

void RemoteSystemApi::remoteDownloadFile(ScriptContext* context) {
    // The usage names the other function; that is meant.
    RemoteCall call(context, 3, 3, "_tamrix_remote_upload_file( handle, remotePath, localPath )");
    const int handle = call.handle();
    const QString remote = call.text(1, pathError);
    const QString local = call.text(2, localPathError);
    RunnerInterface* const runner = call.runner();
    if (!runner)
        return;
    QString error;
    const bool done = runner->remoteDownloadFile(handle, remote, local, &error);
    if (succeeded(context, error,
                  QStringLiteral("Failed to download file from remote path '%1' to local path "
                                 "'%2' from remote system: %3")
                      .arg(remote, local, error)))
        context->setBoolResult(done);
}

void RemoteSystemApi::getRemotePathProperty(ScriptContext* context) {
    RemoteCall call(context, 3, 3,
                    "_tamrix_remote_get_path_property( handle, remotePath, propertyName )");
    const int handle = call.handle();
    const QString path = call.text(1, pathError);
    const QString name = call.text(2, "property name needs to be specified as string.");
    RunnerInterface* const runner = call.runner();
    if (!runner)
        return;
    QString error;
    const QVariant value = runner->getRemotePathProperty(handle, path, name, &error);
    const bool isThere =
        succeeded(context, error,
                  QStringLiteral("Failed to retrieve path property for remote path '%1' and "
                                 "property '%2' from remote system: %3")
                      .arg(path, name, error));
    if (isThere && !setPropertyResult(context, name, value))
        context->setError("Failed to retrieve property. Return type not supported.");
}

void RemoteSystemApi::getRemoteDirectoryContent(ScriptContext* context) {
    RemoteCall call(context, 2, 2, "_tamrix_remote_get_directory_content( handle, remotePath )");
    const int handle = call.handle();
    const QString path = call.text(1, pathError);
    RunnerInterface* const runner = call.runner();
    if (!runner)
        return;
    QString error;
    const QStringList names = runner->getRemoteDirectoryContent(handle, path, &error);
    if (succeeded(context, error,
                  QStringLiteral("Failed to retrieve directory list for remote path '%1' from "
                                 "remote system: %2")
                      .arg(path, error)))
        context->setListResult(names);
}

// Commands

void RemoteSystemApi::executeCommand(ScriptContext* context) {
    RemoteCall call(context, 5, 5,
                    "_tamrix_remote_execute_command( handle, command, cwd, env, options )");
    // 1. The program and its arguments.
    const int handle = call.handle();
    const SharedPtr<ScriptArgument> command = context->argument(1);
    const SharedPtr<ScriptArgument> environment = context->argument(3);
    const SharedPtr<ScriptArgument> optionMap = context->argument(4);
    if (!command || !command->isList())
        call.refuse(QStringLiteral("command variable needs to be specified as list."));
    const QString directory = call.text(2, "cwd variable needs to be specified as string.");
    if (!environment || !environment->isMap())
        call.refuse(QStringLiteral("environment variable needs to be specified as map."));
    if (!optionMap || !optionMap->isMap())
        call.refuse(QStringLiteral("options variable needs to be specified as map."));
    RunnerInterface* const runner = call.runner();
    if (!runner)
        return;
    QString error;
    const QList<QVariant> words = convertScriptArgumentListOfPrimitives(command, &error);
    if (!succeeded(
            context, error,
            QStringLiteral("Failed to execute command. Wrong command parameter: %1").arg(error)))
        return;
    // 2. The environment and the options.
    const QMap<QString, QVariant> variables =
        convertScriptArgument1DPrimitiveToMap(environment, &error);
    if (!succeeded(context, error,
                   QStringLiteral("Failed to execute command. Wrong env parameter: %1").arg(error)))
        return;
    QMap<QString, QVariant> options = convertScriptArgument1DPrimitiveToMap(optionMap, &error);
    // 3. What every option is unless it is given.
    struct Option {
        const char* name;
        QVariant::Type type;
        QVariant defaultValue;
    };
    const Option known[] = {{"keepLineEnding", QVariant::Bool, false},
                            {"clearenv", QVariant::Bool, false},
                            {"timeout", QVariant::Int, 30},
                            {"encoding", QVariant::String, QStringLiteral("UTF-8")}};
    for (const Option& option : known) {
        if (error.isEmpty())
            executeCommandCheckOptionsMapField(QLatin1String(option.name), option.type,
                                               option.defaultValue, &options, &error);
    }
    if (!succeeded(
            context, error,
            QStringLiteral("Failed to execute command. Wrong options parameter: %1").arg(error)))
        return;
    // 4. The runner runs it.
    const QMap<QString, QVariant> answer = runner->executeCommand(
        handle, words, directory, variables, options.value("keepLineEnding").toBool(),
        options.value("clearenv").toBool(), options.value("timeout").toInt(),
        options.value("encoding").toString(), &error);
    if (succeeded(context, error,
                  QStringLiteral("Failed to execute command on remote system: %1").arg(error)))
        context->setMapResult(answer);
}

}  // namespace Tamrix
