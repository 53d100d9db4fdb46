#include "platform/objectmodel/mapfile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "base/filewriting.h"

namespace Tamrix {

MapFileLock::MapFileLock(const QString& path)
    : m_descriptor(::open(QFile::encodeName(QFileInfo(path).path()).constData(),
                          O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    while (m_descriptor >= 0 && ::flock(m_descriptor, LOCK_EX) < 0 && errno == EINTR) {
    }
}

MapFileLock::~MapFileLock() {
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

QByteArray withEntry(const QByteArray& content, const QString& entry) {
    const QByteArray lineEnd = content.contains("\r\n") ? "\r\n" : "\n";
    QByteArray result = content;
    if (!result.isEmpty() && !result.endsWith('\n'))
        result += lineEnd;
    return result + entry.toUtf8().replace("\n", lineEnd) + lineEnd;
}

Outcome<> replaceFile(const QString& path, const QByteArray& content) {
    const auto failure = [&path](const QString& reason) {
        return fail(FailureKind::Failed,
                    QStringLiteral("The file '%1' can't be written: %2").arg(path, reason));
    };
    const QString folder = QFileInfo(path).path();
    if (!QDir().mkpath(folder))
        return failure(QStringLiteral("its folder can't be made"));
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return failure(file.errorString());
    QString error;
    if (!writeAll(&file, content, &error))
        return failure(error);
    if (!file.commit())
        return failure(file.errorString());
    return {};
}

}  // namespace Tamrix
