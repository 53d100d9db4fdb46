#pragma once

#include <QString>

#include "base/outcome.h"

namespace Tamrix {

/// A folder of a run below the user's runtime folder, or that for temporary files, which only this
/// user can enter. It carries the run's name and a lock that this process holds as long as it
/// lives, so that a later run sees what was left behind.
class PrivateFolder {
public:
    PrivateFolder() = default;
    /// Removes the folder with all that is in it.
    ~PrivateFolder();
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;

    /// Makes the folder, unless it is there.
    Outcome<> make(const QString& runId);
    /// Empty before make().
    QString path() const { return m_path; }

private:
    QString m_path;
    int m_lock = -1;
};

/// Cleans up behind runs that could not, since they and their watches were killed: ends the
/// processes with their marks and removes their folders.
void clearLeftFolders();

}  // namespace Tamrix
