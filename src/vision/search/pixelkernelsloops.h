#pragma once

#include <algorithm>
#include <cstring>

#include "vision/search/pixelkernels.h"

// The loops of pixelkernels.h over any kind of vector. Included by one source for each kind, which
// is compiled for processors that have it; so everything here is local to the source, and nothing
// of it may be shared with code for other processors.
namespace Tamrix::Vision {
namespace {

inline bool isWithin(quint32 pixel, PixelBounds bounds) {
    for (int shift = 0; shift < 32; shift += 8) {
        const quint32 byte = pixel >> shift & 0xff;
        if (byte < (bounds.low >> shift & 0xff) || byte > (bounds.high >> shift & 0xff))
            return false;
    }
    return true;
}

/// Compares pixels with one value.
template <typename Vector>
class EqualTo {
public:
    explicit EqualTo(quint32 value) : m_value(value), m_values(Vector::all(value)) {}
    bool holds(quint32 pixel) const { return pixel == m_value; }
    /// All bits are set where it holds.
    Vector holds(Vector pixels) const { return pixels.equals(m_values); }

private:
    quint32 m_value;
    Vector m_values;
};

/// Compares pixels with bounds.
template <typename Vector>
class Within {
public:
    explicit Within(PixelBounds bounds)
        : m_bounds(bounds), m_low(Vector::all(bounds.low)), m_high(Vector::all(bounds.high)) {}
    bool holds(quint32 pixel) const { return isWithin(pixel, m_bounds); }
    Vector holds(Vector pixels) const { return pixels.clamped(m_low, m_high).equals(pixels); }

private:
    PixelBounds m_bounds;
    Vector m_low;
    Vector m_high;
};

template <typename Vector, typename Test>
int find(const quint32* first, Test firstTest, const quint32* second, Test secondTest, int count,
         int* indices) {
    // Most of a picture holds no candidate: four vectors go through one test.
    constexpr int group = 4;
    constexpr int step = group * Vector::size;
    int found = 0;
    int i = 0;
    for (; i + step <= count; i += step) {
        const quint32* const pixels = first + i;
        const Vector hits[group] = {
            firstTest.holds(Vector::load(pixels)),
            firstTest.holds(Vector::load(pixels + Vector::size)),
            firstTest.holds(Vector::load(pixels + 2 * Vector::size)),
            firstTest.holds(Vector::load(pixels + 3 * Vector::size)),
        };
        if (!((hits[0] | hits[1]) | (hits[2] | hits[3])).pixelMask())
            continue;
        for (int k = 0; k < group; ++k) {
            unsigned mask = hits[k].pixelMask();
            if (!mask)
                continue;
            const int start = i + k * Vector::size;
            mask &= secondTest.holds(Vector::load(second + start)).pixelMask();
            for (; mask; mask &= mask - 1)
                indices[found++] = start + __builtin_ctz(mask);
        }
    }
    for (; i < count; ++i) {
        if (firstTest.holds(first[i]) && secondTest.holds(second[i]))
            indices[found++] = i;
    }
    return found;
}

template <typename Vector>
int findEqual(const quint32* first, quint32 firstValue, const quint32* second, quint32 secondValue,
              int count, int* indices) {
    using Test = EqualTo<Vector>;
    return find<Vector>(first, Test(firstValue), second, Test(secondValue), count, indices);
}

template <typename Vector>
int findWithin(const quint32* first, PixelBounds firstBounds, const quint32* second,
               PixelBounds secondBounds, int count, int* indices) {
    using Test = Within<Vector>;
    return find<Vector>(first, Test(firstBounds), second, Test(secondBounds), count, indices);
}

template <typename Vector>
bool allWithin(const quint32* pixels, const quint32* low, const quint32* high, int count) {
    int i = 0;
    for (; i + Vector::size <= count; i += Vector::size) {
        const Vector vector = Vector::load(pixels + i);
        const Vector clamped = vector.clamped(Vector::load(low + i), Vector::load(high + i));
        if (clamped.equals(vector).pixelMask() != Vector::fullMask)
            return false;
    }
    for (; i < count; ++i) {
        if (!isWithin(pixels[i], {low[i], high[i]}))
            return false;
    }
    return true;
}

template <typename Vector>
constexpr PixelKernels kernelsOf() {
    return {findEqual<Vector>, findWithin<Vector>, allWithin<Vector>};
}

}  // namespace
}  // namespace Tamrix::Vision
