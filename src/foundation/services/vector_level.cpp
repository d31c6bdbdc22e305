#include "foundation/services/vector_level.h"

#include <algorithm>
#include <atomic>

namespace brushwork {
namespace {

VectorLevel widestLevel() noexcept {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")) return VectorLevel::Avx2;
    if (__builtin_cpu_supports("sse2")) return VectorLevel::Sse2;
#endif
    return VectorLevel::Scalar;
}

std::atomic<VectorLevel>& currentLevel() noexcept {
    static std::atomic<VectorLevel> level{widestLevel()};
    return level;
}

thread_local VectorLevel lastForm = VectorLevel::Scalar;

}  // namespace

VectorLevel vectorLevel() noexcept {
    return currentLevel().load(std::memory_order_relaxed);
}

void forceVectorLevel(VectorLevel level) noexcept {
    static const VectorLevel widest = widestLevel();
    currentLevel().store(std::min(level, widest), std::memory_order_relaxed);
}

const char* vectorLevelName(VectorLevel level) noexcept {
    switch (level) {
        case VectorLevel::Sse2: return "sse2";
        case VectorLevel::Avx2: return "avx2";
        default: return "scalar";
    }
}

void noteKernelForm(VectorLevel form) noexcept {
    lastForm = form;
}

VectorLevel lastKernelForm() noexcept {
    return lastForm;
}

}  // namespace brushwork
