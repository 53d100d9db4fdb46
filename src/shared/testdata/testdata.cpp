#include "shared/testdata/testdata.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace Tamrix::TestData {

bool checkAndMakeDir(const QString& path, bool make) {
    QString level = path.startsWith(QLatin1Char('/')) ? QStringLiteral("/") : QString();
    const QStringList parts = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (const QString& part : parts) {
        level += part;
        if (!QFileInfo(level).isDir() && !(make && QDir().mkdir(level)))
            return false;
        level += QLatin1Char('/');
    }
    return true;
}

QString unreadableReason(const QString& path) {
    const QFileInfo info(path);
    if (!info.exists())
        return QStringLiteral("there is no such file");
    if (info.isDir())
        return QStringLiteral("it is a folder");
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString() : file.errorString();
}

}  // namespace Tamrix::TestData
