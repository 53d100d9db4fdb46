#pragma once

#include <cstddef>
#include <cstdint>

#include "vision/search/fastcorrelation/transformplan.h"

namespace Tamrix::Vision {

/// Size of a tile and the plans of its transform. A transform of a tile holds width * height
/// complex values. Before its row passes and after the backward ones the values stand by blocks of
/// neighbouring columns, below each other; between them by blocks of neighbouring rows. What a
/// block holds side by side are the lanes of a vector: first their real parts, then their imaginary
/// parts.
struct TileShape {
    TileShape(int tileWidth, int tileHeight)
        : width(tileWidth), height(tileHeight), rowPlan(tileWidth), columnPlan(tileHeight) {}

    std::size_t floats() const { return std::size_t(width) * height * 2; }
    /// Floats of the line that the backward row passes work in.
    std::size_t lineFloats() const { return std::size_t(width) * 2 * 8; }

    int width;
    int height;
    TransformPlan rowPlan;
    TransformPlan columnPlan;
};

/// What a value of the haystack becomes before its transform. Both subtract a middle, which is
/// added back exactly afterwards: the smaller the values, the smaller the rounding.
enum class TileContent { Value, Square };
inline constexpr float valueMiddle = 128;
inline constexpr float squareMiddle = 16384;

/// A tile of one channel: the pixels at `pixels` and beside and below it. Beyond `columns` and
/// `rows` the tile is filled with the middle. Whole vectors are read, so the rows need 8 bytes
/// behind them.
struct TilePixels {
    const std::uint8_t* pixels = nullptr;
    std::ptrdiff_t stride = 0;
    int columns = 0;
    int rows = 0;
};

/// The needle's values in one channel for exact sums, rows padded with zeros to a multiple of 16.
struct ExactNeedle {
    const std::int16_t* values = nullptr;
    /// -1 where a pixel is visible, else 0.
    const std::int16_t* mask = nullptr;
    int stride = 0;
    int rows = 0;
};

struct ExactSums {
    std::uint64_t product = 0;
    std::uint64_t energy = 0;
};

/// Where the positions of one of a pair's tiles are judged.
struct JudgedTile {
    int columns = 0;
    int rows = 0;
    /// Running sums of squares at the tile's first position; not used with an energy map.
    const std::uint32_t* sums = nullptr;
    /// Bit maps with one bit for each position; the tile's first position is the lowest bit.
    std::uint8_t* candidates = nullptr;
    std::uint8_t* certain = nullptr;
    /// If not null, takes upper bounds of the candidates' squared scores; the lowest of all
    /// channels stays.
    float* bounds = nullptr;
};

/// One judgement of the positions of two tiles by one channel. With c the correlation and e the
/// energy of the window, both with an error of at most `correlationError` and `energyError`, a
/// position is a candidate when (c + error)^2 >= candidateFactor * e, and certain when (c -
/// error)^2 >= certainFactor * e.
struct TileJudgement {
    const TileShape* shape = nullptr;
    /// The correlation after the backward row passes; the column passes are done in place.
    float* correlation = nullptr;
    /// Sums of squares under the mask likewise; null for a needle without holes.
    float* energy = nullptr;

    float correlationMiddle = 0;
    float correlationError = 0;
    float energyMiddle = 0;
    float energyError = 0;
    /// No window has less energy: the lowest value is 1.
    float lowestEnergy = 0;
    float candidateFactor = 0;
    float certainFactor = 0;
    /// With bounds: one over the needle's energy.
    float boundFactor = 0;

    std::ptrdiff_t sumsStride = 0;
    int needleWidth = 0;
    int needleHeight = 0;
    /// Rows of the window whose sum of squares fits in 32 bits.
    int bandHeight = 0;

    std::ptrdiff_t candidatesStride = 0;
    std::ptrdiff_t certainStride = 0;
    std::ptrdiff_t boundsStride = 0;
    /// Only positions that are candidates already are judged, and only those stay.
    bool isRefinement = false;
    JudgedTile tiles[2];
};

/// The inner loops of the search, compiled for several instruction sets. All functions may be
/// called from any thread.
struct TileKernels {
    /// Values of a vector.
    int lanes;

    /// Deinterleaves `count` pixels into planes of their blue, green and red bytes.
    void (*splitPixels)(const std::uint32_t* pixels, int count, std::uint8_t* blue,
                        std::uint8_t* green, std::uint8_t* red);

    /// Writes a row of running sums of squares of value + 1 to sums[1] ... sums[count], modulo
    /// 2^32. Writes up to 8 numbers beyond.
    void (*addSquares)(const std::uint8_t* pixels, int count, const std::uint32_t* above,
                       std::uint32_t* sums);

    /// The forward column passes of the first tile as real part and the second as imaginary part (a
    /// tile without pixels is zero), to `work`, which holds shape.floats(). Returns the sum of the
    /// squares of what was transformed.
    double (*transformColumns)(const TileShape& shape, const TilePixels& first,
                               const TilePixels& second, TileContent content, float* work);

    /// The whole transform of `rows` rows of `columns` values.
    void (*transformValues)(const TileShape& shape, const float* values, int columns, int rows,
                            float* work, float* spectrum);

    /// The forward row passes behind transformColumns(), with what comes out rounded to half
    /// precision (IEEE 754 binary16) in multiples of `unit`; at most 65504 of them. `halves` holds
    /// shape.floats(), `line` shape.lineFloats(). Returns the sum of the squares of what rounding
    /// took or added.
    double (*keepRows)(const TileShape& shape, const float* work, float unit, float* line,
                       std::uint16_t* halves);

    /// The forward row passes behind transformColumns(), the multiplication with the conjugate of
    /// `needle`, and the backward row passes for the first `columns` columns, all in `work`.
    void (*correlateRows)(const TileShape& shape, const float* needle, int columns, float* line,
                          float* work);

    /// The same from the rows that keepRows() kept; `work` is only written.
    void (*correlateKeptRows)(const TileShape& shape, const std::uint16_t* halves, float unit,
                              const float* needle, int columns, float* line, float* work);

    /// Does the backward column passes and judges all positions. Returns the number of candidates.
    std::size_t (*judge)(const TileJudgement& judgement);

    /// Exact sums of needle * (value + 1) and of (value + 1)^2 under the mask.
    ExactSums (*exactSums)(const std::uint8_t* pixels, std::ptrdiff_t stride,
                           const ExactNeedle& needle);
};

/// What instruction sets the kernels can use. The results of a search are the same with all.
enum class InstructionSet { Baseline, Avx2, Avx512 };

/// Whether this processor has them and the kernels were built for them.
bool isSupported(InstructionSet set);

/// The kernels in use: the best that the processor supports, or what was set.
const TileKernels& tileKernels();

/// For tests and diagnosis: uses the kernels of `set`, or the best if it is not supported, in the
/// whole process from the next search on.
void setInstructionSet(InstructionSet set);
/// Back to the best that the processor supports.
void setBestInstructionSet();

}  // namespace Tamrix::Vision
