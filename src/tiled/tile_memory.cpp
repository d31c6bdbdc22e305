#include "tiled/tile_memory.h"

#include "image/memory/memory_manager.h"

namespace brushwork::znTiledImage {

MemoryManager& MemoryManager::instance() {
    static MemoryManagerImpl manager;
    return manager;
}

MemoryManager::~MemoryManager() = default;

void* MemoryManager::allocate(std::size_t size) {
    if (size > PageAllocator::bigBytes) return nullptr;
    return BworkMemory::instance().allocateBig(true, true);
}

void MemoryManager::release(void* pointer) {
    if (pointer) BworkMemory::instance().releaseBig(pointer, true);
}

MemoryManagerImpl::~MemoryManagerImpl() = default;

}  // namespace brushwork::znTiledImage
