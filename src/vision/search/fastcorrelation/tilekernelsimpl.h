#pragma once

#include "vision/search/fastcorrelation/lanetransform.h"
#include "vision/search/fastcorrelation/tilekernels.h"

// The kernels for the instruction set that the including source is compiled for.
namespace Tamrix::Vision::TAMRIX_KERNELS {

/// Where the rows of block `block` of columns start.
template <typename Float>
inline Float* columnBlock(const TileShape& shape, Float* tile, int block) {
    return tile + static_cast<long>(block) * shape.height * step;
}

/// Transposes a square of lanes * lanes complex values.
inline void transposeSquare(const float* from, float* to) {
    Floats re[lanes];
    Floats im[lanes];
    for (int k = 0; k < lanes; ++k) {
        re[k] = load(from + k * step);
        im[k] = load(from + k * step + lanes);
    }
    transpose(re);
    transpose(im);
    for (int k = 0; k < lanes; ++k) {
        store(to + k * step, re[k]);
        store(to + k * step + lanes, im[k]);
    }
}

/// One line of blocks of rows from blocks of columns, transformed.
inline void transformLine(const TileShape& shape, const float* work, int rows, float* line) {
    for (int block = 0; block < shape.width / lanes; ++block) {
        const float* const square = columnBlock(shape, work, block) + rows * step;
        transposeSquare(square, line + static_cast<long>(block) * lanes * step);
    }
    transformForward(shape.rowPlan, line);
}

/// A line transformed back, its first columns to blocks of columns.
inline void transformLineBack(const TileShape& shape, float* line, int rows, int columns,
                              float* work) {
    transformBackward(shape.rowPlan, line);
    for (int block = 0; block * lanes < columns; ++block) {
        float* const square = columnBlock(shape, work, block) + rows * step;
        transposeSquare(line + static_cast<long>(block) * lanes * step, square);
    }
}

inline void clear(float* values, long count) {
    __builtin_memset(values, 0, static_cast<unsigned long>(count) * sizeof(float));
}

/// The value of a pixel as it is transformed.
template <TileContent Content>
inline Floats contentOf(Floats byte) {
    if constexpr (Content == TileContent::Value)
        return byte + all(1 - valueMiddle);
    const Floats value = byte + all(1);
    return value * value - all(squareMiddle);
}

/// One block of columns of one tile: its rows to `to`, one part of complex values. Returns the sum
/// of squares.
template <TileContent Content>
inline Floats loadBlock(const TilePixels& tile, int column, int height, float* to) {
    Floats squares = {};
    const int rows = column < tile.columns ? tile.rows : 0;
    const std::uint8_t* pixels = tile.pixels + column;
    for (int y = 0; y < rows; ++y, pixels += tile.stride) {
        const Floats value = contentOf<Content>(loadBytes(pixels));
        squares += value * value;
        store(to + y * step, value);
    }
    for (int y = rows; y < height; ++y)
        store(to + y * step, Floats{});
    return squares;
}

template <TileContent Content>
inline double transformColumnsOf(const TileShape& shape, const TilePixels& first,
                                 const TilePixels& second, float* work) {
    double sum = 0;
    for (int block = 0; block < shape.width / lanes; ++block) {
        float* const data = columnBlock(shape, work, block);
        const int column = block * lanes;
        if (column >= first.columns && column >= second.columns) {
            clear(data, static_cast<long>(shape.height) * step);
            continue;
        }
        const Floats squares = loadBlock<Content>(first, column, shape.height, data) +
                               loadBlock<Content>(second, column, shape.height, data + lanes);
        for (int k = 0; k < lanes; ++k)
            sum += static_cast<double>(squares[k]);
        transformForward(shape.columnPlan, data);
    }
    return sum;
}

inline double transformColumns(const TileShape& shape, const TilePixels& first,
                               const TilePixels& second, TileContent content, float* work) {
    return content == TileContent::Value
               ? transformColumnsOf<TileContent::Value>(shape, first, second, work)
               : transformColumnsOf<TileContent::Square>(shape, first, second, work);
}

inline void transformValues(const TileShape& shape, const float* values, int columns, int rows,
                            float* work, float* spectrum) {
    clear(work, static_cast<long>(shape.floats()));
    for (int y = 0; y < rows; ++y) {
        for (int x = 0; x < columns; ++x) {
            float* const block = columnBlock(shape, work, x / lanes);
            block[y * step + x % lanes] = values[static_cast<long>(y) * columns + x];
        }
    }
    for (int block = 0; block * lanes < columns; ++block)
        transformForward(shape.columnPlan, columnBlock(shape, work, block));
    for (int row = 0; row < shape.height; row += lanes)
        transformLine(shape, work, row, spectrum + static_cast<long>(row) * shape.width * 2);
}

inline double keepRows(const TileShape& shape, const float* work, float unit, float* line,
                       std::uint16_t* halves) {
    const long lineLength = static_cast<long>(shape.width) * step;
    double sum = 0;
    for (int rows = 0; rows < shape.height; rows += lanes, halves += lineLength) {
        transformLine(shape, work, rows, line);
        Complex squares = {};
        for (long at = 0; at < lineLength; at += step) {
            const Complex value = loadComplex(line + at);
            storeHalves(halves + at, 1 / unit * value);
            squares = squares + squaredParts(value - unit * loadHalves(halves + at));
        }
        sum += static_cast<double>(sumOfParts(squares));
    }
    return sum;
}

inline void correlateRows(const TileShape& shape, const float* needle, int columns, float* line,
                          float* work) {
    const long lineLength = static_cast<long>(shape.width) * step;
    for (int rows = 0; rows < shape.height; rows += lanes, needle += lineLength) {
        transformLine(shape, work, rows, line);
        for (long at = 0; at < lineLength; at += step) {
            const Complex tile = loadComplex(line + at);
            store(line + at, multipliedByConjugate(tile, loadComplex(needle + at)));
        }
        transformLineBack(shape, line, rows, columns, work);
    }
}

inline void correlateKeptRows(const TileShape& shape, const std::uint16_t* halves, float unit,
                              const float* needle, int columns, float* line, float* work) {
    const long lineLength = static_cast<long>(shape.width) * step;
    for (int rows = 0; rows < shape.height;
         rows += lanes, needle += lineLength, halves += lineLength) {
        for (long at = 0; at < lineLength; at += step) {
            const Complex tile = unit * loadHalves(halves + at);
            store(line + at, multipliedByConjugate(tile, loadComplex(needle + at)));
        }
        transformLineBack(shape, line, rows, columns, work);
    }
}

/// How the energy of a window is found.
enum class EnergySource {
    SmallSums,  ///< four running sums, the result below 2^31
    WideSums,   ///< the same in bands that each stay below 2^32
    Map         ///< from a correlation with the mask
};

inline Words windowSum(const std::uint32_t* top, const std::uint32_t* bottom, int width) {
    return loadWords(bottom + width) - loadWords(bottom) - loadWords(top + width) + loadWords(top);
}

inline Floats wideWindowSum(const TileJudgement& job, const std::uint32_t* sums) {
    Floats energy = {};
    for (int row = 0; row < job.needleHeight; row += job.bandHeight) {
        const int rest = job.needleHeight - row;
        const int height = rest < job.bandHeight ? rest : job.bandHeight;
        const std::uint32_t* const bottom = sums + height * job.sumsStride;
        energy += floatsOf(windowSum(sums, bottom, job.needleWidth));
        sums = bottom;
    }
    return energy;
}

/// Judges the positions of one tile in one block of columns.
template <EnergySource Source, bool HasBounds>
inline std::size_t judgeBlock(const TileJudgement& job, const JudgedTile& tile, int column,
                              const float* correlation, const float* energy) {
    const int rest = tile.columns - column;
    const unsigned field = (1U << (rest < lanes ? rest : lanes)) - 1;
    const int shift = column % 8;
    std::uint8_t* candidates = tile.candidates + column / 8;
    std::uint8_t* certain = tile.certain + column / 8;
    const std::uint32_t* sums = tile.sums + column;
    float* bounds = HasBounds ? tile.bounds + column : nullptr;
    const Floats middle = all(job.correlationMiddle), error = all(job.correlationError);
    const Floats zero = {};
    std::size_t count = 0;
    for (int y = 0; y < tile.rows; ++y, correlation += step, energy += step, sums += job.sumsStride,
             candidates += job.candidatesStride, certain += job.certainStride,
             bounds += HasBounds ? job.boundsStride : 0) {
        const unsigned before = job.isRefinement ? *candidates >> shift & field : field;
        if (!before)
            continue;
        Floats lowEnergy, highEnergy;
        if constexpr (Source == EnergySource::SmallSums) {
            const std::uint32_t* const bottom = sums + job.needleHeight * job.sumsStride;
            lowEnergy = highEnergy = floatsOfSmall(windowSum(sums, bottom, job.needleWidth));
        } else if constexpr (Source == EnergySource::WideSums) {
            lowEnergy = highEnergy = wideWindowSum(job, sums);
        } else {
            const Floats value = load(energy) + all(job.energyMiddle);
            lowEnergy = greater(value - all(job.energyError), all(job.lowestEnergy));
            highEnergy = greater(value + all(job.energyError), all(job.lowestEnergy));
        }
        const Floats value = load(correlation) + middle;
        const Floats most = greater(value + error, zero), least = greater(value - error, zero);
        const Floats square = most * most;
        const unsigned passed = bitsOf(square >= all(job.candidateFactor) * lowEnergy) & before;
        if (passed) {
            if constexpr (HasBounds) {
                // Lanes beyond the tile's edge land in the row's padding.
                const Floats bound = square * all(job.boundFactor) / lowEnergy;
                store(bounds, job.isRefinement ? lesser(bound, load(bounds)) : bound);
            }
            const Floats lower = least * least;
            unsigned sure = bitsOf(lower >= all(job.certainFactor) * highEnergy) & passed;
            if (job.isRefinement)
                sure &= *certain >> shift;
            *certain = static_cast<std::uint8_t>((*certain & ~(field << shift)) | sure << shift);
            count += static_cast<std::size_t>(__builtin_popcount(passed));
        }
        if (passed || job.isRefinement) {
            const unsigned others = *candidates & ~(field << shift);
            *candidates = static_cast<std::uint8_t>(others | passed << shift);
        }
    }
    return count;
}

template <EnergySource Source, bool HasBounds>
inline std::size_t judgeTiles(const TileJudgement& job) {
    std::size_t count = 0;
    const int columns =
        job.tiles[0].columns > job.tiles[1].columns ? job.tiles[0].columns : job.tiles[1].columns;
    for (int column = 0; column < columns; column += lanes) {
        float* const correlation = columnBlock(*job.shape, job.correlation, column / lanes);
        transformBackward(job.shape->columnPlan, correlation);
        float* energy = correlation;
        if constexpr (Source == EnergySource::Map) {
            energy = columnBlock(*job.shape, job.energy, column / lanes);
            transformBackward(job.shape->columnPlan, energy);
        }
        for (int side = 0; side < 2; ++side) {
            const int part = side * lanes;
            if (column < job.tiles[side].columns)
                count += judgeBlock<Source, HasBounds>(job, job.tiles[side], column,
                                                       correlation + part, energy + part);
        }
    }
    return count;
}

template <EnergySource Source>
inline std::size_t judgeTiles(const TileJudgement& job) {
    return job.tiles[0].bounds ? judgeTiles<Source, true>(job) : judgeTiles<Source, false>(job);
}

inline std::size_t judge(const TileJudgement& job) {
    if (job.energy)
        return judgeTiles<EnergySource::Map>(job);
    if (static_cast<long>(job.needleWidth) * job.needleHeight <= 32767)
        return judgeTiles<EnergySource::SmallSums>(job);
    return judgeTiles<EnergySource::WideSums>(job);
}

inline void splitPixels(const std::uint32_t* pixels, int count, std::uint8_t* blue,
                        std::uint8_t* green, std::uint8_t* red) {
    int x = 0;
#ifdef __AVX2__
    const __m256i order = _mm256_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15, 0,
                                           4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
    const __m256i gather = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    for (; x + 8 <= count; x += 8) {
        __m256i value = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels + x));
        value = _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(value, order), gather);
        const __m128i low = _mm256_castsi256_si128(value);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(blue + x), low);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(green + x), _mm_unpackhi_epi64(low, low));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(red + x), _mm256_extracti128_si256(value, 1));
    }
