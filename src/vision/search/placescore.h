#pragma once

#include <QImage>
#include <QList>
#include <QRect>

#include "base/export.h"

namespace Tamrix::Vision {

/// How like the needles a place is.
struct PlaceScore {
    /// In percent, the unit of thresholds; -1 when no needle can have the size of the place.
    double score = -1;
    /// Which needle is most like it; -1 for none.
    int needle = -1;
};

/// The score of a place that a search has found, each needle brought to its size as a search does
/// it. The place must lie within the haystack; throws as correlationScore() does.
TAMRIX_EXPORT PlaceScore scorePlace(const QImage& haystack, const QList<QImage>& needles,
                                    const QRect& place);

}  // namespace Tamrix::Vision
