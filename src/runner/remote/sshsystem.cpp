#include "runner/remote/sshsystem.h"

#include "base/nativebytes.h"
#include "runner/remote/fileerrors.h"
#include "runner/remote/localfile.h"
#include "runner/remote/sftptransfer.h"
#include "runner/remote/sshcommand.h"

namespace Tamrix {

namespace {

/// Looks, behind a failure that the protocol has few words for, what the path is.
std::optional<PathFacts> look(SftpClient& client, const QString& path) {
    const Outcome<PathFacts> facts = client.linkStatus(path);
    return facts ? std::optional<PathFacts>(*facts) : std::nullopt;
}

}  // namespace

SshSystem::SshSystem(std::unique_ptr<SshConnection> connection)
    : m_connection(std::move(connection)) {
    m_connection->setIdleHook([this] { return idle(); });
}

Outcome<std::unique_ptr<SshSystem>> SshSystem::connect(const SshTarget& target,
                                                       const SshPatience& patience) {
    Outcome<std::unique_ptr<SshConnection>> connection = SshConnection::open(target, patience);
    if (!connection)
        return fail(connection.error());
    return std::unique_ptr<SshSystem>(new SshSystem(std::move(*connection)));
}

Outcome<SftpClient*> SshSystem::sftp(const QString& path) {
    if (const Outcome<> checked = checkPath(path); !checked)
        return fail(checked.error());
    if (!m_sftp) {
        Outcome<std::unique_ptr<SftpClient>> client = SftpClient::open(*m_connection);
        if (!client)
            return fail(client.error());
        m_sftp = std::move(*client);
    }
    return m_sftp.get();
}

Outcome<CommandResult> SshSystem::execute(const SystemCommand& command) {
    return runSshCommand(*m_connection, command);
}

// Paths

Outcome<PathFacts> SshSystem::facts(const QString& path) {
    const Outcome<SftpClient*> client = sftp(path);
    if (!client)
        return fail(client.error());
    const Outcome<PathFacts> link = (*client)->linkStatus(path);
    if (!link || !link->isLink)
        return link;
    Outcome<PathFacts> target = (*client)->status(path);
    if (!target)
        return target.error().kind == FailureKind::Ended ? target : link;
    target->isLink = true;
    return target;
}

Outcome<QString> SshSystem::linkTarget(const QString& path) {
    const Outcome<SftpClient*> client = sftp(path);
    if (!client)
        return fail(client.error());
    Outcome<QString> target = (*client)->readLink(path);
    if (target || target.error().kind == FailureKind::Ended)
        return target;
    const std::optional<PathFacts> found = look(**client, path);
    if (found && !found->isLink)
        return fail(FailureKind::Refused, QStringLiteral("'%1' is no link").arg(path));
    return target;
}

Outcome<QStringList> SshSystem::entries(const QString& path) {
    const Outcome<SftpClient*> client = sftp(path);
    if (!client)
        return fail(client.error());
    Outcome<QStringList> names = (*client)->entries(path);
    if (names || names.error().kind == FailureKind::Ended)
        return names;
    const Outcome<PathFacts> found = (*client)->status(path);
    if (found && found->kind != PathFacts::Kind::Directory)
        return fail(fileFailure(FileProblem::NoDirectory, path));
    return names;
}

Outcome<> SshSystem::rename(const QString& from, const QString& to) {
    const Outcome<SftpClient*> client = sftp(from);
    if (!client)
        return fail(client.error());
    if (const Outcome<> checked = checkPath(to); !checked)
        return checked;
    // Servers differ in what they do then.
    if (look(**client, to))
        return fail(fileFailure(FileProblem::ExistsAlready, to));
    Outcome<> renamed = (*client)->rename(from, to);
    // What is there can only miss the folder that it is to go to.
    if (!renamed && renamed.error().kind == FailureKind::NotFound && look(**client, from))
        return fail(creationFailure(renamed.error(), to));
    return renamed;
}

Outcome<> SshSystem::makeDirectory(const QString& path) {
    const Outcome<SftpClient*> client = sftp(path);
    if (!client)
        return fail(client.error());
    const Outcome<> made = (*client)->makeDirectory(path);
    if (made || made.error().kind == FailureKind::Ended)
        return made;
    if (look(**client, path))
        return fail(fileFailure(FileProblem::ExistsAlready, path));
    return fail(creationFailure(made.error(), path));
}

Outcome<> SshSystem::removeFile(const QString& path) {
    const Outcome<SftpClient*> client = sftp(path);
    if (!client)
        return fail(client.error());
    Outcome<> removed = (*client)->removeFile(path);
    if (removed || removed.error().kind == FailureKind::Ended)
        return removed;
    const std::optional<PathFacts> found = look(**client, path);
    if (found && found->kind == PathFacts::Kind::Directory)
        return fail(fileFailure(FileProblem::IsDirectory, path));
    return removed;
}

Outcome<> SshSystem::removeDirectory(const QString& path) {
    const Outcome<SftpClient*> client = sftp(path);
    if (!client)
        return fail(client.error());
    Outcome<> removed = (*client)->removeDirectory(path);
    if (removed || removed.error().kind == FailureKind::Ended)
        return removed;
    const std::optional<PathFacts> found = look(**client, path);
    if (found && found->kind != PathFacts::Kind::Directory)
        return fail(fileFailure(FileProblem::NoDirectory, path));
    const Outcome<QStringList> names = found ? (*client)->entries(path) : QStringList();
    if (names && !names->isEmpty())
        return fail(fileFailure(FileProblem::NotEmpty, path));
    return removed;
}

// Files

Outcome<> SshSystem::create(
    const QString& path, const PathFacts* facts,
    const std::function<Outcome<>(SftpClient&, const SftpClient::Handle&)>& write) {
    const Outcome<SftpClient*> started = sftp(path);
    if (!started)
        return fail(started.error());
    SftpClient& client = **started;
    // 1. What is there under the name.
    const Outcome<PathFacts> old = this->facts(path);
    if (!old && old.error().kind != FailureKind::NotFound)
        return fail(old.error());
    QString target = path;
    if (old) {
        if (old->kind == PathFacts::Kind::Link)
            return fail(fileFailure(FileProblem::LeadsNowhere, path));
        if (old->kind == PathFacts::Kind::Directory)
            return fail(fileFailure(FileProblem::IsDirectory, path));
        if (old->kind != PathFacts::Kind::File)
            return fail(fileFailure(FileProblem::NoFile, path));
    } else if (path.endsWith(QLatin1Char('/'))) {
        return fail(fileFailure(FileProblem::NoName, path));
    }
    if (old && old->isLink) {
        const Outcome<QString> real = client.realPath(path);
        if (!real)
            return fail(real.error());
        target = *real;
    }
    // 2. The part beside it, with the rights of what it replaces.
    const QString part = partPath(target);
    const Outcome<SftpClient::Handle> handle =
        client.createFile(part, old ? old->permissions & 0777U : 0);
    if (!handle) {
        Failure why = creationFailure(handle.error(), path);
        why.text.replace(part, path);
        return fail(why);
    }
    Outcome<> done = write(client, *handle);
    if (done && facts)
        static_cast<void>(client.takeOver(*handle, *facts, path));
    // 3. A server may have no room only when it closes the file.
    const Outcome<> closed = client.close(*handle, path);
    if (done && !closed)
        done = closed;
    // 4. The part takes the name.
    if (done)
        done = client.replace(part, target);
    if (!done)
        static_cast<void>(client.removeFile(part));
    return done;
}

Outcome<> SshSystem::writeFile(const QString& path, const QByteArray& bytes) {
    return create(path, nullptr, [&](SftpClient& client, const SftpClient::Handle& handle) {
        return sendBytes(client, handle, bytes, path);
    });
}

Outcome<> SshSystem::upload(const QString& localPath, const QString& path) {
    const Outcome<LocalFile> source = LocalFile::openForReading(localPath);
    if (!source)
        return fail(source.error());
    const PathFacts facts = source->facts();
    return create(path, &facts, [&](SftpClient& client, const SftpClient::Handle& handle) {
        return sendFile(client, handle, source->descriptor(), localPath, path);
    });
}

Outcome<> SshSystem::download(const QString& path, const QString& localPath) {
    const Outcome<SftpClient*> started = sftp(path);
    if (!started)
        return fail(started.error());
    SftpClient& client = **started;
    // 1. What is there; a pipe would be waited for.
    const Outcome<PathFacts> found = facts(path);
    if (!found)
        return fail(found.error());
    if (found->kind == PathFacts::Kind::Link)
        return fail(fileFailure(FileProblem::LeadsNowhere, path));
    if (found->kind == PathFacts::Kind::Directory)
        return fail(fileFailure(FileProblem::IsDirectory, path));
    if (found->kind != PathFacts::Kind::File)
        return fail(fileFailure(FileProblem::NoFile, path));
    // 2. The file here, which takes its name once it is whole.
    Outcome<NewLocalFile> target = NewLocalFile::create(localPath);
    if (!target)
        return fail(target.error());
    const Outcome<SftpClient::Handle> handle = client.openForReading(path);
    if (!handle)
        return fail(handle.error());
    const Outcome<> fetched =
        fetchFile(client, *handle, found->size, target->descriptor(), path, localPath);
    const Outcome<> closed = client.close(*handle, path);
    if (!fetched)
        return fetched;
    if (!closed)
        return closed;
    target->takeOver(*found);
    return target->finish();
}

}  // namespace Tamrix