#endif
    for (; x < count; ++x) {
        blue[x] = static_cast<std::uint8_t>(pixels[x]);
        green[x] = static_cast<std::uint8_t>(pixels[x] >> 8);
        red[x] = static_cast<std::uint8_t>(pixels[x] >> 16);
    }
}

inline void addSquares(const std::uint8_t* pixels, int count, const std::uint32_t* above,
                       std::uint32_t* sums) {
#ifdef __AVX2__
    const __m256i one = _mm256_set1_epi32(1), last = _mm256_set1_epi32(7);
    __m256i carry = _mm256_setzero_si256();
    for (int x = 0; x < count; x += 8) {
        const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(pixels + x));
        const __m256i value = _mm256_add_epi32(_mm256_cvtepu8_epi32(bytes), one);
        // Sums within each half, then the first half's total onto the second.
        __m256i sum = _mm256_mullo_epi32(value, value);
        sum = _mm256_add_epi32(sum, _mm256_slli_si256(sum, 4));
        sum = _mm256_add_epi32(sum, _mm256_slli_si256(sum, 8));
        const __m256i half = _mm256_permute2x128_si256(sum, sum, 0x08);
        sum = _mm256_add_epi32(sum, _mm256_shuffle_epi32(half, 0xFF));
        sum = _mm256_add_epi32(sum, carry);
        carry = _mm256_permutevar8x32_epi32(sum, last);
        const auto* const up = reinterpret_cast<const __m256i*>(above + x + 1);
        const __m256i total = _mm256_add_epi32(sum, _mm256_loadu_si256(up));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(sums + x + 1), total);
    }
