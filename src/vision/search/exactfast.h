#pragma once

#include <QImage>
#include <QRect>

#include "vision/search/basicimagelookup.h"
#include "vision/search/exactreference.h"

namespace Tamrix::Vision::BasicImageLookup {

/// Takes the corners that scanPlainly() takes, by looking for the needle's rarest pixels. The time
/// is that of a few readings of the haystack where the needle has no translucent pixels, however
/// often it is there or nearly there; the same holds for a translucent needle of one colour.
void scanFast(const QImage& image, const Needle& needle, const QRect& corners,
              const TakeCorner& take);

}  // namespace Tamrix::Vision::BasicImageLookup
