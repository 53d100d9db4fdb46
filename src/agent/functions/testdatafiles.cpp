// Files that scripts keep beside the application: in a folder of their own below its working
// folder.

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "agent/functions/functiontable.h"
#include "base/bytetext.h"
#include "base/pathbelow.h"
#include "wire/protocol.h"

namespace Tamrix::Agent {

namespace {

/// A text has about the size of its bytes; the rest of a message is small.
static_assert(mostTransportBytes + 64 * 1024 < Wire::maximalBodySize);

QString folderPath() {
    return QDir::current().absoluteFilePath(QStringLiteral("tamrix-testdata"));
}

[[noreturn]] void refuse(const QString& name, const QString& reason) {
    throw CallError(FailureKind::Failed,
                    QStringLiteral("the test data file '%1' %2").arg(name, reason));
}

/// The path of a file in the folder. Throws when the name leads out of it, also by a symbolic link.
QString pathOf(const QString& name) {
    const QString folder = folderPath();
    PathFault fault = faultOfPathBelow(folder, name);
    if (fault == PathFault::None && QFileInfo(folder).isSymLink())
        fault = PathFault::LeadsOut;
    switch (fault) {
        case PathFault::NoFile:
            refuse(name, QStringLiteral("has no name that a file can have"));
        case PathFault::Absolute:
            refuse(name, QStringLiteral("is named by an absolute path: only files in the folder "
                                        "'%1' can be reached")
                             .arg(folder));
        case PathFault::LeadsOut:
            refuse(name, QStringLiteral("leads out of the folder '%1'").arg(folder));
        case PathFault::None:
            break;
    }
    return folder + QLatin1Char('/') + QDir::cleanPath(name);
}

template <typename Value>
void answer(const Call& call, const Value& value) {
    call.responder()->replyBody(Wire::Value{QVariant(value)});
    call.responder()->finish();
}

}  // namespace

void testDataPut(Call& call) {
    const QString name = call.takeText("file");
    const QString encoded = call.takeText("encodedBytes");
    call.takeEnd();
    const QString path = pathOf(name);
    QByteArray bytes;
    if (!decodedQByteArray(encoded, &bytes))
        throw CallError(FailureKind::BadArgument,
                        QStringLiteral("the argument encodedBytes holds no bytes"));
    QSaveFile file(path);
    if (!QDir().mkpath(QFileInfo(path).path()))
        refuse(name, QStringLiteral("can't be written: the folder '%1' can't be made")
                         .arg(QFileInfo(path).path()));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        refuse(name, QStringLiteral("can't be written: %1").arg(file.errorString()));
    answer(call, path);
}

void testDataGet(Call& call) {
    const QString name = call.takeText("file");
    call.takeEnd();
    QFile file(pathOf(name));
    if (!file.open(QIODevice::ReadOnly))
        refuse(name, QStringLiteral("can't be read: %1").arg(file.errorString()));
    if (file.size() > mostTransportBytes)
        refuse(
            name,
            QStringLiteral("is larger than %1 bytes, which can be sent").arg(mostTransportBytes));
    const QByteArray bytes = file.readAll();
    if (file.error() != QFile::NoError)
        refuse(name, QStringLiteral("can't be read: %1").arg(file.errorString()));
    answer(call, encodedQString(bytes));
}

void testDataExists(Call& call) {
    const QString name = call.takeText("file");
    call.takeEnd();
    answer(call, QFileInfo(pathOf(name)).isFile());
}

void testDataRemove(Call& call) {
    const QString name = call.takeText("file");
    call.takeEnd();
    const QString path = pathOf(name);
    const QFileInfo info(path);
    if (!info.exists() && !info.isSymLink()) {
        answer(call, false);
        return;
    }
    if (info.isDir())
        refuse(name, QStringLiteral("is a folder"));
    QFile file(path);
    if (!file.remove())
        refuse(name, QStringLiteral("can't be removed: %1").arg(file.errorString()));
    answer(call, true);
}

}  // namespace Tamrix::Agent
