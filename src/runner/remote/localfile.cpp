#include "runner/remote/localfile.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <utility>

#include "base/nativebytes.h"
#include "base/standardpath.h"
#include "runner/remote/fileerrors.h"

namespace Tamrix {

namespace {

QDateTime dateTime(const timespec& time) {
    return QDateTime::fromMSecsSinceEpoch(qint64{time.tv_sec} * 1000 + time.tv_nsec / 1000000);
}

PathFacts::Kind kindOf(mode_t mode) {
    if (S_ISREG(mode))
        return PathFacts::Kind::File;
    if (S_ISDIR(mode))
        return PathFacts::Kind::Directory;
    return S_ISLNK(mode) ? PathFacts::Kind::Link : PathFacts::Kind::Other;
}

}  // namespace

PathFacts factsOf(const struct stat& status) {
    PathFacts facts;
    facts.kind = kindOf(status.st_mode);
    facts.isLink = facts.kind == PathFacts::Kind::Link;
    facts.size = static_cast<quint64>(status.st_size);
    facts.permissions = status.st_mode & 07777U;
    facts.ownerId = status.st_uid;
    facts.groupId = status.st_gid;
    facts.lastModified = dateTime(status.st_mtim);
    facts.lastAccessed = dateTime(status.st_atim);
    return facts;
}

LocalFile::~LocalFile() {
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

LocalFile::LocalFile(LocalFile&& other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, -1)) {}

Outcome<LocalFile> LocalFile::openForReading(const QString& path) {
    if (const Outcome<> checked = checkPath(path); !checked)
        return fail(checked.error());
    LocalFile file;
    // A pipe without a writer shall not be waited for.
    file.m_descriptor = ::open(toNativeBytes(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file.m_descriptor < 0)
        return fail(fileFailure(errno, path));
    const PathFacts::Kind kind = file.facts().kind;
    if (kind == PathFacts::Kind::Directory)
        return fail(fileFailure(FileProblem::IsDirectory, path));
    if (kind != PathFacts::Kind::File)
        return fail(fileFailure(FileProblem::NoFile, path));
    return file;
}

PathFacts LocalFile::facts() const {
    struct stat status {};
    if (::fstat(m_descriptor, &status) != 0)
        return {};
    return factsOf(status);
}

NewLocalFile::~NewLocalFile() {
    if (!m_part.isEmpty())
        ::unlink(toNativeBytes(m_part).constData());
}

NewLocalFile::NewLocalFile(NewLocalFile&& other) noexcept
    : m_path(std::move(other.m_path)),
      m_target(std::move(other.m_target)),
      m_part(std::exchange(other.m_part, QString())),
      m_file(std::move(other.m_file)),
      m_hasTime(other.m_hasTime),
      m_modified(other.m_modified) {}

Outcome<NewLocalFile> NewLocalFile::create(const QString& path) {
    if (const Outcome<> checked = checkPath(path); !checked)
        return fail(checked.error());
    NewLocalFile file;
    file.m_path = path;
    file.m_target = path;
    // 1. What is there under the name.
    struct stat status {};
    const bool isThere = ::stat(toNativeBytes(path).constData(), &status) == 0;
    if (!isThere && ::lstat(toNativeBytes(path).constData(), &status) == 0)
        return fail(fileFailure(FileProblem::LeadsNowhere, path));
    const PathFacts old = isThere ? factsOf(status) : PathFacts();
    if (isThere) {
        if (old.kind == PathFacts::Kind::Directory)
            return fail(fileFailure(FileProblem::IsDirectory, path));
        if (old.kind != PathFacts::Kind::File)
            return fail(fileFailure(FileProblem::NoFile, path));
        if (::access(toNativeBytes(path).constData(), W_OK) != 0)
            return fail(fileFailure(errno, path));
        file.m_target = realPath(path);
    } else if (path.endsWith(QLatin1Char('/'))) {
        return fail(fileFailure(FileProblem::NoName, path));
    }
    // 2. The part beside it, with the rights of what it replaces.
    const QString part = partPath(file.m_target);
    file.m_file.m_descriptor = ::open(toNativeBytes(part).constData(),
                                      O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666);
    if (file.m_file.m_descriptor < 0)
        return fail(creationFailure(fileFailure(errno, path), path));
    file.m_part = part;
    if (isThere)
        ::fchmod(file.m_file.m_descriptor, old.permissions & 0777U);
    return file;
}

void NewLocalFile::takeOver(const PathFacts& facts) {
    ::fchmod(m_file.m_descriptor, facts.permissions & 0777U);
    const qint64 time = facts.lastModified.toMSecsSinceEpoch();
    m_modified = {time / 1000, (time % 1000) * 1000000};
    m_hasTime = facts.lastModified.isValid();
}

Outcome<> NewLocalFile::finish() {
    if (m_hasTime) {
        const std::array<timespec, 2> times{timespec{0, UTIME_OMIT}, m_modified};
        ::futimens(m_file.m_descriptor, times.data());
    }
    if (::rename(toNativeBytes(m_part).constData(), toNativeBytes(m_target).constData()) != 0)
        return fail(fileFailure(errno, m_path));
    m_part.clear();
    return {};
}

}  // namespace Tamrix
