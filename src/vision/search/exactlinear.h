#pragma once

#include <QImage>
#include <QRect>

#include "vision/search/basicimagelookup.h"
#include "vision/search/exactreference.h"

// Ways to look for a needle in a time that depends on the haystack's size alone, however often the
// needle is there or nearly there. Arguments are those of scanPlainly().
namespace Tamrix::Vision::BasicImageLookup {

/// Whether all pixels of the image are equal.
bool isUniform(const QImage& image);

/// For a needle whose pixels are all equal, translucent or not.
void scanForUniform(const QImage& image, const Needle& needle, const QRect& corners,
                    const TakeCorner& take);

/// For a needle without translucent pixels.
void scanByRows(const QImage& image, const Needle& needle, const QRect& corners,
                const TakeCorner& take);

}  // namespace Tamrix::Vision::BasicImageLookup
