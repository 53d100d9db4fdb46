#pragma once

#include <QImage>
#include <QRect>
#include <functional>

#include "vision/search/basicimagelookup.h"

namespace Tamrix::Vision::BasicImageLookup {

/// Takes the corner of an occurrence; false when nothing more is wanted of its row.
using TakeCorner = std::function<bool(QPoint corner)>;

/// Looks for the needle at each of the corners, in the order of text, by strictMatches(). At all of
/// them the needle must lie within the image.
void scanPlainly(const QImage& image, Needle& needle, const QRect& corners, const TakeCorner& take);

}  // namespace Tamrix::Vision::BasicImageLookup
