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

Outcome<> checkReadable(const QString& path) {
    const QFileInfo info(path);
    if (!info.exists())
        return fail(FailureKind::NotFound, QStringLiteral("there is no such file"));
    if (info.isDir())
        return fail(FailureKind::BadArgument, QStringLiteral("it is a folder"));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(FailureKind::Failed, file.errorString());
    return {};
}

}  // namespace Tamrix::TestData
