#pragma once

#include <QImage>

#include "base/export.h"

namespace Tamrix::Tesseract {

/// The image without the lines around and between widgets, which would be read as "|", "[" or "_":
/// straight lines of one colour, thin, and longer than a stroke of a letter of that thickness, or
/// shorter ones between two of these. What is beside a line takes its place. The result is in the
/// format RGB32 or ARGB32.
TAMRIX_EXPORT QImage withoutFrameLines(const QImage& image);

}  // namespace Tamrix::Tesseract
