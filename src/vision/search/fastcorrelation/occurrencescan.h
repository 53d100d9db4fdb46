#pragma once

#include <QList>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <array>
#include <cstdint>
#include <functional>
#include <vector>

#include "vision/search/fastcorrelation/positionbitmap.h"

namespace Tamrix::Vision {

/// Walks accepted positions in the order of text and takes each that is no neighbour of one taken
/// before. The time does not depend on how many are taken.
class OccurrenceScan {
public:
    /// `origin` is the place of the first position, `isAllowed` (if not null) tells whether an
    /// occurrence may be there. The scan ends when more than `limit` are taken.
    OccurrenceScan(QPoint origin, QSize positions, QSize needle, int limit,
                   std::function<bool(const QRect&)> isAllowed);

    /// Takes no neighbours of this place either, which itself does not count.
    void avoid(QPoint place);

    /// Walks the rows up to `rows`, in the last one only the first `columns` positions. Returns
    /// false when the scan has ended.
    bool advance(const PositionBitmap& accepted, int rows, int columns);
    bool advance(const PositionBitmap& accepted, int rows) {
        return advance(accepted, rows, m_positions.width());
    }

    const QList<QRect>& occurrences() const { return m_occurrences; }

private:
    using Row = std::vector<std::uint64_t>;

    Row& takenNear(int y) { return m_taken[y % m_taken.size()]; }
    void blockAround(int x, int y, int row);
    void scanRow(const PositionBitmap& accepted, int y, int columns);

    QPoint m_origin;
    QSize m_positions;
    QSize m_needle;
    int m_limit;
    std::function<bool(const QRect&)> m_isAllowed;
    QPoint m_avoided{-1, -1};
    int m_row = 0;
    /// For the current row and those that can have neighbours of its occurrences: which positions
    /// are such neighbours.
    std::array<Row, 5> m_taken;
    QList<QRect> m_occurrences;
};

}  // namespace Tamrix::Vision
