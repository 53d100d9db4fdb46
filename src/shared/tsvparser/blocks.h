#pragma once

// Searching text in blocks, for UTF-8 bytes and for UTF-16 units alike. What is searched for is
// ASCII, so a byte that equals it is that character.

#include <cstddef>
#include <cstdint>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace Tamrix {

/// Units whose comparison fits into the bits of one mask.
constexpr std::size_t blockSize = 64;

#ifdef __SSE2__

/// Bit i: whether unit i of the 16 at `text` equals `wanted`.
inline unsigned equalMask16(const char* text, char wanted) {
    const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(units, _mm_set1_epi8(wanted))));
}

inline unsigned equalMask16(const char16_t* text, char16_t wanted) {
    const auto* const units = reinterpret_cast<const __m128i*>(text);
    const __m128i pattern = _mm_set1_epi16(static_cast<short>(wanted));
    const __m128i low = _mm_cmpeq_epi16(_mm_loadu_si128(units), pattern);
    const __m128i high = _mm_cmpeq_epi16(_mm_loadu_si128(units + 1), pattern);
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(low, high)));
}

#else

template <typename Unit>
unsigned equalMask16(const Unit* text, Unit wanted) {
    unsigned mask = 0;
    for (unsigned i = 0; i < 16; ++i)
        mask |= static_cast<unsigned>(text[i] == wanted) << i;
    return mask;
}

#endif

/// Bit i: whether unit i of the 64 at `text` equals `wanted`.
template <typename Unit>
std::uint64_t equalMask(const Unit* text, Unit wanted) {
    std::uint64_t mask = 0;
    for (unsigned part = 0; part < 4; ++part)
        mask |= std::uint64_t{equalMask16(text + 16 * part, wanted)} << (16 * part);
    return mask;
}

/// Bit i: whether the number of bits of `mask` up to and with bit i is odd.
inline std::uint64_t prefixParity(std::uint64_t mask) {
    for (unsigned shift = 1; shift < 64; shift *= 2)
        mask ^= mask << shift;
    return mask;
}

/// The first place from `from` that holds one or the other, `end` if there is none.
template <typename Unit>
const Unit* findEither(const Unit* from, const Unit* end, Unit one, Unit other) {
    for (; end - from >= 16; from += 16) {
        const unsigned mask = equalMask16(from, one) | equalMask16(from, other);
        if (mask != 0)
            return from + __builtin_ctz(mask);
    }
    while (from != end && *from != one && *from != other)
        ++from;
    return from;
}

}  // namespace Tamrix
