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

LineNumbers::LineNumbers(std::size_t lines) : m_slots(std::bit_ceil(2 * lines + 1)) {
    m_lines.reserve(lines);
}

int LineNumbers::number(Line line) {
    const std::uint64_t hash = hashOf(line);
    const auto upperHalf = static_cast<std::uint32_t>(hash >> 32);
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t place = hash & mask;; place = (place + 1) & mask) {
        Slot& slot = m_slots[place];
        if (slot.number < 0) {
            slot = {upperHalf, count()};
            m_lines.push_back(line);
            return slot.number;
        }
        // A hash alone says nothing: different lines must not share a number.
        if (slot.hash == upperHalf && m_lines[static_cast<std::size_t>(slot.number)] == line)
            return slot.number;
    }
}

}  // namespace Tamrix::Diff
