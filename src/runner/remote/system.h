#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QMap>
#include <QString>
#include <QStringList>
#include <functional>

#include "base/outcome.h"

namespace Tamrix {

/// What a system tells of a path. Of a link it is what the link leads to, but for `isLink`; of one
/// that leads nowhere it is the link itself.
struct PathFacts {
    enum class Kind { File, Directory, Link, Other };

    Kind kind = Kind::Other;
    bool isLink = false;
    /// Bytes.
    quint64 size = 0;
    /// The lower twelve bits of the mode, as chmod takes them.
    quint32 permissions = 0;
    quint32 ownerId = 0;
    quint32 groupId = 0;
    QDateTime lastModified;
    QDateTime lastAccessed;
};

/// A program that is to be run on a system, to its end.
struct SystemCommand {
    /// The program, by its path or a name that is looked for in PATH, and its arguments.
    QStringList words;
    /// Empty for the one in which the system starts commands: there the user's home folder, here
    /// that of this process.
    QString workingDirectory = {};
    /// On top of the environment that the system gives, or instead of it.
    QMap<QString, QString> environment = {};
    bool clearsEnvironment = false;
    /// Milliseconds, after which the program is ended; 0 for no limit.
    int timeout = 0;
};

struct CommandResult {
    /// 128 and the signal's number for a program that a signal ended.
    int exitCode = -1;
    QByteArray standardOutput;
    QByteArray standardError;
};

/// The files and programs of a machine with a POSIX shell: this one, or another one that is reached
/// by SSH. Script thread only. Paths that are not absolute count from the folder in which the
/// system starts commands. Names may have any bytes but NUL: see base/nativebytes.h.
///
/// A failure tells path and reason; it does not tell on which machine. FailureKind::Ended is the
/// end of the connection: nothing works any more then.
class System {
public:
    virtual ~System() = default;

    /// Called again and again while the system is waited for. Waiting ends as a failure when it
    /// returns false.
    void setIdleHook(std::function<bool()> hook) { m_idleHook = std::move(hook); }

    /// Fails when the program can't be started or does not end in time. Standard input is empty.
    virtual Outcome<CommandResult> execute(const SystemCommand& command) = 0;

    /// NotFound when there is nothing, not even a link that leads nowhere.
    virtual Outcome<PathFacts> facts(const QString& path) = 0;
    virtual Outcome<QString> linkTarget(const QString& path) = 0;
    /// Names without "." and "..", in no order.
    virtual Outcome<QStringList> entries(const QString& path) = 0;
    /// Refused when there is something under the new name.
    virtual Outcome<> rename(const QString& from, const QString& to) = 0;
    virtual Outcome<> makeDirectory(const QString& path) = 0;
    /// Removes a file, or a link and not what it leads to.
    virtual Outcome<> removeFile(const QString& path) = 0;
    /// Removes an empty folder.
    virtual Outcome<> removeDirectory(const QString& path) = 0;

    // A file is whole under its name or not there, and one that was there stays until then. The
    // folders must be there. Where the name is a link, what it leads to is replaced.
    virtual Outcome<> writeFile(const QString& path, const QByteArray& bytes) = 0;
    /// Copies a file of this machine to the system, or back, with its rights and time of
    /// modification.
    virtual Outcome<> upload(const QString& localPath, const QString& path) = 0;
    virtual Outcome<> download(const QString& path, const QString& localPath) = 0;

protected:
    /// False when waiting is to end.
    bool idle() const { return !m_idleHook || m_idleHook(); }

private:
    std::function<bool()> m_idleHook;
};

}  // namespace Tamrix
