#include "runner/remote/localsystem.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <vector>

#include "base/filewriting.h"
#include "base/nativebytes.h"
#include "runner/remote/fileerrors.h"
#include "runner/remote/localcommand.h"
#include "runner/remote/localfile.h"

namespace Tamrix {

namespace {

/// The outcome of a call of the system that gives 0 on success.
Outcome<> toldByErrno(int result, const QString& path) {
    if (result == 0)
        return {};
    return fail(fileFailure(errno, path));
}

Failure interrupted() {
    return {FailureKind::Failed, QStringLiteral("the run was interrupted")};
}

}  // namespace

Outcome<CommandResult> LocalSystem::execute(const SystemCommand& command) {
    return runLocalCommand(command, [this] { return idle(); });
}

Outcome<PathFacts> LocalSystem::facts(const QString& path) {
    if (const Outcome<> checked = checkPath(path); !checked)
        return fail(checked.error());
    const QByteArray name = toNativeBytes(path);
    struct stat link {};
    if (::lstat(name.constData(), &link) != 0)
        return fail(fileFailure(errno, path));
    PathFacts facts = factsOf(link);
    struct stat target {};
    if (facts.isLink && ::stat(name.constData(), &target) == 0) {
        facts = factsOf(target);
        facts.isLink = true;
    }
    return facts;
}

Outcome<QString> LocalSystem::linkTarget(const QString& path) {
    if (const Outcome<> checked = checkPath(path); !checked)
        return fail(checked.error());
    std::vector<char> buffer(65536);
    const ssize_t size = ::readlink(toNativeBytes(path).constData(), buffer.data(), buffer.size());
    if (size >= 0)
        return fromNativeBytes(QByteArray(buffer.data(), static_cast<int>(size)));
    if (errno == EINVAL)
        return fail(FailureKind::Refused, QStringLiteral("'%1' is no link").arg(path));
    return fail(fileFailure(errno, path));
}

Outcome<QStringList> LocalSystem::entries(const QString& path) {
    if (const Outcome<> checked = checkPath(path); !checked)
        return fail(checked.error());
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir(toNativeBytes(path).constData()),
                                                     &::closedir);
    if (!folder)
        return fail(fileFailure(errno, path));
    QStringList names;
    while (const dirent* entry = ::readdir(folder.get())) {
        const QByteArray name(entry->d_name);
        if (name != "." && name != "..")
            names.append(fromNativeBytes(name));
    }
    return names;
}

Outcome<> LocalSystem::rename(const QString& from, const QString& to) {
    for (const QString& path : {from, to}) {
        if (const Outcome<> checked = checkPath(path); !checked)
            return checked;
    }
    if (::renameat2(AT_FDCWD, toNativeBytes(from).constData(), AT_FDCWD,
                    toNativeBytes(to).constData(), RENAME_NOREPLACE) == 0)
        return {};
    const int error = errno;
    if (error == EEXIST)
        return fail(fileFailure(error, to));
    // What is there can only miss the folder that it is to go to.
    if (error == ENOENT && facts(from))
        return fail(creationFailure(fileFailure(error, to), to));
    return fail(fileFailure(error, from));
}

Outcome<> LocalSystem::makeDirectory(const QString& path) {
    if (const Outcome<> checked = checkPath(path); !checked)
        return checked;
    if (::mkdir(toNativeBytes(path).constData(), 0777) == 0)
        return {};
    return fail(creationFailure(fileFailure(errno, path), path));
}

Outcome<> LocalSystem::removeFile(const QString& path) {
    if (const Outcome<> checked = checkPath(path); !checked)
        return checked;
    return toldByErrno(::unlink(toNativeBytes(path).constData()), path);
}

Outcome<> LocalSystem::removeDirectory(const QString& path) {
    if (const Outcome<> checked = checkPath(path); !checked)
        return checked;
    return toldByErrno(::rmdir(toNativeBytes(path).constData()), path);
}

Outcome<> LocalSystem::writeFile(const QString& path, const QByteArray& bytes) {
    Outcome<NewLocalFile> file = NewLocalFile::create(path);
    if (!file)
        return fail(file.error());
    QString error;
    if (!writeAll(file->descriptor(), bytes, &error))
        return fail(FailureKind::Failed, QStringLiteral("'%1': %2").arg(path, error));
    return file->finish();
}

Outcome<> LocalSystem::copyFile(const QString& from, const QString& to) {
    const Outcome<LocalFile> source = LocalFile::openForReading(from);
    if (!source)
        return fail(source.error());
    Outcome<NewLocalFile> target = NewLocalFile::create(to);
    if (!target)
        return fail(target.error());
    constexpr int chunkSize = 1024 * 1024;
    std::vector<char> chunk(chunkSize);
    while (true) {
        const ssize_t size = ::read(source->descriptor(), chunk.data(), chunkSize);
        if (size == 0)
            break;
        if (size < 0 && errno == EINTR)
            continue;
        if (size < 0)
            return fail(fileFailure(errno, from));
        QString error;
        if (!writeAll(target->descriptor(),
                      QByteArray::fromRawData(chunk.data(), static_cast<int>(size)), &error))
            return fail(FailureKind::Failed, QStringLiteral("'%1': %2").arg(to, error));
        if (!idle())
            return fail(interrupted());
    }
    target->takeOver(source->facts());
    return target->finish();
}

Outcome<> LocalSystem::upload(const QString& localPath, const QString& path) {
    return copyFile(localPath, path);
}

Outcome<> LocalSystem::download(const QString& path, const QString& localPath) {
    return copyFile(path, localPath);
}

}  // namespace Tamrix
