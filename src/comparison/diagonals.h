#pragma once

#include <cstddef>
#include <vector>

namespace Tamrix::Diff {

// The paths of Myers' algorithm from one end of two ranges. Diagonal k has the points (x, y) with
// x - y = k, x lines of the first and y of the second range behind the start. A walk with d
// differences touches the diagonals from -d to d that have the parity of d.

/// How far the paths got, on each diagonal. The two parities are apart, so that what one walk reads
/// and writes lies side by side.
class Reach {
public:
    static constexpr int nowhere = -1;

    /// Starts anew, for diagonals between -width and width.
    void reset(int width);
    /// Prepares the walk with d differences.
    void grow(int d);

    /// For diagonals that a walk was prepared for.
    int& operator[](int k) { return m_values[k & 1][index(k)]; }
    int operator[](int k) const { return m_values[k & 1][index(k)]; }
    int* at(int k) { return &(*this)[k]; }
    const int* at(int k) const { return m_values[k & 1].data() + index(k); }

private:
    std::size_t index(int k) const { return static_cast<std::size_t>((k - (k & 1) + m_base) / 2); }

    /// Even and beyond the width, so that no index is negative.
    int m_base = 0;
    std::vector<int> m_values[2];
};

/// The ranges as seen from one end.
struct Direction {
    /// Line x of the first range.
    const int* first = nullptr;
    /// The second range backwards: line y is secondMirrored[secondSize - 1 - y].
    const int* secondMirrored = nullptr;
    int firstSize = 0;
    int secondSize = 0;
    Reach reach;
    // Diagonals that left the ranges are walked no more.
    int trimStart = 0;
    int trimEnd = 0;
};

/// Where a walk has to look for the paths from the other end.
struct Opposite {
    /// Null for a walk that does not look.
    const Reach* reach = nullptr;
    /// The differences of the other end's last walk.
    int d = 0;
    /// Size of the first range less size of the second.
    int delta = 0;
};

/// Walks all paths with d differences, from the lowest diagonal up. True when a path met one from
/// the other end; `*meeting` is then its diagonal.
using Walk = bool (*)(Direction& direction, const Opposite& opposite, int d, int* meeting);

/// Goes from diagonal to diagonal; works everywhere.
bool walkPlainly(Direction& direction, const Opposite& opposite, int d, int* meeting);
/// The same on eight diagonals at once; needs AVX2.
bool walkWithAvx2(Direction& direction, const Opposite& opposite, int d, int* meeting);
/// The faster one that the processor can do.
Walk fastestWalk();

}  // namespace Tamrix::Diff
