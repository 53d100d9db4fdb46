#pragma once

#include "vision/search/fastcorrelation/lanes.h"
#include "vision/search/fastcorrelation/transformplan.h"

// The transform of one length, done for all lanes of a vector at once.
namespace Tamrix::Vision::TAMRIX_KERNELS {

enum class Direction { Forward, Backward };

/// Floats of one complex vector.
constexpr int step = 2 * lanes;

/// Multiplied with -i on the way forward, with i on the way back.
template <Direction D>
inline Complex turned(Complex a) {
    if constexpr (D == Direction::Forward)
        return timesMinusI(a);
    else
        return timesI(a);
}

/// The transform of R numbers in place.
template <int R, Direction D>
inline void butterfly(Complex* x) {
    if constexpr (R == 2) {
        const Complex sum = x[0] + x[1];
        x[1] = x[0] - x[1];
        x[0] = sum;
    } else if constexpr (R == 3) {
        const Complex sum = x[1] + x[2];
        const Complex middle = x[0] - 0.5F * sum;
        const Complex side = turned<D>(0.86602540378443864676F * (x[1] - x[2]));
        x[0] = x[0] + sum;
        x[1] = middle + side;
        x[2] = middle - side;
    } else if constexpr (R == 4) {
        const Complex a = x[0] + x[2], b = x[0] - x[2];
        const Complex c = x[1] + x[3], d = turned<D>(x[1] - x[3]);
        x[0] = a + c;
        x[1] = b + d;
        x[2] = a - c;
        x[3] = b - d;
    } else {
        static_assert(R == 5);
        constexpr float c1 = 0.30901699437494742410F, c2 = -0.80901699437494742410F;
        constexpr float s1 = 0.95105651629515357212F, s2 = 0.58778525229247312917F;
        const Complex a = x[1] + x[4], b = x[1] - x[4], c = x[2] + x[3], d = x[2] - x[3];
        const Complex m1 = x[0] + c1 * a + c2 * c, m2 = x[0] + c2 * a + c1 * c;
        const Complex n1 = turned<D>(s1 * b + s2 * d), n2 = turned<D>(s2 * b - s1 * d);
        x[0] = x[0] + a + c;
        x[1] = m1 + n1;
        x[4] = m1 - n1;
        x[2] = m2 + n2;
        x[3] = m2 - n2;
    }
}

/// One pass over `length` complex vectors. Forward multiplies behind the butterfly, backward with
/// the conjugate before it.
template <int R, Direction D>
inline void runPass(float* data, int length, const TransformPlan::Pass& pass) {
    const int quarter = pass.span / R;
    for (int j = 0; j < quarter; ++j) {
        Factor factor[R];
        for (int k = 1; k < R; ++k) {
            const float* const twiddle = pass.twiddles + (j * (R - 1) + k - 1) * 2;
            factor[k] = factorOf(twiddle[0], twiddle[1]);
        }
        for (int base = j; base < length; base += pass.span) {
            float* const first = data + static_cast<long>(base) * step;
            const long distance = static_cast<long>(quarter) * step;
            Complex x[R];
            for (int k = 0; k < R; ++k) {
                x[k] = loadComplex(first + k * distance);
                if (D == Direction::Backward && k > 0)
                    x[k] = multipliedByConjugate(x[k], factor[k]);
            }
            butterfly<R, D>(x);
            for (int k = 0; k < R; ++k) {
                const bool multiplies = D == Direction::Forward && k > 0;
                store(first + k * distance, multiplies ? multiplied(x[k], factor[k]) : x[k]);
            }
        }
    }
}

template <Direction D>
inline void runPass(float* data, int length, const TransformPlan::Pass& pass) {
    switch (pass.radix) {
        case 2:
            return runPass<2, D>(data, length, pass);
        case 3:
            return runPass<3, D>(data, length, pass);
        case 4:
            return runPass<4, D>(data, length, pass);
        default:
            return runPass<5, D>(data, length, pass);
    }
}

inline void transformForward(const TransformPlan& plan, float* data) {
    for (int i = 0; i < plan.passCount(); ++i)
        runPass<Direction::Forward>(data, plan.length(), plan.passes()[i]);
}

inline void transformBackward(const TransformPlan& plan, float* data) {
    for (int i = plan.passCount(); --i >= 0;)
        runPass<Direction::Backward>(data, plan.length(), plan.passes()[i]);
}

}  // namespace Tamrix::Vision::TAMRIX_KERNELS
