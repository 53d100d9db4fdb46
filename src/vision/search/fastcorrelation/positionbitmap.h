#pragma once

#include <QSize>
#include <cstdint>
#include <vector>

namespace Tamrix::Vision {

/// One bit for each position of a needle. Rows are whole words of 64 bits, and the first position
/// is the lowest bit of a row, so that threads may write neighbouring bytes.
class PositionBitmap {
public:
    explicit PositionBitmap(QSize positions)
        : m_size(positions),
          m_stride((positions.width() + 63) / 64 * 8),
          m_words(std::size_t(m_stride / 8) * positions.height()) {}

    QSize size() const { return m_size; }
    /// Bytes from row to row.
    std::ptrdiff_t stride() const { return m_stride; }
    std::uint8_t* row(int y) {
        return reinterpret_cast<std::uint8_t*>(m_words.data()) + y * m_stride;
    }
    const std::uint64_t* words(int y) const { return m_words.data() + y * (m_stride / 8); }
    int wordsPerRow() const { return static_cast<int>(m_stride / 8); }

    void set(int x, int y) { row(y)[x / 8] |= 1U << (x % 8); }
    bool test(int x, int y) const { return words(y)[x / 64] >> (x % 64) & 1; }

private:
    QSize m_size;
    std::ptrdiff_t m_stride;
    std::vector<std::uint64_t> m_words;
};

}  // namespace Tamrix::Vision
