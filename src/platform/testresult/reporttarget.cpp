#include "platform/testresult/reporttarget.h"

#include <QDir>
#include <QFileInfo>

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

}  // namespace Tamrix
