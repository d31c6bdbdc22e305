#include <windows.h>

#include "platform/page_memory.h"

namespace brushwork::platform {

void* takePageMemory(std::size_t bytes) noexcept {
    if (bytes == 0) return nullptr;
    return VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
}

void givePageMemory(void* block, [[maybe_unused]] std::size_t bytes) noexcept {
    if (block) VirtualFree(block, 0, MEM_RELEASE);
}

}  // namespace brushwork::platform
