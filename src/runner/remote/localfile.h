#pragma once

#include <sys/stat.h>

#include <QString>

#include "base/outcome.h"
#include "runner/remote/system.h"

namespace Tamrix {

/// An open file of this machine; closed with the object.
class LocalFile {
public:
    LocalFile() = default;
    ~LocalFile();
    LocalFile(LocalFile&& other) noexcept;
    LocalFile& operator=(LocalFile&& other) = delete;

    /// Opens a file, not a folder or device, for reading.
    static Outcome<LocalFile> openForReading(const QString& path);

    int descriptor() const { return m_descriptor; }
    PathFacts facts() const;

private:
    friend class NewLocalFile;

    int m_descriptor = -1;
};

/// A file that takes its name once it is whole: before that, it stands under another one beside it,
/// and goes with the object. A file that has the name already is replaced.
class NewLocalFile {
public:
    NewLocalFile() = default;
    ~NewLocalFile();
    NewLocalFile(NewLocalFile&& other) noexcept;
    NewLocalFile& operator=(NewLocalFile&& other) = delete;

    static Outcome<NewLocalFile> create(const QString& path);

    int descriptor() const { return m_file.m_descriptor; }
    /// Gives the file the rights and the time of modification of another one.
    void takeOver(const PathFacts& facts);
    /// Fails when the file can't take its name.
    Outcome<> finish();

private:
    QString m_path;
    /// Where the name leads to.
    QString m_target;
    QString m_part;
    LocalFile m_file;
    bool m_hasTime = false;
    timespec m_modified{};
};

/// What the system tells, of a link about the link itself.
PathFacts factsOf(const struct stat& status);

}  // namespace Tamrix
