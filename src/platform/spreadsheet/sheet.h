#pragma once

#include <cstdint>
#include <deque>
#include <vector>

#include "base/export.h"
#include "platform/spreadsheet/value.h"

namespace Swinder {

class Cell {
public:
    const Value& value() const { return m_value; }

private:
    friend class Sheet;

    Value m_value;
};

/// One sheet of a workbook, which owns it. Columns and rows are counted from 0. Takes memory for
/// the cells in use only, wherever they are. Not for use by several threads at once.
class TAMRIX_EXPORT Sheet {
public:
    static constexpr unsigned maxColumns = 256;
    static constexpr unsigned maxRows = 65536;

    explicit Sheet(UString name) : m_name(name) {}

    UString name() const { return m_name; }
    /// The cell, which stays where it is as long as the sheet is. Null for a cell that holds
    /// nothing, unless `autoCreate` asks for an empty one; null always beyond the last column or
    /// row. A cell that is only formatted holds nothing.
    Cell* cell(unsigned column, unsigned row, bool autoCreate);
    /// Puts a value into a cell, in place of an earlier one. False beyond the last column or row.
    bool setValue(unsigned column, unsigned row, const Value& value);

private:
    struct Place {
        std::uint32_t key;   ///< row, then column
        std::uint32_t cell;  ///< into m_cells
    };

    void sort();

    UString m_name;
    std::deque<Cell> m_cells;
    std::vector<Place> m_places;
    bool m_isSorted = true;
};

}  // namespace Swinder
