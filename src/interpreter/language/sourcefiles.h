#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include "base/export.h"
#include "base/outcome.h"

namespace Tamrix {

/// The text of a file with code. The reason why it can't be had begins with the place: "FILE: " or,
/// of one that is not encoded in UTF-8, "FILE:LINE: ".
TAMRIX_EXPORT Outcome<QString> readSource(const QString& path);

/// The files behind a language's code, by the names that the runtime has for them: their paths as
/// results show them, and which of them are scripts. Resolved once for each name. Script thread
/// only.
class TAMRIX_EXPORT SourceFiles {
public:
    /// `isFile` tells names of files from what the runtime writes for code that is in none; by
    /// default all but those in brackets.
    explicit SourceFiles(bool (*isFile)(const QByteArray& name) = isUnbracketed)
        : m_isFile(isFile) {}

    /// A folder with the language's own or installed modules, which are no scripts.
    void addLibrary(const QString& folder);
    /// A name that stands for a script whose path can't be written as one.
    void addAlias(const QByteArray& name, const QString& path);

    /// The path with links resolved; the null string for code that is in no file, such as a text
    /// that was evaluated. A null name is that of no file.
    QString path(const char* name) { return file(name).path; }
    /// Whether it is a file, and none of a library.
    bool isScript(const char* name) { return file(name).isScript; }

    static bool isUnbracketed(const QByteArray& name);

private:
    struct File {
        QString path;
        bool isScript = false;
    };
    const File& file(const char* name);

    bool (*m_isFile)(const QByteArray& name);
    QStringList m_libraries;
    QHash<QByteArray, File> m_files;
};

}  // namespace Tamrix