#else
    std::uint32_t sum = 0;
    for (int x = 0; x < count; ++x) {
        const std::uint32_t value = pixels[x] + 1U;
        sum += value * value;
        sums[x + 1] = above[x + 1] + sum;
    }
#endif
}

#ifdef __AVX2__
using Shorts = __m256i;
inline Shorts loadShorts(const std::int16_t* from) {
    return _mm256_loadu_si256(reinterpret_cast<const Shorts*>(from));
}
inline Shorts shortsOf(const std::uint8_t* from) {
    return _mm256_add_epi16(
        _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from))),
        _mm256_set1_epi16(1));
}
inline Shorts masked(Shorts a, Shorts b) {
    return _mm256_and_si256(a, b);
}
inline Shorts addProducts(Shorts sum, Shorts a, Shorts b) {
    return _mm256_add_epi32(sum, _mm256_madd_epi16(a, b));
}
#else
using Shorts = __m128i;
inline Shorts loadShorts(const std::int16_t* from) {
    return _mm_loadu_si128(reinterpret_cast<const Shorts*>(from));
}
inline Shorts shortsOf(const std::uint8_t* from) {
    const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from));
    return _mm_add_epi16(_mm_unpacklo_epi8(bytes, _mm_setzero_si128()), _mm_set1_epi16(1));
}
inline Shorts masked(Shorts a, Shorts b) {
    return _mm_and_si128(a, b);
}
inline Shorts addProducts(Shorts sum, Shorts a, Shorts b) {
    return _mm_add_epi32(sum, _mm_madd_epi16(a, b));
}
#endif

