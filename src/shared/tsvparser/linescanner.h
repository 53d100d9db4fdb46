#pragma once

#include <algorithm>
#include <array>
#include <bit>

#include "shared/tsvparser/blocks.h"

namespace Tamrix {

/// Where a logical line lies in the text that it was read from, in units of that text.
struct TextLine {
    std::uint32_t begin = 0;
    std::uint32_t length = 0;
    /// Separators outside quotes.
    std::uint32_t separators = 0;
};

/// Cuts delimited text into logical lines: a newline inside quotes belongs to the line. Reads the
/// text in blocks, each unit once.
///
/// Inside is what an odd number of quotes precedes: a doubled quote leaves the quoted part and
/// opens it again, so that there is nothing else to keep count of.
template <typename Unit>
class LineScanner {
public:
    /// Starts at `position`, which is the beginning of a line. The text stays the caller's. The
    /// separator is neither quote, newline nor carriage return.
    LineScanner(const Unit* text, std::size_t size, char separator, std::size_t position)
        : m_text(text),
          m_size(size),
          m_separator(static_cast<Unit>(separator)),
          m_position(position),
          m_nextBlock(position) {}

    /// False at the end of the text. The newline isn't part of the line, nor is a carriage return
    /// before it; a last line without a newline is taken as it is.
    bool next(TextLine* line) {
        if (m_position >= m_size)
            return false;
        const std::size_t begin = m_position;
        std::uint32_t separators = 0;
        while (m_ends == 0) {
            separators += static_cast<std::uint32_t>(std::popcount(m_separators));
            m_separators = 0;
            if (m_nextBlock >= m_size) {
                m_position = m_size;
                *line = lineOf(begin, m_size, separators);
                return true;
            }
            loadBlock();
        }
        const int bit = std::countr_zero(m_ends);
        const std::uint64_t before = (std::uint64_t{1} << bit) - 1;
        separators += static_cast<std::uint32_t>(std::popcount(m_separators & before));
        m_separators &= ~before;
        m_ends &= m_ends - 1;
        std::size_t end = m_block + static_cast<std::size_t>(bit);
        m_position = end + 1;
        if (end > begin && m_text[end - 1] == Unit('\r'))
            --end;
        *line = lineOf(begin, end, separators);
        return true;
    }

    /// Where the next line begins.
    std::size_t position() const { return m_position; }
    char separator() const { return static_cast<char>(m_separator); }

private:
    static TextLine lineOf(std::size_t begin, std::size_t end, std::uint32_t separators) {
        return {static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(end - begin),
                separators};
    }

    void loadBlock() {
        m_block = m_nextBlock;
        m_nextBlock += blockSize;
        const std::size_t count = std::min(blockSize, m_size - m_block);
        if (count == blockSize) {
            takeBlock(m_text + m_block, ~std::uint64_t{0});
            return;
        }
        std::array<Unit, blockSize> padded{};
        std::copy_n(m_text + m_block, count, padded.begin());
        takeBlock(padded.data(), (std::uint64_t{1} << count) - 1);
    }

    void takeBlock(const Unit* units, std::uint64_t valid) {
        const std::uint64_t inside = prefixParity(equalMask(units, Unit('"'))) ^ m_inside;
        m_inside = (inside >> 63) != 0 ? ~std::uint64_t{0} : 0;
        m_ends = equalMask(units, Unit('\n')) & ~inside & valid;
        m_separators = equalMask(units, m_separator) & ~inside & valid;
    }

    const Unit* m_text;
    std::size_t m_size;
    Unit m_separator;
    std::size_t m_position;
    std::size_t m_block = 0;
    std::size_t m_nextBlock;
    /// All bits when the next block begins inside quotes.
    std::uint64_t m_inside = 0;
    /// What the present block holds behind m_position, outside quotes.
    std::uint64_t m_ends = 0;
    std::uint64_t m_separators = 0;
};

}  // namespace Tamrix
