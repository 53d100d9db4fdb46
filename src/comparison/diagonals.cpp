#include "comparison/diagonals.h"

#include <algorithm>

#if defined(__x86_64__)
#define TAMRIX_DIFF_AVX2 1
#include <immintrin.h>
#endif

namespace Tamrix::Diff {

void Reach::reset(int width) {
    m_base = (width + 3) & ~1;
    for (std::vector<int>& values : m_values) {
        if (values.size() < static_cast<std::size_t>(m_base) + 1)
            values.resize(static_cast<std::size_t>(m_base) + 1);
    }
    // The walk without differences starts at (0, 0) on diagonal 0, which is where a step from
    // (0, -1) on diagonal 1 leads.
    (*this)[-1] = nowhere;
    (*this)[1] = 0;
}

void Reach::grow(int d) {
    // What no walk has written reads as nowhere. Only now, since most searches end early.
    if (d > 0) {
        (*this)[-d - 1] = nowhere;
        (*this)[d + 1] = nowhere;
    }
}

namespace {

/// Walks the diagonals from `k` to `*last`, which sinks when a path leaves the first range.
bool walkDiagonals(Direction& direction, const Opposite& opposite, int k, int end, int* last,
                   int* meeting) {
    const int n = direction.firstSize;
    const int m = direction.secondSize;
    Reach& reach = direction.reach;
    for (; k <= end && k <= *last; k += 2) {
        // The further one of a step down from the diagonal above and a step right from the one
        // below.
        int x = std::max(reach[k - 1] + 1, reach[k + 1]);
        int y = x - k;
        while (x < n && y < m && direction.first[x] == direction.secondMirrored[m - 1 - y]) {
            ++x;
            ++y;
        }
        reach[k] = x;
        if (x > n) {
            direction.trimEnd += 2;
            *last -= 2;
        } else if (y > m) {
            direction.trimStart += 2;
        } else if (opposite.reach) {
            const int other = opposite.delta - k;
            if (other >= -opposite.d && other <= opposite.d) {
                const int otherX = (*opposite.reach)[other];
                if (otherX != Reach::nowhere && x >= n - otherX) {
                    *meeting = k;
                    return true;
                }
            }
        }
    }
    return false;
}

}  // namespace

bool walkPlainly(Direction& direction, const Opposite& opposite, int d, int* meeting) {
    int last = d - direction.trimEnd;
    return walkDiagonals(direction, opposite, -d + direction.trimStart, last, &last, meeting);
}

#ifdef TAMRIX_DIFF_AVX2

namespace {

constexpr int lanes = 8;
/// From the first to the last diagonal of a block.
constexpr int blockSpan = 2 * (lanes - 1);

__attribute__((target("avx2"))) inline __m256i loadAt(const int* values) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(values));
}

/// Which of the paths at x go on with an equal line.
__attribute__((target("avx2"))) inline __m256i equalLines(const Direction& direction, __m256i x,
                                                          __m256i y) {
    const __m256i steps = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
    const int n = direction.firstSize;
    const int m = direction.secondSize;
    // Where no path met equal lines, the paths stand in a row across the diagonals.
    const int x0 = _mm256_cvtsi256_si32(x);
    const int y0 = _mm256_cvtsi256_si32(y);
    const __m256i row = _mm256_add_epi32(_mm256_set1_epi32(x0), steps);
    if (x0 + lanes <= n && y0 < m && y0 >= lanes - 1 &&
        _mm256_movemask_epi8(_mm256_cmpeq_epi32(row, x)) == -1) {
        return _mm256_cmpeq_epi32(loadAt(direction.first + x0),
                                  loadAt(direction.secondMirrored + (m - 1 - y0)));
    }
    const __m256i inside = _mm256_and_si256(_mm256_cmpgt_epi32(_mm256_set1_epi32(n), x),
                                            _mm256_cmpgt_epi32(_mm256_set1_epi32(m), y));
    const __m256i lineOfFirst =
        _mm256_mask_i32gather_epi32(_mm256_set1_epi32(-1), direction.first, x, inside, 4);
    const __m256i lineOfSecond =
        _mm256_mask_i32gather_epi32(_mm256_set1_epi32(-2), direction.secondMirrored,
                                    _mm256_sub_epi32(_mm256_set1_epi32(m - 1), y), inside, 4);
    return _mm256_cmpeq_epi32(lineOfFirst, lineOfSecond);
}

/// Moves eight paths from diagonal k on, when all that happens is one more difference each. False,
/// and nothing is done, when a path goes on, leaves the ranges or may meet another.
__attribute__((target("avx2"))) inline bool moveBlock(Direction& direction,
                                                      const Opposite& opposite, int k) {
    const int n = direction.firstSize;
    const int m = direction.secondSize;
    const int* const below = direction.reach.at(k - 1);
    const __m256i x =
        _mm256_max_epi32(_mm256_add_epi32(loadAt(below), _mm256_set1_epi32(1)), loadAt(below + 1));
    const __m256i diagonals =
        _mm256_add_epi32(_mm256_set1_epi32(k), _mm256_setr_epi32(0, 2, 4, 6, 8, 10, 12, blockSpan));
    const __m256i y = _mm256_sub_epi32(x, diagonals);
    __m256i special = _mm256_or_si256(_mm256_cmpgt_epi32(x, _mm256_set1_epi32(n)),
                                      _mm256_cmpgt_epi32(y, _mm256_set1_epi32(m)));
    special = _mm256_or_si256(special, equalLines(direction, x, y));
    if (opposite.reach) {
        const int highest = opposite.delta - k;
        const int lowest = highest - blockSpan;
        if (lowest >= -opposite.d && highest <= opposite.d) {
            const __m256i other = _mm256_permutevar8x32_epi32(
                loadAt(opposite.reach->at(lowest)), _mm256_setr_epi32(7, 6, 5, 4, 3, 2, 1, 0));
            special = _mm256_or_si256(
                special, _mm256_cmpgt_epi32(_mm256_add_epi32(x, other), _mm256_set1_epi32(n - 1)));
        } else if (highest >= -opposite.d && lowest <= opposite.d) {
            return false;
        }
    }
    if (!_mm256_testz_si256(special, special))
        return false;
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(direction.reach.at(k)), x);
    return true;
}

}  // namespace

__attribute__((target("avx2"))) bool walkWithAvx2(Direction& direction, const Opposite& opposite,
                                                  int d, int* meeting) {
    int last = d - direction.trimEnd;
    int k = -d + direction.trimStart;
    for (; k + blockSpan <= last; k += 2 * lanes) {
        if (!moveBlock(direction, opposite, k) &&
            walkDiagonals(direction, opposite, k, k + blockSpan, &last, meeting))
            return true;
    }
    return walkDiagonals(direction, opposite, k, last, &last, meeting);
}

Walk fastestWalk() {
    return __builtin_cpu_supports("avx2") ? walkWithAvx2 : walkPlainly;
}

#else

bool walkWithAvx2(Direction& direction, const Opposite& opposite, int d, int* meeting) {
    return walkPlainly(direction, opposite, d, meeting);
}

Walk fastestWalk() {
    return walkPlainly;
}

#endif

}  // namespace Tamrix::Diff
