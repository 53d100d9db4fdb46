// Compiled for processors with AVX2; see pixelkernels.cpp for who calls it.
#include <immintrin.h>

#include "vision/search/pixelkernelsloops.h"

namespace Tamrix::Vision {

namespace {

/// Eight pixels.
class Pixels {
public:
    static constexpr int size = 8;
    static constexpr unsigned fullMask = 0xff;

    static Pixels all(quint32 value) { return _mm256_set1_epi32(static_cast<int>(value)); }
    static Pixels load(const quint32* pixels) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels));
    }
    Pixels operator|(Pixels other) const { return _mm256_or_si256(m_pixels, other.m_pixels); }
    Pixels equals(Pixels other) const { return _mm256_cmpeq_epi32(m_pixels, other.m_pixels); }
    Pixels clamped(Pixels low, Pixels high) const {
        return _mm256_min_epu8(_mm256_max_epu8(m_pixels, low.m_pixels), high.m_pixels);
    }
    unsigned pixelMask() const {
        return static_cast<unsigned>(_mm256_movemask_ps(_mm256_castsi256_ps(m_pixels)));
    }

private:
    Pixels(__m256i pixels) : m_pixels(pixels) {}  // NOLINT: a short way for the lines above

    __m256i m_pixels;
};

constexpr PixelKernels avx2Kernels = kernelsOf<Pixels>();

}  // namespace

const PixelKernels& avx2PixelKernels();

const PixelKernels& avx2PixelKernels() {
    return avx2Kernels;
}

}  // namespace Tamrix::Vision
