// znTiledImage::MemoryManager: the blocks of filled tiles, from the pages of the memory manager.
#pragma once

#include <cstddef>

namespace brushwork::znTiledImage {

// One in the process, made on first use. It relies on the page allocator's lock: any thread.
class MemoryManager {
  public:
    [[nodiscard]] static MemoryManager& instance();

    MemoryManager() = default;
    MemoryManager(const MemoryManager&) = delete;
    MemoryManager& operator=(const MemoryManager&) = delete;
    virtual ~MemoryManager();

    // A page of 65536 bytes out of the reserve, whatever the size: a tile of one channel has the
    // same block as one of four. Pages of smart images may be evicted for it. Null: no memory, or a
    // size that no page holds.
    [[nodiscard]] virtual void* allocate(std::size_t size);
    // Null is ignored.
    virtual void release(void* pointer);
};

// What the process has.
class MemoryManagerImpl final : public MemoryManager {
  public:
    ~MemoryManagerImpl() override;
};

}  // namespace brushwork::znTiledImage
