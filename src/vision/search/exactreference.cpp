#include "vision/search/exactreference.h"

namespace Tamrix::Vision::BasicImageLookup {

namespace {

const QRgb* rowOf(const QImage& image, int y) {
    return reinterpret_cast<const QRgb*>(image.constScanLine(y));
}

}  // namespace

template <>
bool strictCompare<false>(unsigned needlePixel, unsigned haystackPixel) {
    return needlePixel == haystackPixel;
}

template <>
bool strictCompare<true>(unsigned needlePixel, unsigned haystackPixel) {
    const int alpha = qAlpha(needlePixel);
    const int inverse = 255 - alpha;
    const auto canBe = [&](int needleChannel, int haystackChannel) {
        const int premultiplied = (needleChannel * alpha + 127) / 255;
        return premultiplied <= haystackChannel && haystackChannel <= premultiplied + inverse;
    };
    return canBe(qRed(needlePixel), qRed(haystackPixel)) &&
           canBe(qGreen(needlePixel), qGreen(haystackPixel)) &&
           canBe(qBlue(needlePixel), qBlue(haystackPixel));
}

template <bool Transparency>
bool strictMatches(const QImage& image, Needle& needle, const QPoint& position) {
    // 1. Neighbouring positions tend to fail at the same pixel.
    const QPoint hint = needle.lastMismatch;
    if (!hint.isNull() && !strictCompare<Transparency>(
                              rowOf(needle.image, hint.y())[hint.x()],
                              rowOf(image, position.y() + hint.y())[position.x() + hint.x()]))
        return false;
    // 2. The whole needle.
    const int width = needle.image.width();
    const int height = needle.image.height();
    for (int y = 0; y < height; ++y) {
        const QRgb* needleRow = rowOf(needle.image, y);
        const QRgb* row = rowOf(image, position.y() + y) + position.x();
        for (int x = 0; x < width; ++x) {
            if (!strictCompare<Transparency>(needleRow[x], row[x])) {
                needle.lastMismatch = QPoint(x, y);
                return false;
            }
        }
    }
    // 3. No difference.
    return true;
}

template bool strictMatches<false>(const QImage&, Needle&, const QPoint&);
template bool strictMatches<true>(const QImage&, Needle&, const QPoint&);

void scanPlainly(const QImage& image, Needle& needle, const QRect& corners,
                 const TakeCorner& take) {
    const auto matches = needle.hasTranslucentPixels ? &strictMatches<true> : &strictMatches<false>;
    for (int y = corners.top(); y <= corners.bottom(); ++y) {
        for (int x = corners.left(); x <= corners.right(); ++x) {
            if (matches(image, needle, QPoint(x, y)) && !take(QPoint(x, y)))
                break;
        }
    }
}

}  // namespace Tamrix::Vision::BasicImageLookup
