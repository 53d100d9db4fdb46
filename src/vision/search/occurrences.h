#pragma once

#include <QList>
#include <QPair>
#include <QPoint>
#include <QRect>
#include <cstdint>
#include <vector>

#include "base/export.h"

namespace Tamrix::Vision {

/// Corners that are less than this far apart, by the sum of both coordinates, are one occurrence.
inline constexpr int occurrenceDistance = 5;

/// Whether `a` does not come behind `b` in the order of text: by the top edge, then by the left.
TAMRIX_EXPORT bool isLowerOccurrence(const QRect& a, const QRect& b);

/// Whether the list has an occurrence so near to `rect` that both are one: |dx| + |dy| of their
/// top-left corners is below occurrenceDistance, whatever their sizes.
TAMRIX_EXPORT bool hasOccurrence(const QList<QRect>& list, const QRect& rect);
/// The same where a score stands with each.
TAMRIX_EXPORT bool hasOccurrence(const QList<QPair<double, QRect>>& list, const QRect& rect);

/// Both ordered lists as one ordered list. Nothing is dropped, not even equal rectangles; of equal
/// places those of `a` come first.
TAMRIX_EXPORT QList<QRect> mergeOccurrenceLists(const QList<QRect>& a, const QList<QRect>& b);

/// Answers as hasOccurrence() does, in a time that does not grow with the number of occurrences:
/// a bit for each place.
class TAMRIX_EXPORT OccurrenceMap {
public:
    /// For occurrences whose top-left corner lies in this rectangle.
    explicit OccurrenceMap(const QRect& corners);

    /// Takes the corner of an occurrence, which must lie in the rectangle.
    void insert(QPoint corner);
    /// Whether an occurrence was taken that is one with an occurrence at this place.
    bool hasNear(QPoint corner) const;
    /// Forgets all occurrences.
    void clear();

private:
    QRect m_corners;
    int m_wordsPerRow;
    std::vector<std::uint64_t> m_bits;
    std::vector<bool> m_rowUsed;
};

}  // namespace Tamrix::Vision
