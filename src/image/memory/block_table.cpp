#include "image/memory/block_table.h"

#include <algorithm>
#include <new>

#include "image/memory/page_reclaimer.h"

namespace brushwork {
namespace {

constexpr std::array<std::uint32_t, BlockTable::classCount> mostOfClass{2, 2,  2,         2,
                                                                        5, 10, 0xFFFFFFFF};

std::uintptr_t addressOf(const void* place) {
    return reinterpret_cast<std::uintptr_t>(place);
}

bool wastes(std::uint32_t blockClass, std::size_t bytes) {
    return blockClass != BlockTable::smallestClass &&
           BlockTable::classBytes[blockClass] > std::uint64_t{5} * bytes;
}

}  // namespace

BlockTable::BlockTable(const MemorySources& sources) : sources_(sources) {}

BlockTable::~BlockTable() {
    for (const auto& block : slots_)
        if (block) sources_.giveBlock(block->base(), block->blockSize());
}

bool BlockTable::initialise() try {
    const std::uint32_t entries = sources_.limitMegabytes >> 1;
    slots_.resize(entries);
    byAddress_.reserve(entries);  // so that entering a block never fails
    std::uint32_t start = 0;
    for (std::uint32_t k = 0; k < classCount; ++k) {
        classStart_[k] = start;
        start += std::min(mostOfClass[k], entries - start);
    }
    classStart_[classCount] = start;
    for (std::uint32_t k = 0; k < classCount; ++k) {
        if (classStart_[k] == classStart_[k + 1]) continue;
        mask_ |= 1u << k;
        if (!make(k)) mask_ &= ~(1u << k);
    }
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

BworkMemBlockAllocator* BlockTable::make(std::uint32_t blockClass) {
    const std::uint32_t room = classStart_[blockClass + 1] - classStart_[blockClass];
    if (megabytes_ >= sources_.limitMegabytes || made_[blockClass] >= room) return nullptr;
    const std::uint32_t bytes = classBytes[blockClass];
    void* const memory = sources_.takeBlock(bytes);
    if (!memory) return nullptr;
    auto& slot = slots_[classStart_[blockClass] + made_[blockClass]];
    slot.reset(new (std::nothrow) BworkMemBlockAllocator(memory, bytes));
    if (!slot) {
        sources_.giveBlock(memory, bytes);
        return nullptr;
    }
    enter(*slot);
    megabytes_ += bytes >> 20;
    if (++made_[blockClass] == room) mask_ &= ~(1u << blockClass);
    return slot.get();
}

void BlockTable::enter(BworkMemBlockAllocator& block) {
    const auto before = [](const Entry& a, const Entry& b) { return a.base < b.base; };
    const Entry entry{addressOf(block.base()), &block};
    byAddress_.insert(std::upper_bound(byAddress_.begin(), byAddress_.end(), entry, before), entry);
    unused_.pushFront(block);
}

BworkMemBlockAllocator* BlockTable::makeForPages(std::uint32_t manySmall) {
    if (made_[smallestClass] >= manySmall) {
        for (std::uint32_t k = 0; k < smallestClass; ++k) {
            if ((mask_ & (1u << k)) == 0) continue;
            if (BworkMemBlockAllocator* const block = make(k)) return block;
        }
    }
    return make(smallestClass);
}

BworkMemBlockAllocator* BlockTable::find(const void* address) const {
    const std::uintptr_t place = addressOf(address);
    const Entry* first = byAddress_.data();
    std::size_t count = byAddress_.size();
    if (count == 0) return nullptr;
    // The last entry at or below the address: halves without a branch to guess wrong.
    while (count > 1) {
        const std::size_t half = count / 2;
        first = first[half].base <= place ? first + half : first;
        count -= half;
    }
    return first->block->owns(address) ? first->block : nullptr;
}

BworkMemBlockAllocator* BlockTable::oldestUnused() const {
    for (auto* block = unused_.tail(); block; block = BlockList::previous(*block))
        if (!block->isFrozen() && !block->isFixed()) return block;
    return nullptr;
}

BworkMemBlockAllocator* BlockTable::unusedFor(const PageAllocator& pages) const {
    BworkMemBlockAllocator* const latest = unused_.head();
    const bool isWarm = latest && latest->formerOwner() == &pages && isIdle(*latest);
    return isWarm ? latest : oldestUnused();
}

BworkMemBlockAllocator* BlockTable::unusedSmallest() {
    for (auto* block = unused_.head(); block; block = BlockList::next(*block))
        if (block->blockSize() == classBytes[smallestClass] && isIdle(*block)) return block;
    return make(smallestClass);
}

bool BlockTable::isIdle(const BworkMemBlockAllocator& block) {
    return block.usedCount() == 0 && !block.isFrozen() && !block.isFixed() && !block.isReserved();
}

BworkMemBlockAllocator* BlockTable::pickBlock(std::uint32_t blockClass) {
    for (std::uint32_t i = classStart_[blockClass]; i < classStart_[blockClass + 1]; ++i)
        if (slots_[i] && isIdle(*slots_[i])) return slots_[i].get();
    if ((mask_ & (1u << blockClass)) != 0) {
        if (BworkMemBlockAllocator* const block = make(blockClass)) return block;
    }
    if (BworkMemBlockAllocator* const block = leastUsed(blockClass)) {
        if (evacuate(*block)) return block;
    }
    return blockClass == smallestClass ? unusedSmallest() : anyEvacuated(blockClass);
}

BworkMemBlockAllocator* BlockTable::leastUsed(std::uint32_t blockClass) const {
    BworkMemBlockAllocator* least = nullptr;
    for (std::uint32_t i = classStart_[blockClass]; i < classStart_[blockClass + 1]; ++i) {
        BworkMemBlockAllocator* const block = slots_[i].get();
        if (!block || block->isFrozen() || block->isFixed() || block->isReserved()) continue;
        if (!least || block->usedCount() < least->usedCount()) least = block;
    }
    return least;
}

BworkMemBlockAllocator* BlockTable::anyEvacuated(std::uint32_t blockClass) const {
    for (std::uint32_t i = classStart_[blockClass]; i < classStart_[blockClass + 1]; ++i) {
        BworkMemBlockAllocator* const block = slots_[i].get();
        if (!block || block->isFrozen() || block->isFixed() || block->isReserved()) continue;
        if (evacuate(*block)) return block;
    }
    return nullptr;
}

BworkMemBlockAllocator* BlockTable::allocateFromClass(std::size_t bytes, Waste waste) {
    for (std::uint32_t k = classCount; k-- > 0;) {
        if (classBytes[k] < bytes) continue;
        // Larger classes only waste more. Asked before a block is made or pages are moved for it.
        if (waste == Waste::Refuse && wastes(k, bytes)) return nullptr;
        if (BworkMemBlockAllocator* const block = pickBlock(k)) {
            giveAway(*block);
            return block;
        }
    }
    return nullptr;
}

void BlockTable::giveAway(BworkMemBlockAllocator& block) {
    BlockList::leave(block);
    block.freeze();
}

void BlockTable::retire(BworkMemBlockAllocator& block) {
    block.thaw();
    block.uncut();
    unused_.pushFront(block);
}

bool BlockTable::canEvacuate(const BworkMemBlockAllocator& block) {
    PageReclaimer* const reclaimer = pageReclaimer();
    std::uint32_t lists = 0;
    return reclaimer && reclaimer->canEvacuate(block.base(), block.base() + block.blockSize(),
                                               block.usedCount(), lists);
}

bool BlockTable::evacuate(BworkMemBlockAllocator& block) {
    if (block.isFrozen()) return false;
    PageReclaimer* const reclaimer = pageReclaimer();
    if (block.usedCount() > 0 && reclaimer) {
        const bool wasFixed = block.isFixed();
        block.setFixed(true);
        reclaimer->evacuate(block.base(), block.base() + block.blockSize(), block.usedCount(),
                            PageReclaimer::smallPages | PageReclaimer::bigPages);
        block.setFixed(wasFixed);
    }
    return block.usedCount() == 0;
}

BworkMemBlockAllocator* BlockTable::evacuateAny(bool askFirst) {
    for (const auto& block : slots_) {
        if (!block || block->isFrozen() || block->isFixed() || block->isReserved()) continue;
        if (askFirst && block->usedCount() > 0 && !canEvacuate(*block)) continue;
        if (evacuate(*block)) return block.get();
    }
    return nullptr;
}

std::uint32_t BlockTable::countAvailable(std::size_t bytes, std::uint32_t enough) const {
    std::uint32_t found = 0;
    std::uint32_t megabytes = megabytes_;
    for (std::uint32_t k = classCount; k-- > 0 && found < enough;) {
        if (classBytes[k] < bytes) continue;
        if (wastes(k, bytes)) break;
        for (std::uint32_t i = classStart_[k]; i < classStart_[k + 1] && found < enough; ++i) {
            const BworkMemBlockAllocator* const block = slots_[i].get();
            if (!block) {
                if ((mask_ & (1u << k)) == 0 || megabytes >= sources_.limitMegabytes) break;
                megabytes += classBytes[k] >> 20;
                ++found;
            } else if (isIdle(*block)) {
                ++found;
            } else if (!block->isFrozen() && !block->isFixed() && !block->isReserved()) {
                found += canEvacuate(*block) ? 1u : 0u;
            }
        }
    }
    return found;
}

std::uint32_t BlockTable::classOfSlot(std::size_t index) const {
    std::uint32_t k = 0;
    while (k + 1 < classCount && index >= classStart_[k + 1]) ++k;
    return k;
}

}  // namespace brushwork
