#include "platform/testresult/reporttarget.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

#include "base/filewriting.h"

namespace Tamrix {

QString prepareReportTarget(const QString& path, QString* error) {
    const QFileInfo info(path);
    const QString absolutePath = info.absoluteFilePath();
    const QString directory = info.absolutePath();
    error->clear();
    if (info.isDir()) {
        *error =
            QStringLiteral("The report '%1' can't be written: it is a directory").arg(absolutePath);
    } else if (!QDir().mkpath(directory)) {
        *error = QStringLiteral(
                     "The report '%1' can't be written: the directory '%2' could not "
                     "be created")
                     .arg(absolutePath, directory);
    } else if (info.exists() ? !info.isWritable() : !QFileInfo(directory).isWritable()) {
        *error =
            QStringLiteral("The report '%1' can't be written: permission denied").arg(absolutePath);
    }
    return absolutePath;
}

QString writeReport(const QString& path, const QByteArray& contents) {
    QSaveFile file(path);
    QString reason;
    if (file.open(QIODevice::WriteOnly) && writeAll(&file, contents, &reason) && file.commit())
        return QString();
    return QStringLiteral("The report '%1' can't be written: %2")
        .arg(path, reason.isEmpty() ? file.errorString() : reason);
}

}  // namespace Tamrix
