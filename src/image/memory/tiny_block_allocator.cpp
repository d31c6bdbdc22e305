#include "image/memory/tiny_block_allocator.h"

#include <algorithm>
#include <new>

#include "image/memory/bypass_scope.h"

namespace brushwork {
namespace {

std::uintptr_t addressOf(const void* place) {
    return reinterpret_cast<std::uintptr_t>(place);
}

bool liesBelow(const void* address, const BworkTinyChildBlockAllocator* child) {
    return addressOf(address) < addressOf(child->base());
}

}  // namespace

BworkTinyBlockAllocator::BworkTinyBlockAllocator(BlockSource& source, std::uint32_t elementSize,
                                                 std::atomic<std::int32_t>& bypass)
    : source_(source), elementSize_(elementSize), bypass_(bypass) {}

BworkTinyBlockAllocator::~BworkTinyBlockAllocator() {
    while (!all_.empty()) {
        all_.pop_back();  // a block that it still has goes to the purse
        if (void* const block = purse_.takeReturned()) source_.giveBlock(block);
    }
}

void* BworkTinyBlockAllocator::allocate() {
    {
        const std::lock_guard guard(lock_);
        if (void* const element = fromChildren()) return element;
    }
    void* block = source_.takeBlock();
    if (!block) return nullptr;
    void* element = nullptr;
    {
        const std::lock_guard guard(lock_);
        element = fromChildren();  // another thread may have brought a block meanwhile
        if (!element) {
            element = fromSpare(block);
            if (element) block = nullptr;
        }
    }
    if (block) source_.giveBlock(block);
    return element;
}

void* BworkTinyBlockAllocator::fromChildren() {
    if (current_) {
        if (void* const element = current_->allocate()) return element;
    }
    for (BworkTinyChildBlockAllocator* const child : children_) {
        if (void* const element = child->allocate()) {
            current_ = child;
            return element;
        }
    }
    return nullptr;
}

void* BworkTinyBlockAllocator::fromSpare(void* block) {
    BworkTinyChildBlockAllocator* const child = spareChild();
    if (!child) return nullptr;
    spare_.pop_back();
    purse_.offer(block);
    void* const element = child->allocate();
    children_.insert(std::upper_bound(children_.begin(), children_.end(), block, liesBelow), child);
    current_ = child;
    noteRange();
    return element;
}

BworkTinyChildBlockAllocator* BworkTinyBlockAllocator::spareChild() try {
    if (!spare_.empty()) return spare_.back();
    const BypassScope bypass(bypass_);
    // Room for all children in each list: from here on no list grows, so none can fail to.
    all_.reserve(all_.size() + 1);
    children_.reserve(all_.size() + 1);
    spare_.reserve(all_.size() + 1);
    all_.push_back(std::make_unique<BworkTinyChildBlockAllocator>(purse_, elementSize_));
    spare_.push_back(all_.back().get());
    return spare_.back();
} catch (const std::bad_alloc&) {
    return nullptr;
}

bool BworkTinyBlockAllocator::release(void* address) {
    if (!inRange(address)) return false;
    void* emptied = nullptr;
    {
        const std::lock_guard guard(lock_);
        BworkTinyChildBlockAllocator* const child = childOf(address);
        if (!child || !child->release(address)) return false;
        emptied = purse_.takeReturned();
        if (emptied) {
            children_.erase(std::find(children_.begin(), children_.end(), child));
            spare_.push_back(child);
            if (current_ == child) current_ = nullptr;
            noteRange();
        }
    }
    if (emptied) source_.giveBlock(emptied);
    return true;
}

BworkTinyChildBlockAllocator* BworkTinyBlockAllocator::childOf(const void* address) const {
    if (current_ && current_->owns(address)) return current_;
    const auto after = std::upper_bound(children_.begin(), children_.end(), address, liesBelow);
    if (after == children_.begin()) return nullptr;
    BworkTinyChildBlockAllocator* const child = *(after - 1);
    return child->owns(address) ? child : nullptr;
}

bool BworkTinyBlockAllocator::inRange(const void* address) const {
    const std::uintptr_t place = addressOf(address);
    return place >= lowest_.load(std::memory_order_relaxed) &&
           place < highest_.load(std::memory_order_relaxed);
}

void BworkTinyBlockAllocator::noteRange() {
    const bool none = children_.empty();
    lowest_ = none ? 0 : addressOf(children_.front()->base());
    highest_ = none ? 0 : addressOf(children_.back()->base()) + BlockSource::blockBytes;
}

bool BworkTinyBlockAllocator::owns(const void* address) const {
    if (!inRange(address)) return false;
    const std::lock_guard guard(lock_);
    return childOf(address) != nullptr;
}

bool BworkTinyBlockAllocator::isEmpty() const {
    const std::lock_guard guard(lock_);
    return children_.empty();
}

std::vector<BworkTinyBlockAllocator::ChildFigures> BworkTinyBlockAllocator::figures() const {
    const std::lock_guard guard(lock_);
    std::vector<ChildFigures> all;
    all.reserve(all_.size());
    const auto add = [&all](const BworkTinyChildBlockAllocator* child) {
        all.push_back({child->blockSize(), child->elementCount(), child->usedCount(),
                       addressOf(child->base())});
    };
    std::for_each(children_.begin(), children_.end(), add);
    std::for_each(spare_.begin(), spare_.end(), add);
    return all;
}

}  // namespace brushwork
