#include "vision/search/placescore.h"

#include "vision/search/correlationscore.h"

namespace Tamrix::Vision {

PlaceScore scorePlace(const QImage& haystack, const QList<QImage>& needles, const QRect& place) {
    PlaceScore best;
    for (int index = 0; index < needles.size(); ++index) {
        const QImage& needle = needles.at(index);
        const QImage resized = needle.width() == place.width()
                                   ? needle
                                   : needle.scaledToWidth(place.width(), Qt::SmoothTransformation);
        if (resized.size() != place.size())
            continue;
        const double score = correlationScore(haystack, resized, place.topLeft());
        if (score > best.score)
            best = {score, index};
    }
    return best;
}

}  // namespace Tamrix::Vision
