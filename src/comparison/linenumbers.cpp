#include "comparison/linenumbers.h"

#include <bit>
#include <cstring>

namespace Tamrix::Diff {

namespace {

std::uint64_t mix(std::uint64_t left, std::uint64_t right) {
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(left) * right;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

std::uint64_t hashOf(Line line) {
    constexpr std::uint64_t one = 0xA0761D6478BD642F;
    constexpr std::uint64_t other = 0xE7037ED1A0B428DB;
    std::uint64_t hash = line.size() ^ one;
    const char* bytes = line.data();
    std::size_t left = line.size();
    std::uint64_t word = 0;
    for (; left >= sizeof word; bytes += sizeof word, left -= sizeof word) {
        std::memcpy(&word, bytes, sizeof word);
        hash = mix(hash ^ word, one);
    }
    word = 0;
    if (left > 0)
        std::memcpy(&word, bytes, left);
    return mix(hash ^ word, other);
}

}  // namespace

LineNumbers::LineNumbers(std::size_t lines) : m_slots(std::bit_ceil(lines + lines / 2 + 2)) {
    m_lines.reserve(lines);
    m_hashes.reserve(lines);
}

int LineNumbers::number(Line line) {
    return number(line, hashOf(line));
}

std::vector<int> LineNumbers::number(std::span<const Line> lines) {
    std::vector<std::uint64_t> hashes;
    hashes.reserve(lines.size());
    for (const Line& line : lines)
        hashes.push_back(hashOf(line));
    std::vector<int> numbers;
    numbers.reserve(lines.size());
    // The table is larger than the caches near the processor.
    constexpr std::size_t ahead = 16;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (i + ahead < lines.size())
            __builtin_prefetch(&m_slots[hashes[i + ahead] & (m_slots.size() - 1)]);
        numbers.push_back(number(lines[i], hashes[i]));
    }
    return numbers;
}

std::vector<int> LineNumbers::numberBeside(std::span<const Line> lines, std::span<const Line> known,
                                           const std::vector<int>& knownNumbers) {
    std::vector<std::size_t> positions(m_lines.size());
    for (std::size_t i = known.size(); i > 0; --i)
        positions[static_cast<std::size_t>(knownNumbers[i - 1])] = i - 1;
    std::vector<int> numbers;
    numbers.reserve(lines.size());
    // The line that should come next.
    std::size_t beside = 0;
    for (const Line& line : lines) {
        if (beside < known.size() && known[beside] == line) {
            numbers.push_back(knownNumbers[beside]);
        } else {
            numbers.push_back(number(line));
            const auto found = static_cast<std::size_t>(numbers.back());
            if (found < positions.size())
                beside = positions[found];
        }
        ++beside;
    }
    return numbers;
}

int LineNumbers::number(Line line, std::uint64_t hash) {
    const auto upperHalf = static_cast<std::uint32_t>(hash >> 32);
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t place = hash & mask;; place = (place + 1) & mask) {
        Slot& slot = m_slots[place];
        if (slot.number < 0) {
            const int number = count();
            slot = {upperHalf, number};
            m_lines.push_back(line);
            m_hashes.push_back(hash);
            if (m_lines.size() > m_slots.size() / 4 * 3)
                grow();
            return number;
        }
        // A hash alone says nothing: different lines must not share a number.
        if (slot.hash == upperHalf && m_lines[static_cast<std::size_t>(slot.number)] == line)
            return slot.number;
    }
}

void LineNumbers::grow() {
    m_slots.assign(2 * m_slots.size(), {});
    const std::size_t mask = m_slots.size() - 1;
    int number = 0;
    for (const std::uint64_t hash : m_hashes) {
        std::size_t place = hash & mask;
        while (m_slots[place].number >= 0)
            place = (place + 1) & mask;
        m_slots[place] = {static_cast<std::uint32_t>(hash >> 32), number++};
    }
}

}  // namespace Tamrix::Diff
