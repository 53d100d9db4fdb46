#pragma once

#include <QDir>
#include <QFileInfo>
#include <QString>
#include <QStringList>

namespace Tamrix {

// Files that scripts name by a path below a folder which they are not to leave: those of a test
// case and those beside an application.

enum class PathFault {
    None,
    NoFile,    ///< no name that a file can have
    Absolute,  ///< not below any folder
    LeadsOut   ///< by "..", or by a symbolic link to somewhere else
};

/// What is wrong with the name of a file below the folder, which need not be there yet. Any thread.
inline PathFault faultOfPathBelow(const QString& folder, const QString& name) {
    if (name.isEmpty() || name.endsWith(QLatin1Char('/')) || name.contains(QChar(0)) ||
        name == QLatin1String(".") || name.endsWith(QLatin1String("/.")))
        return PathFault::NoFile;
    // What begins with ":" is a resource of Qt.
    if (QDir::isAbsolutePath(name) || name.startsWith(QLatin1Char(':')))
        return PathFault::Absolute;
    QString below = QFileInfo(folder).canonicalFilePath();
    below += QLatin1String(below.endsWith(QLatin1Char('/')) ? "" : "/");
    QString path = folder;
    const QStringList parts = name.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (const QString& part : parts) {
        if (part == QLatin1String(".."))
            return PathFault::LeadsOut;
        path += QLatin1Char('/') + part;
        // A link that leads nowhere has no real path, and would be written through.
        const QFileInfo info(path);
        if (info.isSymLink() && !info.canonicalFilePath().startsWith(below))
            return PathFault::LeadsOut;
    }
    return PathFault::None;
}

}  // namespace Tamrix
