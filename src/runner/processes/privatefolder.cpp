#include "runner/processes/privatefolder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QStringList>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "runner/processes/markedprocesses.h"

namespace Tamrix {

namespace {

/// Longest path of a folder in which a socket's name still fits into an address.
constexpr int maximalFolderLength = 80;
/// How long programs that were left are asked to end before they are killed.
constexpr int endPatience = 1000;
/// The file that is locked. Holds the run's name once the lock is there.
const QLatin1String lockName("/run");
const QLatin1String folderPrefix("tamrix-");

QStringList places() {
    QStringList all;
    for (const QString& place : {QFile::decodeName(qgetenv("XDG_RUNTIME_DIR")), QDir::tempPath(),
                                 QStringLiteral("/tmp")}) {
        if (!place.isEmpty() && !all.contains(place))
            all.append(place);
    }
    return all;
}

bool isOwnFolder(const QString& path) {
    struct stat info {};
    return ::lstat(QFile::encodeName(path).constData(), &info) == 0 && S_ISDIR(info.st_mode) &&
           info.st_uid == ::getuid() && (info.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}

/// Clears up behind the run of a folder unless it lives.
void clearFolder(const QString& path) {
    const int lock = ::open(QFile::encodeName(path + lockName).constData(), O_RDONLY | O_CLOEXEC);
    if (lock < 0)
        return;
    char runId[64];
    ssize_t size = 0;
    // A folder without a name is being made.
    if (::flock(lock, LOCK_EX | LOCK_NB) == 0 && (size = ::read(lock, runId, sizeof(runId))) > 0) {
        endProcesses({std::string(runId, static_cast<size_t>(size)) + ':'}, endPatience);
        QDir(path).removeRecursively();
    }
    ::close(lock);
}

}  // namespace

PrivateFolder::~PrivateFolder() {
    if (!m_path.isEmpty())
        QDir(m_path).removeRecursively();
    if (m_lock >= 0)
        ::close(m_lock);
}

Outcome<> PrivateFolder::make(const QString& runId) {
    if (!m_path.isEmpty())
        return {};
    QString reason;
    for (const QString& place : places()) {
        QByteArray name =
            QFile::encodeName(place + QLatin1Char('/') + folderPrefix + QLatin1String("XXXXXX"));
        if (name.size() > maximalFolderLength)
            continue;
        // Made with mode 0700.
        if (!::mkdtemp(name.data())) {
            reason = QStringLiteral("%1: %2").arg(place, qt_error_string(errno));
            continue;
        }
        m_path = QFile::decodeName(name);
        m_lock = ::open(QFile::encodeName(m_path + lockName).constData(),
                        O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
        const QByteArray id = runId.toLatin1();
        if (m_lock >= 0 && ::flock(m_lock, LOCK_EX) == 0 &&
            ::write(m_lock, id.constData(), static_cast<size_t>(id.size())) == id.size())
            return {};
        return fail(FailureKind::Failed, QStringLiteral("the folder '%1' can't be used: %2")
                                             .arg(m_path, qt_error_string(errno)));
    }
    return fail(FailureKind::Failed,
                QStringLiteral("no folder for the agents' socket can be made (%1)").arg(reason));
}

void clearLeftFolders() {
    for (const QString& place : places()) {
        const QDir folder(place);
        for (const QString& name : folder.entryList({folderPrefix + QLatin1String("??????")},
                                                    QDir::Dirs | QDir::NoSymLinks | QDir::Hidden)) {
            const QString path = folder.filePath(name);
            if (isOwnFolder(path))
                clearFolder(path);
        }
    }
}

}  // namespace Tamrix
