#include "vision/search/correlationscore.h"

#include <QRect>
#include <stdexcept>

#include "vision/search/fastcorrelation/searchneedle.h"
#include "vision/search/fastcorrelation/searchpicture.h"
#include "vision/search/imagelookup.h"
#include "vision/search/parallel.h"

namespace Tamrix::Vision {

double correlationScore(const QImage& haystack, const QImage& needle, const QPoint& position) {
    const QImage image = searchable(haystack);
    const QRect place(position, needle.size());
    if (needle.isNull() || !image.rect().contains(place))
        throw std::runtime_error("The needle does not lie within the haystack");
    const SearchNeedle searched(searchable(needle));
    if (searched.visiblePixels() == 0)
        throw TooMuchTransparency(needle);
    const SearchPicture picture(image, place);
    return exactScore(picture, searched, 0, 0) * 100;
}

}  // namespace Tamrix::Vision
