#pragma once

#include <QString>

#include "base/export.h"

namespace Tamrix {

/// Folders of the installation.
class TAMRIX_EXPORT StandardPath {
public:
    /// The installation's folder as TAMRIX_PREFIX names it; empty when the variable is unset.
    static QString prefix();
};

/// The path with symbolic links and ".." resolved; unchanged when the system can't resolve it,
/// for example because nothing exists there.
TAMRIX_EXPORT QString realPath(const QString& path);

}  // namespace Tamrix
