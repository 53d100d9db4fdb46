#pragma once

#include <immintrin.h>

#include <cstdint>

// Vectors of neighbouring columns for the kernels, which are compiled for several instruction sets.
// Everything stands in a namespace of the instruction set: an inline function that was compiled for
// one must never be taken for the other's when the program is linked. For the same reason nothing
// of the standard library with code in its headers is used here.
#if defined(__AVX512F__) && defined(__AVX512DQ__) && defined(__AVX512VL__)
#define TAMRIX_AVX512
#define TAMRIX_KERNELS KernelsAvx512
#elif defined(__AVX2__)
#define TAMRIX_KERNELS KernelsAvx2
#else
#define TAMRIX_KERNELS KernelsBaseline
#endif

namespace Tamrix::Vision::TAMRIX_KERNELS {

#ifdef __AVX2__
constexpr int lanes = 8;
#else
constexpr int lanes = 4;
#endif

using Floats = float __attribute__((vector_size(lanes * 4)));
using Integers = std::int32_t __attribute__((vector_size(lanes * 4)));
using Words = std::uint32_t __attribute__((vector_size(lanes * 4)));

inline Floats load(const float* from) {
    Floats value;
    __builtin_memcpy(&value, from, sizeof value);
    return value;
}

inline void store(float* to, Floats value) {
    __builtin_memcpy(to, &value, sizeof value);
}

inline Words loadWords(const std::uint32_t* from) {
    Words value;
    __builtin_memcpy(&value, from, sizeof value);
    return value;
}

inline Floats all(float value) {
    return value - Floats{};
}

inline Floats floatsOf(Words value) {
    return __builtin_convertvector(value, Floats);
}

inline Floats floatsOfSmall(Words value) {
    return __builtin_convertvector(reinterpret_cast<Integers>(value), Floats);
}

inline Floats greater(Floats a, Floats b) {
    return a > b ? a : b;
}
inline Floats lesser(Floats a, Floats b) {
    return a < b ? a : b;
}

#ifdef __AVX2__

inline Floats floatsOfHalves(const std::uint16_t* from) {
    return _mm256_cvtph_ps(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from)));
}

inline void storeAsHalves(std::uint16_t* to, Floats value) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to),
                     _mm256_cvtps_ph(value, _MM_FROUND_TO_NEAREST_INT));
}

inline Floats loadBytes(const std::uint8_t* from) {
    const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from));
    return _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(bytes));
}

/// One bit for each lane whose comparison held.
inline unsigned bitsOf(Integers comparison) {
#ifdef TAMRIX_AVX512
    return _mm256_movepi32_mask(reinterpret_cast<__m256i>(comparison));
#else
    return static_cast<unsigned>(_mm256_movemask_ps(reinterpret_cast<__m256>(comparison)));
#endif
}

inline void transpose(Floats* r) {
    const __m256 t0 = _mm256_unpacklo_ps(r[0], r[1]), t1 = _mm256_unpackhi_ps(r[0], r[1]);
    const __m256 t2 = _mm256_unpacklo_ps(r[2], r[3]), t3 = _mm256_unpackhi_ps(r[2], r[3]);
    const __m256 t4 = _mm256_unpacklo_ps(r[4], r[5]), t5 = _mm256_unpackhi_ps(r[4], r[5]);
    const __m256 t6 = _mm256_unpacklo_ps(r[6], r[7]), t7 = _mm256_unpackhi_ps(r[6], r[7]);
    const __m256 u0 = _mm256_shuffle_ps(t0, t2, 0x44), u1 = _mm256_shuffle_ps(t0, t2, 0xEE);
    const __m256 u2 = _mm256_shuffle_ps(t1, t3, 0x44), u3 = _mm256_shuffle_ps(t1, t3, 0xEE);
    const __m256 u4 = _mm256_shuffle_ps(t4, t6, 0x44), u5 = _mm256_shuffle_ps(t4, t6, 0xEE);
    const __m256 u6 = _mm256_shuffle_ps(t5, t7, 0x44), u7 = _mm256_shuffle_ps(t5, t7, 0xEE);
    r[0] = _mm256_permute2f128_ps(u0, u4, 0x20);
    r[1] = _mm256_permute2f128_ps(u1, u5, 0x20);
    r[2] = _mm256_permute2f128_ps(u2, u6, 0x20);
    r[3] = _mm256_permute2f128_ps(u3, u7, 0x20);
    r[4] = _mm256_permute2f128_ps(u0, u4, 0x31);
    r[5] = _mm256_permute2f128_ps(u1, u5, 0x31);
    r[6] = _mm256_permute2f128_ps(u2, u6, 0x31);
    r[7] = _mm256_permute2f128_ps(u3, u7, 0x31);
}

