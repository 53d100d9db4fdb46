#pragma once

#include <QString>

#include "base/outcome.h"

namespace Tamrix {

/// Why something can't be done with a path, in the same words for all systems.
enum class FileProblem {
    NotThere,
    ExistsAlready,
    NoPermission,
    NoDirectory,  ///< it, or what stands in front of its last "/", is no folder
    IsDirectory,
    NoFile,        ///< neither a file nor a folder, as a device
    LeadsNowhere,  ///< a link
    NotEmpty,
    NoSpace,
    NoName,  ///< an empty path, or one that no system takes
};

/// "'/a/b' does not exist", with the kind that callers look at.
Failure fileFailure(FileProblem problem, const QString& path);
/// Of an errno; those that are none of the problems are told in the system's words.
Failure fileFailure(int errorNumber, const QString& path);

/// Why something can't be made under a path: what is not there is its folder.
Failure creationFailure(const Failure& failure, const QString& path);

/// Fails for a path that is empty or holds a NUL.
Outcome<> checkPath(const QString& path);

/// A path beside that one, under which a file is written before it is whole: hidden, and new for
/// each call.
QString partPath(const QString& path);

}  // namespace Tamrix
