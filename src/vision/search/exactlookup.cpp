#include <algorithm>

#include "vision/search/basicimagelookup.h"
#include "vision/search/exactfast.h"
#include "vision/search/exactreference.h"
#include "vision/search/parallel.h"

namespace Tamrix::Vision::BasicImageLookup {

namespace {

bool isInside(const QImage& image, const QRect& rect) {
    return image.rect().contains(rect);
}

/// The corners at which the needle lies within the box and within the image; empty when there is
/// none.
QRect cornersWithin(const QRect& box, const QImage& image, const QSize& needle) {
    const QRect inside = box & image.rect();
    return {inside.topLeft(),
            QPoint(inside.right() - needle.width() + 1, inside.bottom() - needle.height() + 1)};
}

void scan(const QImage& image, Needle& needle, const QRect& corners, const TakeCorner& take) {
    if (corners.isEmpty() || needle.image.isNull())
        return;
    if (searchMethod() == SearchMethod::Plain)
        scanPlainly(image, needle, corners, take);
    else
        scanFast(image, needle, corners, take);
}

}  // namespace

QList<QRect> strictAllOccurrences(const QImage& image, const SearchRegion& region, Needle& needle,
                                  int limit) {
    const QSize size = needle.image.size();
    // 1. A needle larger than the region is nowhere.
    const QRect box = region.boundingBox();
    if (qint64(box.right()) - size.width() + 1 < box.left() ||
        qint64(box.bottom()) - size.height() + 1 < box.top())
        return {};
    // 2. What can't be seen would be everywhere.
    if (!needle.hasVisiblePixels)
        throw TooMuchTransparency(needle.image);
    // 3. and 4. A full list ends its row, and takes one more of each later row.
    QList<QRect> occurrences;
    scan(image, needle, cornersWithin(box, image, size), [&](QPoint corner) {
        const QRect rect(corner, size);
        if (!region.contains(rect))
            return true;
        occurrences.append(rect);
        return occurrences.size() < limit;
    });
    return occurrences;
}

QPair<int, bool> strictOccurrenceAt(const QImage& image, const SearchRegion& region, Needle& needle,
                                    const QPoint& position) {
    const QSize size = needle.image.size();
    const QRect box = region.boundingBox();
    // 1. Outside.
    if (position.y() < box.top() || qint64(box.right()) - size.width() + 1 < box.left())
        return {0, false};
    // 2. The occurrences of all rows above, then those to the left.
    int count = 0;
    QRect corners = cornersWithin(box, image, size);
    corners.setBottom(std::min(corners.bottom(), position.y()));
    scan(image, needle, corners, [&](QPoint corner) {
        if (corner.y() == position.y() && corner.x() >= position.x())
            return false;
        if (region.contains(QRect(corner, size)))
            ++count;
        return true;
    });
    // 3. The place itself, wherever in the box.
    if (needle.image.isNull() || !isInside(image, QRect(position, size)))
        return {count, false};
    return {count, needle.hasTranslucentPixels ? strictMatches<true>(image, needle, position)
                                               : strictMatches<false>(image, needle, position)};
}

}  // namespace Tamrix::Vision::BasicImageLookup
