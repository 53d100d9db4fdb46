#include "vision/search/rareanchors.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace Tamrix::Vision::BasicImageLookup {

namespace {

/// A value that the needle has, one place where it has it, and how often it is in the sample.
struct Candidate {
    QRgb pixel;
    Anchor anchor;
    int count = 0;
};

/// The candidates by their values.
class Candidates {
public:
    explicit Candidates(bool isTranslucent, std::size_t most)
        : m_isTranslucent(isTranslucent), m_most(most) {
        m_slots.fill(nothing);
    }

    bool isFull() const { return m_list.size() >= m_most; }

    void add(QRgb pixel, QPoint offset) {
        int slot = hash(pixel);
        for (; m_slots[slot] != nothing; slot = (slot + 1) % slotCount) {
            if (m_list[m_slots[slot]].pixel == pixel)
                return;
        }
        m_slots[slot] = static_cast<qint16>(m_list.size());
        m_list.push_back({pixel, {offset, boundsOf(pixel, m_isTranslucent)}});
    }

    void count(QRgb pixel) {
        if (m_isTranslucent) {
            for (Candidate& each : m_list)
                each.count += isWithin(pixel, each.anchor.bounds) ? 1 : 0;
            return;
        }
        for (int slot = hash(pixel); m_slots[slot] != nothing; slot = (slot + 1) % slotCount) {
            if (m_list[m_slots[slot]].pixel == pixel) {
                ++m_list[m_slots[slot]].count;
                return;
            }
        }
    }

    std::vector<Candidate>& list() { return m_list; }

private:
    static constexpr int slotBits = 10;
    static constexpr int slotCount = 1 << slotBits;
    static constexpr qint16 nothing = -1;

    static int hash(QRgb pixel) {
        return static_cast<int>((pixel * 2654435761U) >> (32 - slotBits));
    }
    static bool isWithin(QRgb pixel, PixelBounds bounds) {
        return basicPixelKernels().allWithin(&pixel, &bounds.low, &bounds.high, 1);
    }

    bool m_isTranslucent;
    std::size_t m_most;
    std::vector<Candidate> m_list;
    std::array<qint16, slotCount> m_slots;
};

/// The step at which about `most` of the pixels of a size are visited.
int sampleStep(const QSize& size, int most) {
    return std::max(
        1, static_cast<int>(std::ceil(std::sqrt(double(size.width()) * size.height() / most))));
}

const QRgb* rowOf(const QImage& image, int y) {
    return reinterpret_cast<const QRgb*>(image.constScanLine(y));
}

}  // namespace

PixelBounds boundsOf(QRgb needlePixel, bool isTranslucent) {
    if (!isTranslucent)
        return {needlePixel, needlePixel};
    // As strictCompare<true>() has it.
    const quint32 alpha = qAlpha(needlePixel);
    PixelBounds bounds = {0, 0xff000000};
    for (int shift = 0; shift < 24; shift += 8) {
        const quint32 low = ((needlePixel >> shift & 0xff) * alpha + 127) / 255;
        bounds.low |= low << shift;
        bounds.high |= (low + 255 - alpha) << shift;
    }
    return bounds;
}

Anchors rareAnchors(const QImage& haystack, const QRect& part, const Needle& needle) {
    constexpr int needlePixels = 4096;
    const bool isTranslucent = needle.hasTranslucentPixels;
    // Each sampled pixel is compared with all translucent candidates.
    const std::size_t mostCandidates = isTranslucent ? 32 : 256;
    const int haystackPixels = isTranslucent ? 2048 : 16384;

    Candidates candidates(isTranslucent, mostCandidates);
    const QSize size = needle.image.size();
    const int needleStep = sampleStep(size, needlePixels);
    for (int y = 0; y < size.height() && !candidates.isFull(); y += needleStep) {
        const QRgb* row = rowOf(needle.image, y);
        for (int x = 0; x < size.width() && !candidates.isFull(); x += needleStep) {
            // What is invisible is everywhere.
            if (qAlpha(row[x]) > 0 || !isTranslucent)
                candidates.add(row[x], QPoint(x, y));
        }
    }
    // Rows are read in whole anyway; so less of them, and more of each.
    constexpr int columnsForRows = 4;
    const int step = sampleStep(part.size(), haystackPixels);
    const int columnStep = std::max(1, step / columnsForRows);
    for (int y = part.top(); y <= part.bottom(); y += step * columnsForRows) {
        const QRgb* row = rowOf(haystack, y);
        for (int x = part.left(); x <= part.right(); x += columnStep)
            candidates.count(row[x]);
    }

    const QPoint last(size.width() - 1, size.height() - 1);
    const Anchor corner = {last, boundsOf(needle.image.pixel(last), isTranslucent)};
    std::vector<Candidate>& list = candidates.list();
    if (list.empty())
        return {corner, corner};
    std::stable_sort(list.begin(), list.end(),
                     [](const Candidate& a, const Candidate& b) { return a.count < b.count; });
    return {list.at(0).anchor, list.size() > 1 ? list.at(1).anchor : corner};
}

}  // namespace Tamrix::Vision::BasicImageLookup
