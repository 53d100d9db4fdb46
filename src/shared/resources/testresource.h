#pragma once

#include <QFileInfo>
#include <QFileInfoList>
#include <QString>
#include <QStringList>

#include "base/export.h"

namespace Tamrix {

/// Finds files of a test suite that scripts name by short names.
class TAMRIX_EXPORT TestResource {
public:
    enum Type { SearchImage = 0, VerificationPoint = 1, Profile = 2 };

    /// The folder of a kind of resource, an empty string for other values.
    static QString directoryName(Type type);

    /// Whether `info` is a resource of the kind. For a search image without its suffix, `info` is
    /// set to the path with ".png" behind it.
    static bool isValidResource(QFileInfo& info, Type type);

    /// The absolute path of the first valid resource in the kind's folder of a search path; an
    /// absolute name is taken as it is. Empty when there is none.
    static QString locate(Type type, const QString& name, const QStringList& searchPaths);
    /// The same along getSearchPaths().
    static QString locate(Type type, const QString& name, const QString& testCasePath,
                          const QString& currentFile);

    /// Where resources of a test case are looked for: the test case's folder, the suite's "shared"
    /// folder, and the "shared" folder above the file that is running.
    static QStringList getSearchPaths(const QString& testCasePath, const QString& currentFile);

    /// The pictures of a folder, or the one file.
    static QFileInfoList listCollection(Type type, const QString& path);
    static QFileInfoList locateCollection(Type type, const QString& name,
                                          const QString& testCasePath, const QString& currentFile);
};

/// The path of a suite's file, or an empty string. `fileType` is "scripts" or "testdata".
TAMRIX_EXPORT QString findTestSuiteFile(const QString& name, const QString& fileType);

/// The folders in which findTestSuiteFile() looks for scripts, absolute and in its order, as far as
/// they are there: a language's import looks in them, too, so that both find the same file.
TAMRIX_EXPORT QStringList scriptSearchFolders();

/// The path of a script module of the installation.
TAMRIX_EXPORT QString scriptModulePath(const QString& name);

/// The parts of TAMRIX_SCRIPT_DIR, which are separated by ":"; empty ones are dropped.
TAMRIX_EXPORT QStringList environmentScriptDirectories();

/// The list "GlobalScriptDirs" of the user's settings.
TAMRIX_EXPORT QStringList globalScriptDirectories();

}  // namespace Tamrix
