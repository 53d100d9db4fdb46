#pragma once

#include <vector>

namespace Tamrix::Vision {

/// How a complex transform of one length is done: passes of small radices, without reordering. The
/// forward passes leave the spectrum in an order of their own; the backward passes undo it.
class TransformPlan {
public:
    struct Pass {
        int radix;
        /// Number of values that one group of this pass spans.
        int span;
        /// For each j below span / radix the factors k = 1 ... radix - 1, each as cosine and sine
        /// of -2 pi j k / span.
        const float* twiddles;
    };

    /// A plan for `length`, which has no prime factor above 5. Throws std::invalid_argument for
    /// another length.
    explicit TransformPlan(int length);
    TransformPlan(TransformPlan&&) = default;
    TransformPlan(const TransformPlan&) = delete;
    TransformPlan& operator=(const TransformPlan&) = delete;

    int length() const { return m_length; }
    const Pass* passes() const { return m_passes.data(); }
    int passCount() const { return static_cast<int>(m_passes.size()); }

private:
    int m_length;
    std::vector<float> m_twiddles;
    std::vector<Pass> m_passes;
};

}  // namespace Tamrix::Vision