#else

/// What brings the exponent of half precision to single precision's.
constexpr float halfExponent = 0x1p112F;

inline Floats floatsOfHalves(const std::uint16_t* from) {
    const __m128i value = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from));
    const __m128i half = _mm_unpacklo_epi16(value, _mm_setzero_si128());
    const __m128i sign = _mm_slli_epi32(_mm_and_si128(half, _mm_set1_epi32(0x8000)), 16);
    const __m128i rest = _mm_slli_epi32(_mm_and_si128(half, _mm_set1_epi32(0x7fff)), 13);
    const __m128 scaled = _mm_mul_ps(_mm_castsi128_ps(rest), _mm_set1_ps(halfExponent));
    return _mm_or_ps(scaled, _mm_castsi128_ps(sign));
}

inline void storeAsHalves(std::uint16_t* to, Floats value) {
    const __m128i bits = _mm_castps_si128(value);
    const __m128i sign = _mm_and_si128(_mm_srai_epi32(bits, 16), _mm_set1_epi32(-0x8000));
    const __m128 size = _mm_and_ps(value, _mm_castsi128_ps(_mm_set1_epi32(0x7fffffff)));
    const __m128i scaled = _mm_castps_si128(_mm_mul_ps(size, _mm_set1_ps(1 / halfExponent)));
    // To the nearest, and in the middle to the even one.
    const __m128i odd = _mm_and_si128(_mm_srli_epi32(scaled, 13), _mm_set1_epi32(1));
    const __m128i rounded =
        _mm_srli_epi32(_mm_add_epi32(_mm_add_epi32(scaled, odd), _mm_set1_epi32(0x0fff)), 13);
    const __m128i half = _mm_or_si128(rounded, sign);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to), _mm_packs_epi32(half, half));
}

inline Floats loadBytes(const std::uint8_t* from) {
    int bytes;
    __builtin_memcpy(&bytes, from, sizeof bytes);
    const __m128i zero = _mm_setzero_si128();
    const __m128i halves = _mm_unpacklo_epi8(_mm_cvtsi32_si128(bytes), zero);
    return _mm_cvtepi32_ps(_mm_unpacklo_epi16(halves, zero));
}

/// One bit for each lane whose comparison held.
inline unsigned bitsOf(Integers comparison) {
    return static_cast<unsigned>(_mm_movemask_ps(reinterpret_cast<__m128>(comparison)));
}

inline void transpose(Floats* r) {
    _MM_TRANSPOSE4_PS(r[0], r[1], r[2], r[3]);
}

#endif

#ifdef TAMRIX_AVX512

/// Complex numbers, one in each lane: the real parts, then the imaginary parts in one register.
struct Complex {
    using Parts = float __attribute__((vector_size(lanes * 8)));
    Parts parts;
};

/// A complex number that all lanes are multiplied with.
struct Factor {
    Complex::Parts re;
    Complex::Parts im;  ///< with the sign that each part takes
};

inline Complex::Parts both(float re, float im) {
    return Complex::Parts{re, re, re, re, re, re, re, re, im, im, im, im, im, im, im, im};
}

inline Complex::Parts swapped(Complex a) {
    return __builtin_shufflevector(a.parts, a.parts, 8, 9, 10, 11, 12, 13, 14, 15, 0, 1, 2, 3, 4, 5,
                                   6, 7);
}

