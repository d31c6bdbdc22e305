#include <sys/mman.h>

#include <cstdint>
#include <limits>

#include "platform/page_memory.h"

namespace brushwork::platform {
namespace {

constexpr std::size_t hugePage = std::size_t{2} << 20;

}  // namespace

void* takePageMemory(std::size_t bytes) noexcept {
    if (bytes == 0 || bytes > std::numeric_limits<std::size_t>::max() / 2) return nullptr;
    // One huge page more than asked for, of which the ends beyond the aligned part go back.
    const std::size_t rounded = (bytes + 0xFFF) & ~std::size_t{0xFFF};
    const std::size_t mapped = rounded + hugePage;
    void* const raw =
        mmap(nullptr, mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (raw == MAP_FAILED) return nullptr;
    auto* const start = static_cast<std::uint8_t*>(raw);
    const std::size_t misplaced = reinterpret_cast<std::uintptr_t>(raw) & (hugePage - 1);
    const std::size_t before = misplaced == 0 ? 0 : hugePage - misplaced;
    if (before != 0) munmap(start, before);
    munmap(start + before + rounded, mapped - before - rounded);
#if defined(MADV_HUGEPAGE)
    madvise(start + before, rounded, MADV_HUGEPAGE);  // only advice: it may fail
#endif
    return start + before;
}

void givePageMemory(void* block, std::size_t bytes) noexcept {
    if (block) munmap(block, (bytes + 0xFFF) & ~std::size_t{0xFFF});
}

}  // namespace brushwork::platform
