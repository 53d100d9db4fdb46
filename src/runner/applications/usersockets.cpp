#include "runner/applications/usersockets.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include "wire/framechannel.h"

namespace Tamrix {

namespace {

/// The age from which on a socket that nobody listens at was left behind, in seconds.
constexpr int socketAge = 10;

bool isGoodName(const QString& name) {
    static const QRegularExpression form(QStringLiteral("\\A[A-Za-z0-9._-]{1,40}\\z"));
    return form.match(name).hasMatch();
}

/// Where the sockets are, whether it is there or not.
QString folderPath(const QString& kind) {
    const QString runtime = QString::fromLocal8Bit(qgetenv("XDG_RUNTIME_DIR"));
    return runtime.isEmpty()
               ? QStringLiteral("%1/%2-%3").arg(QDir::tempPath(), kind, QString::number(::getuid()))
               : QStringLiteral("%1/%2").arg(runtime, kind);
}

/// The folder, made when it is not there. Fails when it can't be trusted.
Outcome<QString> trustedFolder(const QString& kind) {
    const QString folder = folderPath(kind);
    const QByteArray path = folder.toLocal8Bit();
    ::mkdir(path.constData(), S_IRWXU);
    struct stat info {};
    if (::lstat(path.constData(), &info) == 0 && S_ISDIR(info.st_mode) &&
        info.st_uid == ::getuid() && (info.st_mode & (S_IRWXG | S_IRWXO)) == 0)
        return folder;
    return fail(FailureKind::Refused,
                QStringLiteral("'%1' is not a folder that only this user can enter").arg(folder));
}

}  // namespace

Outcome<QString> userSocketPath(const QString& kind, const QString& name, const QString& what) {
    if (!isGoodName(name)) {
        return fail(FailureKind::BadArgument,
                    QStringLiteral("'%1' is no name for %2: letters, digits, '.', '_' and '-'")
                        .arg(name, what));
    }
    const Outcome<QString> folder = trustedFolder(kind);
    if (!folder)
        return folder;
    return QStringLiteral("%1/%2.sock").arg(*folder, name);
}

void clearLeftUserSockets(const QString& kind) {
    const QDir folder(folderPath(kind));
    const QDateTime justNow = QDateTime::currentDateTime().addSecs(-socketAge);
    for (const QFileInfo& file : folder.entryInfoList({QStringLiteral("*.sock")}, QDir::System)) {
        if (const Outcome<int> descriptor = Wire::connectLocalSocket(file.filePath()))
            ::close(*descriptor);
        // A new one may not listen yet.
        else if (file.lastModified() < justNow)
            ::unlink(QFile::encodeName(file.filePath()).constData());
    }
}

UserSocketListener::~UserSocketListener() {
    if (m_descriptor < 0)
        return;
    ::close(m_descriptor);
    ::unlink(m_path.toLocal8Bit().constData());
}

Outcome<> UserSocketListener::listen(const QString& path) {
    m_path = path;
    const Outcome<int> descriptor = Wire::listenLocalSocket(path);
    if (!descriptor)
        return fail(descriptor.error());
    m_descriptor = *descriptor;
    return {};
}

Outcome<> UserSocketListener::takeOver(const QString& path) {
    if (const Outcome<int> other = Wire::connectLocalSocket(path)) {
        ::close(*other);
        return fail(FailureKind::Refused,
                    QStringLiteral("another process listens at '%1'").arg(path));
    }
    ::unlink(path.toLocal8Bit().constData());
    return listen(path);
}

}  // namespace Tamrix
