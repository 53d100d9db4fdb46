#pragma once

#include <immintrin.h>

#include <cstdint>

// Vectors of neighbouring columns for the kernels, which are compiled for several instruction sets.
// Everything stands in a namespace of the instruction set: an inline function that was compiled for
// one must never be taken for the other's when the program is linked. For the same reason nothing
// of the standard library with code in its headers is used here.
#ifdef __AVX2__
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

inline Floats loadBytes(const std::uint8_t* from) {
    const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from));
    return _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(bytes));
}

/// One bit for each lane whose comparison held.
inline unsigned bitsOf(Integers comparison) {
    return static_cast<unsigned>(_mm256_movemask_ps(reinterpret_cast<__m256>(comparison)));
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

/// Complex numbers, one in each lane.
struct Complex {
    Floats re;
    Floats im;
};

inline Complex loadComplex(const float* from) {
    return {load(from), load(from + lanes)};
}

inline void store(float* to, Complex value) {
    store(to, value.re);
    store(to + lanes, value.im);
}

inline Complex operator+(Complex a, Complex b) {
    return {a.re + b.re, a.im + b.im};
}
inline Complex operator-(Complex a, Complex b) {
    return {a.re - b.re, a.im - b.im};
}
inline Complex operator*(Floats a, Complex b) {
    return {a * b.re, a * b.im};
}

inline Complex multiplied(Complex a, Complex b) {
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

inline Complex multipliedByConjugate(Complex a, Complex b) {
    return {a.re * b.re + a.im * b.im, a.im * b.re - a.re * b.im};
}

}  // namespace Tamrix::Vision::TAMRIX_KERNELS
