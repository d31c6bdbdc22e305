// Memory for many small records of one size.
//
//     static ObjectPool pool(sizeof(SmartPage));
//     void* place = pool.allocate();  // null: no memory; then no record is built
//     pool.release(place);
//
// The last place given back is the next one given out. Chunks stay until the pool is destroyed,
// which runs no destructor of a record.
#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>

#include "platform/alloc_routes.h"

namespace brushwork {

class ObjectPool {
  public:
    static constexpr std::uint32_t defaultCapacity = 64;

    // Sizes are raised to a multiple of 8 bytes; places are aligned to 8. `runtime` is where
    // chunks come from; if it has none, general allocation is asked.
    explicit ObjectPool(std::size_t elementSize, std::uint32_t capacityPerChunk = defaultCapacity,
                        const platform::AllocRoutes& runtime = platform::runtimeRoutes());
    ObjectPool(const ObjectPool&) = delete;
    ObjectPool& operator=(const ObjectPool&) = delete;
    ~ObjectPool();

    [[nodiscard]] void* allocate();
    // Takes a place of this pool; true always.
    bool release(void* object);

    [[nodiscard]] std::size_t usedCount() const;   // places given out
    [[nodiscard]] std::size_t freeCount() const;   // places that need no new chunk
    [[nodiscard]] std::size_t totalBytes() const;  // in chunks, with their headers
    [[nodiscard]] std::size_t elementSize() const { return elementSize_; }

  private:
    struct Chunk {
        std::size_t usedInChunk;  // places ever taken from it
        Chunk* nextChunk;
    };

    void* takePlace();
    void link(Chunk* chunk);
    Chunk* makeChunk() const;

    std::size_t elementSize_;
    std::uint32_t capacityPerChunk_;
    std::size_t chunkBytes_;
    platform::AllocRoutes runtime_;
    mutable std::mutex lock_;  // innermost: no other lock is taken under it
    void* freeList_ = nullptr;
    Chunk* chunks_ = nullptr;  // newest first
    std::size_t totalBytes_ = 0;
    std::size_t usedCount_ = 0;
    std::size_t freeCount_ = 0;
};

}  // namespace brushwork
