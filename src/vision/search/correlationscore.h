#pragma once

#include <QImage>
#include <QPoint>

#include "base/export.h"

namespace Tamrix::Vision {

/// How like the needle the place of its size in the haystack is, in percent, the unit of
/// thresholds: the lowest of the normalised correlations of blue, green and red, computed exactly.
/// Throws a std::runtime_error when the needle does not lie within the haystack there, and
/// TooMuchTransparency when it has no visible pixel.
TAMRIX_EXPORT double correlationScore(const QImage& haystack, const QImage& needle,
                                      const QPoint& position);

}  // namespace Tamrix::Vision
