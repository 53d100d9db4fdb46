#include "vision/search/rowautomaton.h"

namespace Tamrix::Vision::BasicImageLookup {

namespace {

std::uint64_t branchKey(int state, QRgb pixel) {
    return std::uint64_t(state) << 32 | pixel;
}

}  // namespace

RowAutomaton::RowAutomaton(const QImage& needle) : m_width(needle.width()) {
    m_pixels.reserve(std::size_t(m_width) * needle.height() + 1);
    m_flags.push_back(0);
    for (int y = 0; y < needle.height(); ++y)
        m_rowNames.push_back(addRow(reinterpret_cast<const QRgb*>(needle.constScanLine(y))));
    // Complete states are left before anything is read in them; the last one must be readable all
    // the same.
    m_pixels.push_back(0);
    findShorter();
}

int RowAutomaton::branch(int state, QRgb pixel) const {
    const auto it = m_branches.find(branchKey(state, pixel));
    return it == m_branches.end() ? start : it->second;
}

int RowAutomaton::addRow(const QRgb* row) {
    int state = start;
    int length = 0;
    if (!m_pixels.empty()) {
        for (; length < m_width; ++length) {
            const int next = child(state, row[length]);
            if (next == start)
                break;
            state = next;
        }
        if (length == m_width)
            return state / m_width - 1;
    }
    const auto name = static_cast<int>(m_partings.size());
    if (name > 0) {
        m_branches.emplace(branchKey(state, row[length]), name * m_width + length + 1);
        m_flags[state] |= hasBranches;
    }
    m_partings.push_back({state, length});
    m_pixels.insert(m_pixels.end(), row, row + m_width);
    m_flags.resize(m_flags.size() + m_width);
    m_flags.back() = isComplete;
    return name;
}

void RowAutomaton::findShorter() {
    // From short beginnings to long ones, since the answer for one follows from shorter ones.
    m_shorter.assign(m_flags.size(), start);
    for (int length = 2; length <= m_width; ++length) {
        for (std::size_t row = 0; row < m_partings.size(); ++row) {
            const Parting& parting = m_partings[row];
            if (length <= parting.length)
                continue;
            const int state = static_cast<int>(row) * m_width + length;
            const QRgb pixel = m_pixels[state - 1];
            int shorter = m_shorter[length - 1 == parting.length ? parting.state : state - 1];
            int next = child(shorter, pixel);
            while (next == start && shorter != start) {
                shorter = m_shorter[shorter];
                next = child(shorter, pixel);
            }
            m_shorter[state] = next;
        }
    }
}

}  // namespace Tamrix::Vision::BasicImageLookup
