#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "vision/search/basicimagelookup.h"

namespace Tamrix::Vision::BasicImageLookup {

Resize::Resize(const QImage& needleImage) : image(searchable(needleImage)) {
    constexpr int leastVisibleAlpha = 128;
    std::array<double, 4> sums = {};
    for (int y = 0; y < image.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = row[x];
            const int alpha = qAlpha(pixel);
            if (alpha > 0)
                hasVisiblePixels = true;
            if (alpha < 255)
                hasTranslucentPixels = true;
            if (alpha < leastVisibleAlpha) {
                hasHoles = true;
                continue;
            }
            // Shifted by one, so that black has weight.
            const std::array<int, 3> channels = {qBlue(pixel) + 1, qGreen(pixel) + 1,
                                                 qRed(pixel) + 1};
            for (std::size_t i = 0; i < channels.size(); ++i)
                sums[i + 1] += channels[i] * channels[i];
        }
    }
    for (std::size_t i = 0; i < sums.size(); ++i)
        channelNorms[i] = static_cast<float>(std::sqrt(sums[i]));
}

Needle::~Needle() {
    qDeleteAll(resizes);
}

QList<Resize*> Needle::getResizes(double minFactor, double maxFactor) {
    // 1. A range.
    if (minFactor > maxFactor)
        throw std::runtime_error(
            "minScale parameter must be lower or equal to the maxScale parameter");
    // 2. and 3. Its ends, such that steps of 4 meet the needle's own width. Nothing is wider than
    // the largest image or narrower than a pixel.
    constexpr double widest = 32767;
    const int width = image.width();
    const auto rounded = [&](double factor) {
        const int end = static_cast<int>(std::min(std::max(factor * width, -1.0), widest));
        return end / 4 * 4 + width % 4;
    };
    // 4. From the widest down.
    QList<Resize*> list;
    for (int each = rounded(maxFactor); each >= std::max(1, rounded(minFactor)); each -= 4) {
        if (each == width) {
            list.append(this);
            continue;
        }
        Resize*& resize = resizes[each];
        if (!resize)
            resize = new Resize(image.scaledToWidth(each, Qt::SmoothTransformation));
        list.append(resize);
    }
    return list;
}

BasicCache::BasicCache(const QList<QImage>& images, bool keepNothing) : oneShot(keepNothing) {
    for (const QImage& image : images)
        needles.append(new Needle(image));
}

BasicCache::~BasicCache() {
    qDeleteAll(needles);
}

}  // namespace Tamrix::Vision::BasicImageLookup
