#include "vision/correlation/tilekernels.h"

#include <atomic>

namespace Tamrix::Vision {

namespace KernelsBaseline {
extern const TileKernels kernels;
}
#ifdef TAMRIX_KERNELS_AVX2
namespace KernelsAvx2 {
extern const TileKernels kernels;
}
#endif

namespace {

const TileKernels* best() {
#ifdef TAMRIX_KERNELS_AVX2
    if (isSupported(InstructionSet::Avx2))
        return &KernelsAvx2::kernels;
#endif
    return &KernelsBaseline::kernels;
}

std::atomic<const TileKernels*>& current() {
    static std::atomic<const TileKernels*> s_current{best()};
    return s_current;
}

}  // namespace

bool isSupported(InstructionSet set) {
    if (set == InstructionSet::Baseline)
        return true;
#ifdef TAMRIX_KERNELS_AVX2
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
#else
    return false;
#endif
}

const TileKernels& tileKernels() {
    return *current().load(std::memory_order_relaxed);
}

void setInstructionSet(InstructionSet set) {
    current() = set == InstructionSet::Baseline ? &KernelsBaseline::kernels : best();
}

}  // namespace Tamrix::Vision
