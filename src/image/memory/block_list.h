// A list of blocks, linked through the blocks: each is on one list at most and knows which.
// Held under the image lock.
#pragma once

#include "image/memory/mem_block_allocator.h"

namespace brushwork {

class BlockList {
  public:
    BlockList() = default;
    BlockList(const BlockList&) = delete;
    BlockList& operator=(const BlockList&) = delete;

    // Each takes the block off the list it is on.
    void pushFront(BworkMemBlockAllocator& block);
    void pushBack(BworkMemBlockAllocator& block);
    // Does nothing for a block on no list.
    static void leave(BworkMemBlockAllocator& block);

    [[nodiscard]] BworkMemBlockAllocator* head() const { return head_; }
    [[nodiscard]] BworkMemBlockAllocator* tail() const { return tail_; }
    [[nodiscard]] static BworkMemBlockAllocator* next(const BworkMemBlockAllocator& block) {
        return block.next_;
    }
    [[nodiscard]] static BworkMemBlockAllocator* previous(const BworkMemBlockAllocator& block) {
        return block.prev_;
    }
    [[nodiscard]] bool holds(const BworkMemBlockAllocator& block) const {
        return block.list_ == this;
    }

  private:
    BworkMemBlockAllocator* head_ = nullptr;
    BworkMemBlockAllocator* tail_ = nullptr;
};

}  // namespace brushwork
