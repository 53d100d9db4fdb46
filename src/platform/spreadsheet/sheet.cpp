#include "platform/spreadsheet/sheet.h"

#include <algorithm>
#include <iterator>

namespace Swinder {

namespace {

bool isInRange(unsigned column, unsigned row) {
    return column < Sheet::maxColumns && row < Sheet::maxRows;
}

std::uint32_t keyOf(unsigned column, unsigned row) {
    return row << 16U | column;
}

}  // namespace

Cell* Sheet::cell(unsigned column, unsigned row, bool autoCreate) {
    if (!isInRange(column, row))
        return nullptr;
    sort();
    const std::uint32_t key = keyOf(column, row);
    const auto place =
        std::lower_bound(m_places.begin(), m_places.end(), key,
                         [](const Place& left, std::uint32_t right) { return left.key < right; });
    if (place != m_places.end() && place->key == key)
        return &m_cells[place->cell];
    if (!autoCreate)
        return nullptr;
    m_places.insert(place, Place{key, static_cast<std::uint32_t>(m_cells.size())});
    return &m_cells.emplace_back();
}

bool Sheet::setValue(unsigned column, unsigned row, const Value& value) {
    if (!isInRange(column, row))
        return false;
    const std::uint32_t key = keyOf(column, row);
    m_isSorted = m_isSorted && (m_places.empty() || m_places.back().key < key);
    m_places.push_back(Place{key, static_cast<std::uint32_t>(m_cells.size())});
    m_cells.emplace_back().m_value = value;
    return true;
}

/// Files have their cells in order nearly always, so this is put off until a cell is asked for
/// instead of finding each its place.
void Sheet::sort() {
    if (m_isSorted)
        return;
    std::stable_sort(m_places.begin(), m_places.end(),
                     [](const Place& left, const Place& right) { return left.key < right.key; });
    // Of the values that one cell got, the last counts.
    const auto kept =
        std::unique(m_places.rbegin(), m_places.rend(),
                    [](const Place& left, const Place& right) { return left.key == right.key; });
    m_places.erase(m_places.begin(), kept.base());
    m_isSorted = true;
}

}  // namespace Swinder
