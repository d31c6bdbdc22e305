#include "image/memory/tiny_child_block_allocator.h"

namespace brushwork {

BworkTinyChildBlockAllocator::BworkTinyChildBlockAllocator(BlockSource& source,
                                                           std::uint32_t elementSize)
    : BworkMemBlockAllocator(nullptr, BlockSource::blockBytes, elementSize),
      source_(source),
      size_(elementSize) {}

BworkTinyChildBlockAllocator::~BworkTinyChildBlockAllocator() {
    if (hasBlock()) giveBack();
}

void* BworkTinyChildBlockAllocator::allocate() {
    if (!hasBlock()) {
        void* const block = source_.takeBlock();
        if (!block) return nullptr;
        setBase(block);
        cut(size_, nullptr);
    }
    return BworkMemBlockAllocator::allocate();
}

bool BworkTinyChildBlockAllocator::release(void* element) {
    if (!BworkMemBlockAllocator::release(element)) return false;
    if (usedCount() == 0) giveBack();
    return true;
}

void BworkTinyChildBlockAllocator::giveBack() {
    void* const block = base();
    setBase(nullptr);
    source_.giveBlock(block);
}

}  // namespace brushwork
