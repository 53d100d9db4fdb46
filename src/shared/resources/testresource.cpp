#include "shared/resources/testresource.h"

#include <QDir>
#include <QFile>

#include "base/environment.h"
#include "base/standardpath.h"
#include "shared/settings/settings.h"

namespace Tamrix {

namespace {

constexpr const char* imageSuffix = ".png";

/// The folder of a file, cleaned; a folder stands for itself. Empty for an empty path.
QString directoryOf(const QString& path) {
    if (path.isEmpty())
        return {};
    const QFileInfo info(path);
    return QDir::cleanPath(info.isDir() ? info.absoluteFilePath() : info.absolutePath());
}

/// What stands in front of a file's name in each place where files of a kind are looked for, in
/// order.
QStringList searchPlaces(const QString& fileType) {
    // With the variable unset the first and the third place lie in the root folder.
    const QString suite = Environment::getVariable(QStringLiteral("TAMRIX_SUITE_DIR"));
    const QString shared = QStringLiteral("shared/") + fileType + '/';
    QStringList places = {
        suite + '/',
        fileType + '/',
        suite + '/' + shared,
        QStringLiteral("../") + shared,
        QStringLiteral("../../") + shared,
        shared,
    };
    if (fileType == QLatin1String("scripts")) {
        places += {QString(), scriptModulePath(QString())};
        for (const QString& directory : globalScriptDirectories() + environmentScriptDirectories())
            places.append(directory + '/');
    }
    return places;
}

}  // namespace

QString TestResource::directoryName(Type type) {
    switch (type) {
        case SearchImage:
            return QStringLiteral("searchImages");
        case VerificationPoint:
            return QStringLiteral("verificationPoints");
        case Profile:
            return QStringLiteral("profiles");
    }
    return {};
}

bool TestResource::isValidResource(QFileInfo& info, Type type) {
    switch (type) {
        case SearchImage:
            if (info.isDir())
                return true;
            if (info.isFile() &&
                info.absoluteFilePath().toLower().endsWith(QLatin1String(imageSuffix)))
                return true;
            info.setFile(info.filePath() + QLatin1String(imageSuffix));
            return info.isFile();
        case VerificationPoint:
        case Profile:
            return info.isFile();
    }
    return false;
}

QString TestResource::locate(Type type, const QString& name, const QStringList& searchPaths) {
    if (name.isEmpty())
        return {};

    QFileInfo info(name);
    if (info.isAbsolute())
        return isValidResource(info, type) ? info.absoluteFilePath() : QString();

    for (const QString& path : searchPaths) {
        info.setFile(path + QDir::separator() + directoryName(type) + QDir::separator() + name);
        if (isValidResource(info, type))
            return info.absoluteFilePath();
    }
    return {};
}

QString TestResource::locate(Type type, const QString& name, const QString& testCasePath,
                             const QString& currentFile) {
    return locate(type, name, getSearchPaths(testCasePath, currentFile));
}

QStringList TestResource::getSearchPaths(const QString& testCasePath, const QString& currentFile) {
    QStringList paths;

    // The test case's folder, and the "shared" folder beside it.
    const QString testCaseDirectory = directoryOf(testCasePath);
    if (!testCaseDirectory.isEmpty()) {
        paths.append(testCaseDirectory);
        QDir shared(testCaseDirectory);
        if (shared.cdUp() && shared.cd(QStringLiteral("shared")))
            paths.append(shared.absolutePath());
    }

    // The folder of the file that is running, and the "shared" folder that it lies in.
    const QString currentDirectory = directoryOf(currentFile);
    if (!currentDirectory.isEmpty()) {
        paths.append(currentDirectory);
        QDir shared(currentDirectory);
        bool more = true;
        while (more && shared.dirName() != QLatin1String("shared"))
            more = shared.cdUp();
        if (more)
            paths.append(shared.absolutePath());
    }
    return paths;
}

QFileInfoList TestResource::listCollection(Type, const QString& path) {
    const QFileInfo info(path);
    if (info.isDir())
        return QDir(path).entryInfoList({QStringLiteral("*.png")}, QDir::Files);
    return info.isFile() ? QFileInfoList{info} : QFileInfoList();
}

QFileInfoList TestResource::locateCollection(Type type, const QString& name,
                                             const QString& testCasePath,
                                             const QString& currentFile) {
    const QString path = locate(type, name, testCasePath, currentFile);
    return path.isEmpty() ? QFileInfoList() : listCollection(type, path);
}

QString findTestSuiteFile(const QString& name, const QString& fileType) {
    for (const QString& place : searchPlaces(fileType)) {
        if (QFile::exists(place + name))
            return place + name;
    }
    return {};
}

QStringList scriptSearchFolders() {
    QStringList folders;
    for (const QString& place : searchPlaces(QStringLiteral("scripts"))) {
        // Without a suite the first place is the root folder, which holds no modules.
        const QFileInfo folder(QDir::cleanPath(QDir::current().absoluteFilePath(place)));
        if (folder.isDir() && !folder.isRoot())
            folders.append(folder.filePath());
    }
    folders.removeDuplicates();
    return folders;
}

QString scriptModulePath(const QString& name) {
    return StandardPath::prefix() + QStringLiteral("/scriptmodules/") + name;
}

QStringList environmentScriptDirectories() {
    return Environment::getVariable(QStringLiteral("TAMRIX_SCRIPT_DIR"))
        .split(':', Qt::SkipEmptyParts);
}

QStringList globalScriptDirectories() {
    return UserSettings(UserSettingsType::Paths)
        .readListEntry(Settings::defaultGroup(), QStringLiteral("GlobalScriptDirs"));
}

}  // namespace Tamrix
