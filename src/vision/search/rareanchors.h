#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>

#include "vision/search/basicimagelookup.h"
#include "vision/search/pixelkernels.h"

namespace Tamrix::Vision::BasicImageLookup {

/// What a haystack pixel can be where the needle has this one; a single value for an opaque pixel
/// of a needle without translucent ones.
PixelBounds boundsOf(QRgb needlePixel, bool isTranslucent);

/// A pixel of the needle by which places for the needle are found.
struct Anchor {
    QPoint offset;
    PixelBounds bounds;
};

/// Two anchors that few places satisfy, the rarer one first.
struct Anchors {
    Anchor first;
    Anchor second;
};

/// Picks the needle's pixels that are rarest in a sample of this part of the haystack.
Anchors rareAnchors(const QImage& haystack, const QRect& part, const Needle& needle);

}  // namespace Tamrix::Vision::BasicImageLookup
