#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "comparison/diff.h"

namespace Tamrix::Diff {

/// Gives equal lines the same number and different lines different ones, counted from 0. The lines'
/// bytes must stay until the end. One thread.
class LineNumbers {
public:
    /// Works best for about so many different lines.
    explicit LineNumbers(std::size_t lines);

    int number(Line line);
    std::vector<int> number(std::span<const Line> lines);
    /// The same, fast where the lines are those of `known`, which have these numbers, but for
    /// insertions and deletions.
    std::vector<int> numberBeside(std::span<const Line> lines, std::span<const Line> known,
                                  const std::vector<int>& knownNumbers);

    /// How many numbers were given.
    int count() const { return static_cast<int>(m_lines.size()); }

private:
    struct Slot {
        std::uint32_t hash = 0;
        int number = -1;
    };

    int number(Line line, std::uint64_t hash);
    void grow();

    std::vector<Slot> m_slots;
    // By number.
    std::vector<Line> m_lines;
    std::vector<std::uint64_t> m_hashes;
};

}  // namespace Tamrix::Diff
