#include "vision/search/exactfast.h"

#include <cstring>
#include <limits>
#include <vector>

#include "vision/search/exactlinear.h"
#include "vision/search/pixelkernels.h"
#include "vision/search/rareanchors.h"

namespace Tamrix::Vision::BasicImageLookup {

namespace {

const QRgb* rowOf(const QImage& image, int y) {
    return reinterpret_cast<const QRgb*>(image.constScanLine(y));
}

/// Compares the whole needle with a place of the haystack.
class Verifier {
public:
    Verifier(const QImage& image, const Needle& needle)
        : m_image(image), m_needle(needle), m_width(needle.image.width()) {
        if (!needle.hasTranslucentPixels)
            return;
        const std::size_t pixels = std::size_t(m_width) * needle.image.height();
        m_low.reserve(pixels);
        m_high.reserve(pixels);
        for (int y = 0; y < needle.image.height(); ++y) {
            const QRgb* row = rowOf(needle.image, y);
            for (int x = 0; x < m_width; ++x) {
                const PixelBounds bounds = boundsOf(row[x], true);
                m_low.push_back(bounds.low);
                m_high.push_back(bounds.high);
            }
        }
    }

    bool matches(QPoint corner) {
        for (int y = 0; y < m_needle.image.height(); ++y) {
            m_work += m_width / pixelsAtOnce + rowOverhead;
            if (!matchesRow(y, rowOf(m_image, corner.y() + y) + corner.x()))
                return false;
        }
        return true;
    }

    /// What the comparisons cost so far; a unit is about that of eight pixels.
    qint64 work() const { return m_work; }

private:
    static constexpr int pixelsAtOnce = 8;
    static constexpr int rowOverhead = 4;

    bool matchesRow(int y, const QRgb* pixels) const {
        if (!m_needle.hasTranslucentPixels)
            return std::memcmp(rowOf(m_needle.image, y), pixels, sizeof(QRgb) * m_width) == 0;
        const std::size_t start = std::size_t(y) * m_width;
        return m_kernels.allWithin(pixels, m_low.data() + start, m_high.data() + start, m_width);
    }

    const PixelKernels& m_kernels = pixelKernels();
    const QImage& m_image;
    const Needle& m_needle;
    int m_width;
    std::vector<quint32> m_low;
    std::vector<quint32> m_high;
    qint64 m_work = 0;
};

/// Finds the columns of a row of corners at which both anchors are.
class AnchorSearch {
public:
    AnchorSearch(const QImage& image, const Needle& needle, const QRect& corners)
        : m_image(image),
          m_corners(corners),
          m_anchors(rareAnchors(
              image, QRect(corners.topLeft(), corners.size() + needle.image.size() - QSize(1, 1)),
              needle)),
          m_isTranslucent(needle.hasTranslucentPixels),
          m_found(corners.width()) {}

    /// Returns how many there are; found() has them, counted from the left of the corners.
    int searchRow(int y) {
        const Anchor& first = m_anchors.first;
        const Anchor& second = m_anchors.second;
        const auto rowAt = [&](QPoint offset) {
            return rowOf(m_image, y + offset.y()) + m_corners.left() + offset.x();
        };
        if (m_isTranslucent) {
            return m_kernels.findWithin(rowAt(first.offset), first.bounds, rowAt(second.offset),
                                        second.bounds, m_corners.width(), m_found.data());
        }
        return m_kernels.findEqual(rowAt(first.offset), first.bounds.low, rowAt(second.offset),
                                   second.bounds.low, m_corners.width(), m_found.data());
    }
    const std::vector<int>& found() const { return m_found; }

private:
    const PixelKernels& m_kernels = pixelKernels();
    const QImage& m_image;
    QRect m_corners;
    Anchors m_anchors;
    bool m_isTranslucent;
    std::vector<int> m_found;
};

}  // namespace

void scanFast(const QImage& image, const Needle& needle, const QRect& corners,
              const TakeCorner& take) {
    if (isUniform(needle.image)) {
        scanForUniform(image, needle, corners, take);
        return;
    }
    AnchorSearch search(image, needle, corners);
    Verifier verifier(image, needle);
    // Where many places look like the needle, comparing them costs more than the linear way.
    const qint64 mostWork = needle.hasTranslucentPixels
                                ? std::numeric_limits<qint64>::max()
                                : 2 * qint64(corners.width()) * corners.height();
    for (int y = corners.top(); y <= corners.bottom(); ++y) {
        const int count = search.searchRow(y);
        for (int i = 0; i < count; ++i) {
            const QPoint corner(corners.left() + search.found()[i], y);
            if (verifier.work() > mostWork) {
                const auto takeRest = [&](QPoint each) {
                    return (each.y() == y && each.x() < corner.x()) || take(each);
                };
                scanByRows(image, needle, QRect(QPoint(corners.left(), y), corners.bottomRight()),
                           takeRest);
                return;
            }
            if (verifier.matches(corner) && !take(corner))
                break;
        }
    }
}

}  // namespace Tamrix::Vision::BasicImageLookup
