// All memory of one small size: children of 2 MiB each, in the order of their addresses.
//
// It has a lock of its own, so that small allocations don't wait for page traffic. Lock order: who
// holds the image lock may call in here; in here the image lock is never taken, nor anything
// asked of the block source, while the own lock is held. Any thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "image/memory/tiny_child_block_allocator.h"

namespace brushwork {

class BworkTinyBlockAllocator {
  public:
    struct ChildFigures {
        std::uint32_t blockSize = 0;
        std::uint32_t elementCount = 0;
        std::int32_t usedCount = 0;
        std::uintptr_t base = 0;  // 0: without a block
    };

    // Both outlive it; `bypass` counts the open scopes of allocations for itself.
    BworkTinyBlockAllocator(BlockSource& source, std::uint32_t elementSize,
                            std::atomic<std::int32_t>& bypass);
    BworkTinyBlockAllocator(const BworkTinyBlockAllocator&) = delete;
    BworkTinyBlockAllocator& operator=(const BworkTinyBlockAllocator&) = delete;
    virtual ~BworkTinyBlockAllocator();

    [[nodiscard]] virtual void* allocate();
    // False: not an element of this allocator that is in use.
    virtual bool release(void* address);
    [[nodiscard]] virtual bool owns(const void* address) const;

    [[nodiscard]] std::uint32_t elementSize() const { return elementSize_; }
    [[nodiscard]] bool isEmpty() const;  // no element in use
    // Children with a block in address order, then those without.
    [[nodiscard]] std::vector<ChildFigures> figures() const;

  private:
    // Hands a child the block that was got for it before the lock was taken, and keeps the one
    // that a child gives back until the lock is gone.
    class Purse : public BlockSource {
      public:
        void* takeBlock() override { return take(offered_); }
        void giveBlock(void* block) override { returned_ = block; }
        void offer(void* block) { offered_ = block; }
        void* takeReturned() { return take(returned_); }

      private:
        static void* take(void*& slot) {
            void* const block = slot;
            slot = nullptr;
            return block;
        }
        void* offered_ = nullptr;
        void* returned_ = nullptr;
    };

    void* fromChildren();
    void* fromSpare(void* block);
    BworkTinyChildBlockAllocator* spareChild();
    [[nodiscard]] BworkTinyChildBlockAllocator* childOf(const void* address) const;
    [[nodiscard]] bool inRange(const void* address) const;
    void noteRange();

    BlockSource& source_;
    std::uint32_t elementSize_;
    std::atomic<std::int32_t>& bypass_;
    mutable std::recursive_mutex lock_;
    Purse purse_;
    std::vector<std::unique_ptr<BworkTinyChildBlockAllocator>> all_;
    BworkTinyChildBlockAllocator* current_ = nullptr;
    std::vector<BworkTinyChildBlockAllocator*> children_;  // by block address
    std::vector<BworkTinyChildBlockAllocator*> spare_;     // without a block
    // Addresses from lowest up to, not including, highest can be ours. Read without the lock: who
    // holds an element of ours has seen the range widen over it.
    std::atomic<std::uintptr_t> lowest_{0};
    std::atomic<std::uintptr_t> highest_{0};
};

}  // namespace brushwork
