// Files that scripts keep beside the application: in a folder of their own below its working
// folder.

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "agent/functions/functiontable.h"
#include "base/bytetext.h"
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
    if (name.isEmpty() || name.endsWith(QLatin1Char('/')) || name.contains(QChar(0)))
        refuse(name, QStringLiteral("has no name that a file can have"));
    if (QDir::isAbsolutePath(name) || name.startsWith(QLatin1Char(':')))
        refuse(name, QStringLiteral("is named by an absolute path: only files in the folder '%1' "
                                    "can be reached")
                         .arg(folderPath()));
    const QString folder = folderPath();
    const QString realFolder = QFileInfo(folder).exists()
                                   ? QFileInfo(folder).canonicalFilePath()
                                   : QFileInfo(QDir::currentPath()).canonicalFilePath() +
                                         QLatin1String("/tamrix-testdata");
    const auto leadsOut = [&] {
        refuse(name, QStringLiteral("leads out of the folder '%1'").arg(folder));
    };
    if (QFileInfo(folder).isSymLink())
        leadsOut();
    QString path = folder;
    const QStringList parts = name.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (const QString& part : parts) {
        if (part == QLatin1String(".."))
            leadsOut();
        path += QLatin1Char('/') + part;
        // A link that leads nowhere has no real path, and would be written through.
        const QFileInfo info(path);
        if (info.isSymLink() && !info.canonicalFilePath().startsWith(realFolder + QLatin1Char('/')))
            leadsOut();
    }
    return path;
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
