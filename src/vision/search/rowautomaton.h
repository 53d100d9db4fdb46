#pragma once

#include <QImage>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace Tamrix::Vision::BasicImageLookup {

/// Tells which row of a needle ends at each pixel of a haystack's row, in a time that depends on
/// the length of that row only: the automaton of Aho and Corasick over the rows of the needle, all
/// of which have one length. Takes twice the needle's memory.
class RowAutomaton {
public:
    /// Between rows.
    static constexpr int start = 0;

    explicit RowAutomaton(const QImage& needle);

    /// What each row of the needle is called; equal rows have equal names, from 0 on.
    const std::vector<int>& rowNames() const { return m_rowNames; }

    /// Reads a pixel in a state. Returns the next state, and sets `*rowName` when a row of the
    /// needle ends with this pixel, to -1 otherwise.
    int read(int state, QRgb pixel, int* rowName) const {
        int next = child(state, pixel);
        while (next == start && state != start) {
            state = m_shorter[state];
            next = child(state, pixel);
        }
        *rowName = -1;
        if (m_flags[next] & isComplete) {
            *rowName = next / m_width - 1;
            return m_shorter[next];
        }
        return next;
    }

private:
    enum Flag : std::uint8_t { isComplete = 1, hasBranches = 2 };

    // A state stands for the beginning of a row. Row `k` has the states k * width + length; those
    // of a beginning that an earlier row has, too, are not used. So the next state is the next
    // number, unless rows part here.
    int child(int state, QRgb pixel) const {
        if (m_pixels[state] == pixel)
            return state + 1;
        return m_flags[state] & hasBranches ? branch(state, pixel) : start;
    }
    int branch(int state, QRgb pixel) const;
    /// Adds a row unless it is there, and returns its name.
    int addRow(const QRgb* row);
    void findShorter();

    /// Where a row parts from earlier rows.
    struct Parting {
        int state;
        int length;
    };

    int m_width;
    std::vector<int> m_rowNames;
    std::vector<Parting> m_partings;
    /// The pixel that leads from a state to the next number.
    std::vector<QRgb> m_pixels;
    /// The longest beginning of a row that ends the state's beginning, and is shorter.
    std::vector<int> m_shorter;
    std::vector<std::uint8_t> m_flags;
    std::unordered_map<std::uint64_t, int> m_branches;
};

}  // namespace Tamrix::Vision::BasicImageLookup
