#include "image/memory/object_pool.h"

#include <cstring>
#include <new>

#include "image/memory/allocation_gate.h"

namespace brushwork {

ObjectPool::ObjectPool(std::size_t elementSize, std::uint32_t capacityPerChunk,
                       const platform::AllocRoutes& runtime)
    : elementSize_((elementSize + 7) / 8 * 8),
      capacityPerChunk_(capacityPerChunk),
      runtime_(runtime) {
    if (elementSize_ == 0) elementSize_ = 8;
    if (capacityPerChunk_ == 0) capacityPerChunk_ = 1;
    chunkBytes_ = sizeof(Chunk) + elementSize_ * capacityPerChunk_;
}

ObjectPool::~ObjectPool() {
    while (chunks_) {
        Chunk* const next = chunks_->nextChunk;
        platform::routedRelease(chunks_);
        chunks_ = next;
    }
}

void* ObjectPool::takePlace() {
    void* place = nullptr;
    if (freeList_) {
        place = freeList_;
        std::memcpy(&freeList_, place, sizeof freeList_);
    } else if (chunks_ && chunks_->usedInChunk < capacityPerChunk_) {
        place = reinterpret_cast<std::uint8_t*>(chunks_ + 1) + chunks_->usedInChunk * elementSize_;
        ++chunks_->usedInChunk;
    } else {
        return nullptr;
    }
    ++usedCount_;
    --freeCount_;
    return place;
}

ObjectPool::Chunk* ObjectPool::makeChunk() const {
    void* memory = runtime_.allocate(chunkBytes_);
    if (!memory) memory = platform::routedAllocate(chunkBytes_);
    return memory ? new (memory) Chunk{0, nullptr} : nullptr;
}

void ObjectPool::link(Chunk* chunk) {
    chunk->nextChunk = chunks_;
    chunks_ = chunk;
    totalBytes_ += chunkBytes_;
    freeCount_ += capacityPerChunk_;
}

void* ObjectPool::allocate() {
    if (allocationRefused()) return nullptr;
    {
        const std::lock_guard guard(lock_);
        if (void* const place = takePlace()) return place;
    }
    // Memory is got without the pool's lock, as general allocation has locks of its own; another
    // thread may have brought a chunk meanwhile.
    Chunk* const chunk = makeChunk();
    void* place = nullptr;
    bool spare = chunk != nullptr;
    {
        const std::lock_guard guard(lock_);
        place = takePlace();
        if (!place && chunk) {
            link(chunk);
            spare = false;
            place = takePlace();
        }
    }
    if (spare) platform::routedRelease(chunk);
    return place;
}

bool ObjectPool::release(void* object) {
    const std::lock_guard guard(lock_);
    std::memcpy(object, &freeList_, sizeof freeList_);
    freeList_ = object;
    --usedCount_;
    ++freeCount_;
    return true;
}

std::size_t ObjectPool::usedCount() const {
    const std::lock_guard guard(lock_);
    return usedCount_;
}

std::size_t ObjectPool::freeCount() const {
    const std::lock_guard guard(lock_);
    return freeCount_;
}

std::size_t ObjectPool::totalBytes() const {
    const std::lock_guard guard(lock_);
    return totalBytes_;
}

}  // namespace brushwork
