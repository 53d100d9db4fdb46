#include "vision/search/occurrences.h"

#include <algorithm>
#include <cstdlib>

namespace Tamrix::Vision {

namespace {

constexpr int bitsPerWord = 64;

bool isSameOccurrence(const QRect& a, const QRect& b) {
    return std::abs(a.left() - b.left()) + std::abs(a.top() - b.top()) < occurrenceDistance;
}

}  // namespace

bool isLowerOccurrence(const QRect& a, const QRect& b) {
    if (a.top() != b.top())
        return a.top() < b.top();
    return a.left() <= b.left();
}

bool hasOccurrence(const QList<QRect>& list, const QRect& rect) {
    return std::any_of(list.begin(), list.end(),
                       [&](const QRect& each) { return isSameOccurrence(each, rect); });
}

bool hasOccurrence(const QList<QPair<double, QRect>>& list, const QRect& rect) {
    return std::any_of(list.begin(), list.end(), [&](const QPair<double, QRect>& each) {
        return isSameOccurrence(each.second, rect);
    });
}

QList<QRect> mergeOccurrenceLists(const QList<QRect>& a, const QList<QRect>& b) {
    QList<QRect> merged;
    merged.reserve(a.size() + b.size());
    auto left = a.begin();
    auto right = b.begin();
    while (left != a.end() && right != b.end())
        merged.append(isLowerOccurrence(*left, *right) ? *left++ : *right++);
    std::copy(left, a.end(), std::back_inserter(merged));
    std::copy(right, b.end(), std::back_inserter(merged));
    return merged;
}

OccurrenceMap::OccurrenceMap(const QRect& corners)
    : m_corners(corners),
      m_wordsPerRow((corners.width() + bitsPerWord - 1) / bitsPerWord),
      m_bits(std::size_t(m_wordsPerRow) * corners.height()),
      m_rowUsed(corners.height()) {}

void OccurrenceMap::insert(QPoint corner) {
    const int x = corner.x() - m_corners.left();
    const int y = corner.y() - m_corners.top();
    m_bits[std::size_t(y) * m_wordsPerRow + x / bitsPerWord] |= std::uint64_t(1)
                                                                << (x % bitsPerWord);
    m_rowUsed[y] = true;
}

bool OccurrenceMap::hasNear(QPoint corner) const {
    const int x = corner.x() - m_corners.left();
    const int y = corner.y() - m_corners.top();
    constexpr int reach = occurrenceDistance - 1;
    const int lastRow = std::min(y + reach, m_corners.height() - 1);
    for (int row = std::max(y - reach, 0); row <= lastRow; ++row) {
        if (!m_rowUsed[row])
            continue;
        const int rowReach = reach - std::abs(row - y);
        const int last = std::min(x + rowReach, m_corners.width() - 1);
        const std::uint64_t* words = m_bits.data() + std::size_t(row) * m_wordsPerRow;
        for (int column = std::max(x - rowReach, 0); column <= last; ++column) {
            if (words[column / bitsPerWord] >> (column % bitsPerWord) & 1)
                return true;
        }
    }
    return false;
}

void OccurrenceMap::clear() {
    std::fill(m_bits.begin(), m_bits.end(), 0);
    std::fill(m_rowUsed.begin(), m_rowUsed.end(), false);
}

}  // namespace Tamrix::Vision
