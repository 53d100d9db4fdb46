#pragma once

#include <QFileInfo>
#include <QImage>
#include <QString>

#include "base/export.h"
#include "base/outcome.h"

namespace Tamrix {

// Pictures in files, and the picture of the desktop.

/// Writes a picture in a format that Qt can write, "PNG". The file is replaced only once the new
/// one is whole. The text of the failure is the writer's.
Outcome<> writeImageFile(const QImage& image, const QString& path, const QByteArray& format);

/// Asks the current application for a picture of its desktop and writes it. Returns an error text,
/// empty on success.
TAMRIX_EXPORT QString saveScreenshotFromCurrentAutContext(const QFileInfo& file,
                                                          const QString& format);

}  // namespace Tamrix
