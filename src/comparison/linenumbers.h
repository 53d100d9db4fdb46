#pragma once

#include <cstdint>
#include <vector>

#include "comparison/diff.h"

namespace Tamrix::Diff {

/// Gives equal lines the same number and different lines different ones, counted from 0. The lines'
/// bytes must stay until the end. One thread.
class LineNumbers {
public:
    /// For at most so many lines.
    explicit LineNumbers(std::size_t lines);

    int number(Line line);
    /// How many numbers were given.
    int count() const { return static_cast<int>(m_lines.size()); }

private:
    struct Slot {
        std::uint32_t hash = 0;
        int number = -1;
    };

    std::vector<Slot> m_slots;
    /// By number.
    std::vector<Line> m_lines;
};

}  // namespace Tamrix::Diff
