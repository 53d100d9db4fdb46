#include "vision/search/fastcorrelation/transformplan.h"

#include <cmath>
#include <stdexcept>
#include <string>

namespace Tamrix::Vision {
namespace {

// The radices of the passes, the odd ones first: the last passes are those with short spans, where
// radix 4 is at its best.
std::vector<int> radicesOf(int length) {
    std::vector<int> radices;
    int rest = length;
    for (const int radix : {5, 3}) {
        for (; rest > 1 && rest % radix == 0; rest /= radix)
            radices.push_back(radix);
    }
    std::vector<int> fours;
    for (; rest > 1 && rest % 4 == 0; rest /= 4)
        fours.push_back(4);
    if (rest == 2) {
        radices.push_back(2);
        rest = 1;
    }
    if (rest != 1)
        throw std::invalid_argument("No transform of length " + std::to_string(length));
    radices.insert(radices.end(), fours.begin(), fours.end());
    return radices;
}

}  // namespace

TransformPlan::TransformPlan(int length) : m_length(length) {
    const std::vector<int> radices = radicesOf(length);
    std::vector<std::size_t> starts;
    int span = length;
    for (const int radix : radices) {
        starts.push_back(m_twiddles.size());
        for (int j = 0; j < span / radix; ++j) {
            for (int k = 1; k < radix; ++k) {
                const double angle = -2 * M_PI * j * k / span;
                m_twiddles.push_back(static_cast<float>(std::cos(angle)));
                m_twiddles.push_back(static_cast<float>(std::sin(angle)));
            }
        }
        m_passes.push_back({radix, span, nullptr});
        span /= radix;
    }
    for (std::size_t i = 0; i < m_passes.size(); ++i)
        m_passes[i].twiddles = m_twiddles.data() + starts[i];
}

}  // namespace Tamrix::Vision
