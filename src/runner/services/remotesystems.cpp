#include "runner/services/remotesystems.h"

#include <algorithm>
#include <limits>

#include "runner/remote/localsystem.h"
#include "runner/remote/sshsystem.h"
#include "runner/remote/systemoperations.h"
#include "shared/settings/settings.h"

namespace Tamrix {

namespace {

/// What the user has set; an empty host without that.
SshTarget defaultTarget() {
    const UserSettings settings(UserSettingsType::Server);
    const QString group = Settings::defaultGroup();
    return {settings.readEntry(group, QStringLiteral("host")),
            settings.readNumEntry(group, QStringLiteral("port"), -1)};
}

Outcome<std::unique_ptr<System>> connectTo(const SshTarget& target) {
    if (target.host.isEmpty())
        return std::unique_ptr<System>(std::make_unique<LocalSystem>());
    Outcome<std::unique_ptr<SshSystem>> system = SshSystem::connect(target);
    if (!system)
        return fail(system.error());
    return std::unique_ptr<System>(std::move(*system));
}

Recursion recursionOf(bool recursive) {
    return recursive ? Recursion::Yes : Recursion::No;
}

/// A value of a script as a word of a command line.
QString wordOf(const QVariant& value) {
    return value.toString();
}

}  // namespace

template <typename Result, typename Operation>
Result RemoteSystems::with(int handle, QString* error, Result failed, const Operation& operation) {
    const auto system = m_systems.find(handle);
    if (system == m_systems.end()) {
        *error =
            QStringLiteral("there is no connection %1: it was closed or never made").arg(handle);
        return failed;
    }
    const Outcome<Result> result = operation(*system->second);
    if (result)
        return *result;
    *error = result.error().text;
    return failed;
}

template <typename Operation>
bool RemoteSystems::done(int handle, QString* error, const Operation& operation) {
    return with(handle, error, false, [&operation](System& system) -> Outcome<bool> {
        const Outcome<> outcome = operation(system);
        if (!outcome)
            return fail(outcome.error());
        return true;
    });
}

// Connections

int RemoteSystems::connectToRemoteSystem(const QString& host, int port, QString* error) {
    const bool isDefault = host.isEmpty() && port == -1;
    if (host.isEmpty() && !isDefault) {
        *error = QStringLiteral("no host is named");
        return -1;
    }
    Outcome<std::unique_ptr<System>> system =
        connectTo(isDefault ? defaultTarget() : SshTarget{host, port});
    if (!system) {
        *error = system.error().text;
        return -1;
    }
    (*system)->setIdleHook([this] {
        m_state.applications.work();
        return !m_state.applications.isInterrupted();
    });
    m_systems.emplace(++m_lastHandle, std::move(*system));
    return m_lastHandle;
}

void RemoteSystems::closeRemoteSystemConnection(int handle, QString* error) {
    const bool isClosed = done(handle, error, [](System&) -> Outcome<> { return {}; });
    if (isClosed)
        m_systems.erase(handle);
}

// The system

QString RemoteSystems::getEnvironmentVariable(int handle, const QString& name, QString* error) {
    return with(handle, error, QString(),
                [&](System& system) { return Tamrix::environmentVariable(system, name); });
}

QString RemoteSystems::getOSName(int handle, QString* error) {
    return with(handle, error, QString(), [](System& system) { return Tamrix::osName(system); });
}

QMap<QString, QVariant> RemoteSystems::executeCommand(int handle, const QList<QVariant>& command,
                                                      const QString& workingDirectory,
                                                      const QMap<QString, QVariant>& environment,
                                                      bool keepLineEnding, bool clearEnvironment,
                                                      int timeout, const QString& encoding,
                                                      QString* error) {
    using Answer = QMap<QString, QVariant>;
    const auto run = [&](System& system) -> Outcome<Answer> {
        SystemCommand wanted;
        for (const QVariant& word : command)
            wanted.words.append(wordOf(word));
        wanted.workingDirectory = workingDirectory;
        for (auto variable = environment.cbegin(); variable != environment.cend(); ++variable)
            wanted.environment.insert(variable.key(), wordOf(variable.value()));
        wanted.clearsEnvironment = clearEnvironment;
        constexpr int longest = std::numeric_limits<int>::max() / 1000;
        wanted.timeout = std::clamp(timeout, 0, longest) * 1000;
        // An unknown encoding shall not be told when the program has run.
        if (const Outcome<QString> known = decoded({}, encoding, LineEnds::AsTheyAre); !known)
            return fail(known.error());
        const Outcome<CommandResult> result = system.execute(wanted);
        if (!result)
            return fail(result.error());
        const LineEnds lineEnds = keepLineEnding ? LineEnds::AsTheyAre : LineEnds::OfThisSystem;
        return Answer{
            {QStringLiteral("exitcode"), result->exitCode},
            {QStringLiteral("stderr"), *decoded(result->standardError, encoding, lineEnds)},
            {QStringLiteral("stdout"), *decoded(result->standardOutput, encoding, lineEnds)}};
    };
    return with(handle, error, Answer(), run);
}

// Paths

QStringList RemoteSystems::getRemoteDirectoryContent(int handle, const QString& path,
                                                     QString* error) {
    QStringList names =
        with(handle, error, QStringList(), [&](System& system) { return system.entries(path); });
    names.sort();
    return names;
}

QVariant RemoteSystems::getRemotePathProperty(int handle, const QString& path,
                                              const QString& property, QString* error) {
    return with(handle, error, QVariant(),
                [&](System& system) { return pathProperty(system, path, property); });
}

bool RemoteSystems::remotePathExists(int handle, const QString& path, QString* error) {
    return with(handle, error, false, [&](System& system) { return pathExists(system, path); });
}

bool RemoteSystems::remoteRenamePath(int handle, const QString& oldPath, const QString& newPath,
                                     QString* error) {
    return done(handle, error, [&](System& system) { return system.rename(oldPath, newPath); });
}

bool RemoteSystems::remoteCreatePath(int handle, const QString& path, bool recursive,
                                     QString* error) {
    return done(handle, error,
                [&](System& system) { return createPath(system, path, recursionOf(recursive)); });
}

bool RemoteSystems::remoteDeletePath(int handle, const QString& path, bool recursive,
                                     QString* error) {
    return done(handle, error,
                [&](System& system) { return deletePath(system, path, recursionOf(recursive)); });
}

bool RemoteSystems::remoteCreateFile(int handle, const QString& path, const QString& content,
                                     const QString& encoding, QString* error) {
    return done(handle, error, [&](System& system) -> Outcome<> {
        const Outcome<QByteArray> bytes = encoded(content, encoding);
        if (!bytes)
            return fail(bytes.error());
        return system.writeFile(path, *bytes);
    });
}

bool RemoteSystems::remoteDeleteFile(int handle, const QString& path, QString* error) {
    return done(handle, error, [&](System& system) { return system.removeFile(path); });
}

bool RemoteSystems::remoteCopyPath(int handle, const QString& from, const QString& to,
                                   QString* error) {
    return done(handle, error, [&](System& system) { return copyPath(system, from, to); });
}

bool RemoteSystems::remoteUploadFile(int handle, const QString& localPath,
                                     const QString& remotePath, QString* error) {
    return done(handle, error,
                [&](System& system) { return system.upload(localPath, remotePath); });
}

bool RemoteSystems::remoteDownloadFile(int handle, const QString& remotePath,
                                       const QString& localPath, QString* error) {
    return done(handle, error,
                [&](System& system) { return system.download(remotePath, localPath); });
}

}  // namespace Tamrix
