#pragma once

#include <QString>

#include "base/export.h"
#include "base/outcome.h"

namespace Tamrix {

/// Keeps other processes from changing files in the same folder as long as it lives: those that
/// take the lock as well, which waits for them. Nothing of it stays in the folder. Without the
/// folder it is none.
class MapFileLock {
public:
    explicit MapFileLock(const QString& path);
    ~MapFileLock();
    MapFileLock(const MapFileLock&) = delete;
    MapFileLock& operator=(const MapFileLock&) = delete;

private:
    int m_descriptor;
};

/// The text of a file with an entry of whole lines behind its last one, and with the file's line
/// ends.
TAMRIX_EXPORT QByteArray withEntry(const QByteArray& content, const QString& entry);

/// Replaces a file, or makes it with the folders that it needs; all or nothing. A link stays one.
/// Fails with a sentence that names the file.
TAMRIX_EXPORT Outcome<> replaceFile(const QString& path, const QByteArray& content);

}  // namespace Tamrix
