#include "fuzz/mutator.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Tamrix::Fuzz {

namespace {

constexpr std::size_t maxPoolSize = 512;
constexpr std::size_t maxChanges = 6;
constexpr std::size_t oneOfHowManyJoins = 50;

/// Counts, lengths and values at which code goes wrong.
constexpr std::array<std::uint32_t, 12> numbers = {
    0,       1,          2,          0x7f,       0xff,       0xffff,
    0x10000, 0x01000000, 0x7fffffff, 0x80000000, 0xfffffffe, 0xffffffff,
};

}  // namespace

Mutator::Mutator(std::vector<Input> pool, std::uint64_t seed)
    : m_pool(std::move(pool)), m_random(seed) {
    if (m_pool.empty())
        m_pool.emplace_back();
}

Input Mutator::next() {
    Input input = anyOfPool();
    for (std::size_t changes = 1 + below(maxChanges); changes > 0; --changes)
        change(input);
    input.resize(std::min(input.size(), maxSize));
    if (below(oneOfHowManyJoins) == 0) {
        if (m_pool.size() < maxPoolSize)
            m_pool.push_back(input);
        else
            m_pool[below(m_pool.size())] = input;
    }
    return input;
}

void Mutator::change(Input& input) {
    if (input.empty()) {
        insertBytes(input);
        return;
    }
    switch (below(8)) {
        case 0:
            input[below(input.size())] ^= static_cast<std::uint8_t>(1U << below(8));
            break;
        case 1:
            input[below(input.size())] = randomByte();
            break;
        case 2:
        case 3:
            setNumber(input);
            break;
        case 4:
            insertBytes(input);
            break;
        case 5:
            eraseBytes(input);
            break;
        case 6:
            copyRange(Input(input), input);
            break;
        default:
            copyRange(anyOfPool(), input);
            break;
    }
}

/// Overwrites 1, 2 or 4 bytes by a number, in either byte order.
void Mutator::setNumber(Input& input) {
    const std::size_t size = std::size_t(1) << below(3);
    if (input.size() < size)
        return;
    const std::size_t at = below(input.size() - size + 1);
    const std::uint32_t number = numbers[below(numbers.size())];
    const bool isBigEndian = below(2) == 0;
    for (std::size_t i = 0; i < size; ++i) {
        const std::size_t place = isBigEndian ? size - 1 - i : i;
        input[at + place] = static_cast<std::uint8_t>(number >> (8 * i));
    }
}

void Mutator::insertBytes(Input& input) {
    Input bytes(1 + below(16));
    std::generate(bytes.begin(), bytes.end(), [this] { return randomByte(); });
    const auto at = input.begin() + static_cast<std::ptrdiff_t>(below(input.size() + 1));
    input.insert(at, bytes.begin(), bytes.end());
}

void Mutator::eraseBytes(Input& input) {
    const std::size_t begin = below(input.size());
    const std::size_t left = input.size() - begin;
    // Seldom all that follows: what is cut short is a case of its own.
    const std::size_t count = below(8) == 0 ? left : 1 + below(std::min<std::size_t>(left, 16));
    const auto first = input.begin() + static_cast<std::ptrdiff_t>(begin);
    input.erase(first, first + static_cast<std::ptrdiff_t>(std::min(count, left)));
}

/// Inserts a range of one input somewhere into another.
void Mutator::copyRange(const Input& from, Input& to) {
    if (from.empty())
        return;
    const std::size_t begin = below(from.size());
    const std::size_t count = 1 + below(from.size() - begin);
    const auto first = from.begin() + static_cast<std::ptrdiff_t>(begin);
    const auto at = to.begin() + static_cast<std::ptrdiff_t>(below(to.size() + 1));
    to.insert(at, first, first + static_cast<std::ptrdiff_t>(count));
}

}  // namespace Tamrix::Fuzz
