#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

#include "base/export.h"
#include "base/outcome.h"

namespace Tamrix::Vision {

/// Reads a picture whatever its suffix says. The failure names the file.
TAMRIX_EXPORT Outcome<QImage> readPicture(const QString& file);

/// Writes a picture in a format that Qt can write, "PNG". The file is replaced only once the new
/// one is whole. The text of the failure is the system's or the writer's.
TAMRIX_EXPORT Outcome<> writePicture(const QImage& image, const QString& file,
                                     const QByteArray& format);

}  // namespace Tamrix::Vision