inline std::uint64_t total(Shorts sums) {
    std::uint32_t values[sizeof(Shorts) / 4];
    __builtin_memcpy(values, &sums, sizeof sums);
    std::uint64_t sum = 0;
    for (const std::uint32_t value : values)
        sum += value;
    return sum;
}

inline ExactSums exactSums(const std::uint8_t* pixels, std::ptrdiff_t stride,
                           const ExactNeedle& needle) {
    constexpr int shorts = sizeof(Shorts) / 2;
    // A lane grows by at most 2 * 256 * 256 with each vector; the sums are emptied before 2^32.
    const int vectors = (needle.stride + shorts - 1) / shorts;
    const int mostRows = 32000 / vectors > 0 ? 32000 / vectors : 1;
    ExactSums sums;
    for (int y = 0; y < needle.rows;) {
        const int end = needle.rows - y < mostRows ? needle.rows : y + mostRows;
        Shorts product = {};
        Shorts energy = {};
        for (; y < end; ++y) {
            const std::uint8_t* const row = pixels + y * stride;
            const std::int16_t* const values = needle.values + static_cast<long>(y) * needle.stride;
            const std::int16_t* const mask = needle.mask + static_cast<long>(y) * needle.stride;
            for (int x = 0; x < needle.stride; x += shorts) {
                const Shorts value = shortsOf(row + x);
                const Shorts visible = masked(value, loadShorts(mask + x));
                product = addProducts(product, value, loadShorts(values + x));
                energy = addProducts(energy, visible, visible);
            }
        }
        sums.product += total(product);
        sums.energy += total(energy);
    }
    return sums;
}

extern const TileKernels kernels;
// Each source that includes this has a namespace of its own.
// NOLINTNEXTLINE(misc-definitions-in-headers)
const TileKernels kernels = {lanes,           splitPixels, addSquares,    transformColumns,
                             transformValues, keepRows,    correlateRows, correlateKeptRows,
                             judge,           exactSums};

}  // namespace Tamrix::Vision::TAMRIX_KERNELS