inline Complex loadComplex(const float* from) {
    Complex value;
    __builtin_memcpy(&value, from, sizeof value);
    return value;
}

inline void store(float* to, Complex value) {
    __builtin_memcpy(to, &value, sizeof value);
}

/// Half precision in the layout of store().
inline Complex loadHalves(const std::uint16_t* from) {
    return {_mm512_cvtph_ps(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(from)))};
}

inline void storeHalves(std::uint16_t* to, Complex value) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to),
                        _mm512_cvtps_ph(value.parts, _MM_FROUND_TO_NEAREST_INT));
}

inline Complex squaredParts(Complex a) {
    return {a.parts * a.parts};
}

inline float sumOfParts(Complex a) {
    float sum = 0;
    for (int k = 0; k < lanes * 2; ++k)
        sum += a.parts[k];
    return sum;
}

inline Complex operator+(Complex a, Complex b) {
    return {a.parts + b.parts};
}
inline Complex operator-(Complex a, Complex b) {
    return {a.parts - b.parts};
}
inline Complex operator*(float a, Complex b) {
    return {a * b.parts};
}

inline Factor factorOf(float re, float im) {
    return {both(re, re), both(-im, im)};
}

inline Complex multiplied(Complex a, Factor b) {
    return {a.parts * b.re + swapped(a) * b.im};
}

inline Complex multipliedByConjugate(Complex a, Factor b) {
    return {a.parts * b.re - swapped(a) * b.im};
}

inline Complex multipliedByConjugate(Complex a, Complex b) {
    const Complex::Parts re =
        __builtin_shufflevector(b.parts, b.parts, 0, 1, 2, 3, 4, 5, 6, 7, 0, 1, 2, 3, 4, 5, 6, 7);
    const Complex::Parts im = __builtin_shufflevector(b.parts, b.parts, 8, 9, 10, 11, 12, 13, 14,
                                                      15, 8, 9, 10, 11, 12, 13, 14, 15);
    return {a.parts * re + swapped(a) * both(1, -1) * im};
}

inline Complex timesI(Complex a) {
    return {swapped(a) * both(-1, 1)};
}
inline Complex timesMinusI(Complex a) {
    return {swapped(a) * both(1, -1)};
}

#else

/// Complex numbers, one in each lane.
struct Complex {
    Floats re;
    Floats im;
};

/// A complex number that all lanes are multiplied with.
using Factor = Complex;

inline Complex loadComplex(const float* from) {
    return {load(from), load(from + lanes)};
}

inline void store(float* to, Complex value) {
    store(to, value.re);
    store(to + lanes, value.im);
}

/// Half precision in the layout of store().
inline Complex loadHalves(const std::uint16_t* from) {
    return {floatsOfHalves(from), floatsOfHalves(from + lanes)};
}

inline void storeHalves(std::uint16_t* to, Complex value) {
    storeAsHalves(to, value.re);
    storeAsHalves(to + lanes, value.im);
}

inline Complex squaredParts(Complex a) {
    return {a.re * a.re, a.im * a.im};
}

inline float sumOfParts(Complex a) {
    float sum = 0;
    for (int k = 0; k < lanes; ++k)
        sum += a.re[k] + a.im[k];
    return sum;
}

inline Complex operator+(Complex a, Complex b) {
    return {a.re + b.re, a.im + b.im};
}
inline Complex operator-(Complex a, Complex b) {
    return {a.re - b.re, a.im - b.im};
}
inline Complex operator*(float a, Complex b) {
    return {a * b.re, a * b.im};
}

inline Factor factorOf(float re, float im) {
    return {all(re), all(im)};
}

inline Complex multiplied(Complex a, Factor b) {
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

inline Complex multipliedByConjugate(Complex a, Complex b) {
    return {a.re * b.re + a.im * b.im, a.im * b.re - a.re * b.im};
}

inline Complex timesI(Complex a) {
    return {-a.im, a.re};
}
inline Complex timesMinusI(Complex a) {
    return {a.im, -a.re};
}

#endif

}  // namespace Tamrix::Vision::TAMRIX_KERNELS
