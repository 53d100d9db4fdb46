#include "vision/search/pixelkernels.h"

#include "vision/search/pixelkernelsloops.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace Tamrix::Vision {

#ifdef TAMRIX_HAVE_AVX2_KERNELS
const PixelKernels& avx2PixelKernels();
#endif

namespace {

#ifdef __SSE2__
/// Four pixels.
class Pixels {
public:
    static constexpr int size = 4;
    static constexpr unsigned fullMask = 0xf;

    static Pixels all(quint32 value) { return _mm_set1_epi32(static_cast<int>(value)); }
    static Pixels load(const quint32* pixels) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels));
    }
    Pixels operator|(Pixels other) const { return _mm_or_si128(m_pixels, other.m_pixels); }
    Pixels equals(Pixels other) const { return _mm_cmpeq_epi32(m_pixels, other.m_pixels); }
    Pixels clamped(Pixels low, Pixels high) const {
        return _mm_min_epu8(_mm_max_epu8(m_pixels, low.m_pixels), high.m_pixels);
    }
    unsigned pixelMask() const {
        return static_cast<unsigned>(_mm_movemask_ps(_mm_castsi128_ps(m_pixels)));
    }

private:
    Pixels(__m128i pixels) : m_pixels(pixels) {}  // NOLINT: a short way for the lines above

    __m128i m_pixels;
};
#else
/// A single pixel, where there are no vectors that we know.
class Pixels {
public:
    static constexpr int size = 1;
    static constexpr unsigned fullMask = 1;

    static Pixels all(quint32 value) { return Pixels(value); }
    static Pixels load(const quint32* pixels) { return Pixels(*pixels); }
    Pixels operator|(Pixels other) const { return Pixels(m_pixel | other.m_pixel); }
    Pixels equals(Pixels other) const { return Pixels(m_pixel == other.m_pixel ? ~0U : 0U); }
    Pixels clamped(Pixels low, Pixels high) const {
        quint32 result = 0;
        for (int shift = 0; shift < 32; shift += 8) {
            const auto byteOf = [&](Pixels pixels) { return pixels.m_pixel >> shift & 0xff; };
            result |= std::min(std::max(byteOf(*this), byteOf(low)), byteOf(high)) << shift;
        }
        return Pixels(result);
    }
    unsigned pixelMask() const { return m_pixel >> 31; }

private:
    explicit Pixels(quint32 pixel) : m_pixel(pixel) {}

    quint32 m_pixel;
};
#endif

constexpr PixelKernels basicKernels = kernelsOf<Pixels>();

}  // namespace

const PixelKernels& basicPixelKernels() {
    return basicKernels;
}

const PixelKernels& pixelKernels() {
#ifdef TAMRIX_HAVE_AVX2_KERNELS
    static const bool s_hasAvx2 = __builtin_cpu_supports("avx2");
    if (s_hasAvx2)
        return avx2PixelKernels();
#endif
    return basicKernels;
}

}  // namespace Tamrix::Vision
