#pragma once

#include <QImage>
#include <QRect>
#include <Qt>

#include "base/export.h"

namespace Tamrix::Vision {

/// Draws a frame around the pixels of a place, so that these can be seen: coloured within white,
/// which stands out everywhere. The image must not have a colour table.
TAMRIX_EXPORT void drawFrame(QImage* image, const QRect& place, Qt::GlobalColor colour = Qt::red);

}  // namespace Tamrix::Vision
