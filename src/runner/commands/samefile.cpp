#include "runner/commands/samefile.h"

#include <QDir>
#include <QFileInfo>

namespace Tamrix {

namespace {

/// The path without links and "..", as far as it exists.
QString resolvedPath(const QString& path) {
    const QFileInfo info(path);
    if (info.exists())
        return info.canonicalFilePath();
    const QString folder = QDir(info.absolutePath()).canonicalPath();
    return folder.isEmpty() ? QDir::cleanPath(info.absoluteFilePath())
                            : QDir(folder).filePath(info.fileName());
}

}  // namespace

bool isSameFile(const QString& left, const QString& right) {
    return resolvedPath(left) == resolvedPath(right);
}

}  // namespace Tamrix
