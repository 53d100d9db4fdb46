#pragma once

#include <QFileInfo>
#include <QString>

#include "base/export.h"

namespace Tamrix {

// Pictures in files, and the picture of the desktop.

/// Asks the current application for a picture of its desktop and writes it. Returns an error text,
/// empty on success.
TAMRIX_EXPORT QString saveScreenshotFromCurrentAutContext(const QFileInfo& file,
                                                          const QString& format);

}  // namespace Tamrix
