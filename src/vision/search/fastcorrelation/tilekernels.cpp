#include "vision/search/fastcorrelation/tilekernels.h"

#include <cpuid.h>

#include <algorithm>
#include <array>
#include <atomic>

namespace Tamrix::Vision {

namespace KernelsBaseline {
extern const TileKernels kernels;
}
#ifdef TAMRIX_KERNELS_AVX2
namespace KernelsAvx2 {
extern const TileKernels kernels;
}
namespace KernelsAvx512 {
extern const TileKernels kernels;
}
#endif

namespace {

#ifdef TAMRIX_KERNELS_AVX2
// Not all compilers' __builtin_cpu_supports() know of it.
bool hasHalfPrecision() {
    unsigned a = 0;
    unsigned b = 0;
    unsigned c = 0;
    unsigned d = 0;
    return __get_cpuid(1, &a, &b, &c, &d) && (c & bit_F16C);
}
#endif

struct Choice {
    InstructionSet set;
    const TileKernels* kernels;
    bool isSupported;
};

// From the best set down.
const auto& choices() {
    static const auto s_choices = std::array{
#ifdef TAMRIX_KERNELS_AVX2
        Choice{InstructionSet::Avx512, &KernelsAvx512::kernels,
               __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
                   __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("fma")},
        Choice{
            InstructionSet::Avx2, &KernelsAvx2::kernels,
            __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") && hasHalfPrecision()},
#endif
        Choice{InstructionSet::Baseline, &KernelsBaseline::kernels, true},
    };
    return s_choices;
}

const TileKernels* best() {
    return std::find_if(choices().begin(), choices().end(),
                        [](const Choice& each) { return each.isSupported; })
        ->kernels;
}

std::atomic<const TileKernels*>& current() {
    static std::atomic<const TileKernels*> s_current{best()};
    return s_current;
}

const Choice* choiceOf(InstructionSet set) {
    const auto* const choice =
        std::find_if(choices().begin(), choices().end(),
                     [set](const Choice& each) { return each.set == set && each.isSupported; });
    return choice == choices().end() ? nullptr : choice;
}

}  // namespace

bool isSupported(InstructionSet set) {
    return choiceOf(set);
}

const TileKernels& tileKernels() {
    return *current().load(std::memory_order_relaxed);
}

void setInstructionSet(InstructionSet set) {
    const Choice* const choice = choiceOf(set);
    current() = choice ? choice->kernels : best();
}

void setBestInstructionSet() {
    current() = best();
}

}  // namespace Tamrix::Vision
