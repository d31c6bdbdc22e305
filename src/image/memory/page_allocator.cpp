#include "image/memory/page_allocator.h"

#include "image/memory/bypass_scope.h"
#include "image/memory/page_reclaimer.h"

namespace brushwork {

PageAllocator::PageAllocator(BlockTable& table, Size size, const platform::AllocRoutes& runtime,
                             std::atomic<std::int32_t>& bypass, const std::uint32_t& scopes)
    : table_(table), size_(size), runtime_(runtime), bypass_(bypass), scopes_(scopes) {}

void* PageAllocator::takeFrom(BworkMemBlockAllocator& block) {
    void* const page = block.allocate();
    if (page && block.freeCount() == 0) BlockList::leave(block);
    return page;
}

void* PageAllocator::walk(const BlockList& list) {
    for (auto* block = list.head(); block; block = BlockList::next(*block)) {
        if (void* const page = takeFrom(*block)) {
            current_ = block;
            return page;
        }
    }
    return nullptr;
}

BworkMemBlockAllocator& PageAllocator::adopt(BworkMemBlockAllocator& block, bool reserved) {
    block.cut(pageBytes(), this);
    block.setReserved(reserved);
    (reserved ? reserve_ : partial_).pushFront(block);
    return block;
}

void* PageAllocator::adoptAndTake(BworkMemBlockAllocator* block, bool reserved) {
    if (!block) return nullptr;
    current_ = &adopt(*block, reserved);
    return takeFrom(*block);
}

void* PageAllocator::allocate(bool mayEvict) {
    if (current_ && !current_->isReserved()) {
        if (void* const page = takeFrom(*current_)) return page;
    }
    if (void* const page = walk(partial_)) return page;
    BworkMemBlockAllocator* block = table_.unusedFor(*this);
    if (!block) block = table_.makeForPages(manyBlocks);
    if (void* const page = adoptAndTake(block, false)) return page;
    if (!mayEvict) return nullptr;
    if (void* const page = evict()) return page;
    return runtime_.allocate(pageBytes());
}

void* PageAllocator::allocateReserved(bool mayEvict) {
    if (current_ && current_->isReserved()) {
        if (void* const page = takeFrom(*current_)) return page;
    }
    if (void* const page = walk(reserve_)) return page;
    BworkMemBlockAllocator* block = table_.oldestUnused();
    if (!block) block = table_.makeForPages(manyBlocksForReserve);
    if (!block && mayEvict) block = table_.evacuateAny(false);
    if (void* const page = adoptAndTake(block, true)) return page;
    return mayEvict ? runtime_.allocate(pageBytes()) : nullptr;
}

void* PageAllocator::evict() const {
    PageReclaimer* const reclaimer = pageReclaimer();
    if (!reclaimer) return nullptr;
    const BypassScope bypass(bypass_);
    return isBig() ? reclaimer->evictForBig() : reclaimer->evictForSmall();
}

bool PageAllocator::release(BworkMemBlockAllocator& block, void* page) {
    if (!block.release(page)) return false;
    if (block.isReserved()) {
        releaseReserved(block);
    } else if (block.usedCount() == 0) {
        retire(block);
    } else if (block.freeCount() == 1) {
        partial_.pushFront(block);
        current_ = &block;
    }
    return true;
}

void PageAllocator::releaseReserved(BworkMemBlockAllocator& block) {
    if (block.usedCount() > 0)
        reserve_.pushFront(block);
    else if (scopes_ > 0)
        reserve_.pushBack(block);
    else
        retire(block);
}

void PageAllocator::retire(BworkMemBlockAllocator& block) {
    if (current_ == &block) current_ = nullptr;
    table_.retire(block);
}

std::uint64_t PageAllocator::reserveFree() const {
    std::uint64_t pages = 0;
    for (const auto* block = reserve_.head(); block; block = BlockList::next(*block))
        pages += static_cast<std::uint64_t>(block->freeCount());
    return pages;
}

void PageAllocator::fillReserve(std::size_t bytes) {
    const std::uint64_t wanted = (std::uint64_t{bytes} + pageBytes() - 1) / pageBytes();
    std::uint64_t free = reserveFree();
    while (free < wanted) {
        BworkMemBlockAllocator* block = table_.oldestUnused();
        if (!block) block = table_.makeForPages(manyBlocks);
        if (!block) block = table_.evacuateAny(true);
        if (!block) return;
        free += static_cast<std::uint64_t>(adopt(*block, true).freeCount());
    }
}

void PageAllocator::dropEmptyReserve() {
    for (auto* block = reserve_.head(); block;) {
        BworkMemBlockAllocator* const next = BlockList::next(*block);
        if (block->usedCount() == 0) retire(*block);
        block = next;
    }
}

}  // namespace brushwork
