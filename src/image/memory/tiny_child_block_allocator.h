// A block of 2 MiB for one small size. It has no block until an element is first asked for, and
// gives it back with its last element: empty, but alive. Its owner's lock is held around each call.
#pragma once

#include "image/memory/block_source.h"
#include "image/memory/mem_block_allocator.h"

namespace brushwork {

class BworkTinyChildBlockAllocator : public BworkMemBlockAllocator {
  public:
    // `source` outlives it.
    BworkTinyChildBlockAllocator(BlockSource& source, std::uint32_t elementSize);
    // A block that it still has goes back.
    ~BworkTinyChildBlockAllocator() override;

    // Null also if there is no block to be had.
    [[nodiscard]] void* allocate() override;
    bool release(void* element) override;

    [[nodiscard]] bool hasBlock() const { return base() != nullptr; }

  private:
    void giveBack();

    BlockSource& source_;
    std::uint32_t size_;
};

}  // namespace brushwork
