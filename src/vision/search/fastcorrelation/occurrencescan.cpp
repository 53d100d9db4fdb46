#include "vision/search/fastcorrelation/occurrencescan.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "vision/search/occurrences.h"

namespace Tamrix::Vision {

static_assert(occurrenceDistance == 5, "as many rows as can have neighbours");

OccurrenceScan::OccurrenceScan(QPoint origin, QSize positions, QSize needle, int limit,
                               std::function<bool(const QRect&)> isAllowed)
    : m_origin(origin),
      m_positions(positions),
      m_needle(needle),
      m_limit(limit),
      m_isAllowed(std::move(isAllowed)) {
    for (Row& row : m_taken)
        row.resize((positions.width() + 63) / 64);
}

void OccurrenceScan::avoid(QPoint place) {
    m_avoided = place - m_origin;
}

bool OccurrenceScan::advance(const PositionBitmap& accepted, int rows, int columns) {
    for (; m_row < rows; ++m_row) {
        if (m_avoided.y() >= 0)
            blockAround(m_avoided.x(), m_avoided.y(), m_row);
        scanRow(accepted, m_row, m_row + 1 < rows ? m_positions.width() : columns);
        if (m_occurrences.size() > m_limit)
            return false;
        Row& done = takenNear(m_row);
        std::fill(done.begin(), done.end(), 0);
    }
    return true;
}

// Marks in `row` the neighbours of an occurrence at (x, y).
void OccurrenceScan::blockAround(int x, int y, int row) {
    const int reach = occurrenceDistance - 1 - std::abs(row - y);
    const int last = std::min(x + reach, m_positions.width() - 1);
    for (int column = std::max(x - reach, 0); column <= last; ++column)
        takenNear(row)[column / 64] |= std::uint64_t(1) << (column % 64);
}

void OccurrenceScan::scanRow(const PositionBitmap& accepted, int y, int columns) {
    const std::uint64_t* const words = accepted.words(y);
    const Row& taken = takenNear(y);
    for (int word = 0; word * 64 < columns; ++word) {
        std::uint64_t open = words[word] & ~taken[word];
        if (const int rest = columns - word * 64; rest < 64)
            open &= (std::uint64_t(1) << rest) - 1;
        while (open) {
            const int x = word * 64 + __builtin_ctzll(open);
            const QRect rect(m_origin + QPoint(x, y), m_needle);
            open &= open - 1;
            if (m_isAllowed && !m_isAllowed(rect))
                continue;
            m_occurrences.append(rect);
            if (m_occurrences.size() > m_limit)
                return;
            for (int row = y; row < y + occurrenceDistance; ++row)
                blockAround(x, y, row);
            open &= ~taken[word];
        }
    }
}

}  // namespace Tamrix::Vision
