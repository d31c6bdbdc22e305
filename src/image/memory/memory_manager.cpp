#include "image/memory/memory_manager.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>

#include "image/memory/allocation_gate.h"
#include "image/memory/bypass_scope.h"
#include "image/memory/image_health.h"
#include "image/memory/image_lock.h"

namespace brushwork {
namespace {

using Guard = std::lock_guard<std::recursive_mutex>;

}  // namespace

BworkMemory& BworkMemory::instance() {
    static BworkMemory& memory =
        *std::unique_ptr<BworkMemory>(new BworkMemory({}, Routing::Process)).release();
    return memory;
}

BworkMemory::BworkMemory(const MemorySources& sources) : BworkMemory(sources, Routing::Own) {}

BworkMemory::BworkMemory(const MemorySources& sources, Routing routing)
    : sources_(sources), routing_(routing) {}

BworkMemory::~BworkMemory() {
    discard();
}

BworkMemory::State::State(BworkMemory& memory, const MemorySources& sources)
    : table(sources),
      big(table, PageAllocator::Size::Big, sources.runtime, memory.bypass_, memory.scopes_),
      small(table, PageAllocator::Size::Small, sources.runtime, memory.bypass_, memory.scopes_) {
    for (std::size_t i = 0; i < tiny.size(); ++i)
        tiny[i] = std::make_unique<BworkTinyBlockAllocator>(memory, tinySizes[i], memory.bypass_);
}

void BworkMemory::enable(bool on) {
    const Guard guard(imageLock());
    if (on && !owned_) initialise();
    enabled_ = on && owned_;
    if (routing_ == Routing::Process) engageImageLock(enabled_);
}

void BworkMemory::initialise() try {
    const BypassScope bypass(bypass_);
    auto made = std::make_unique<State>(*this, sources_);
    if (!made->table.initialise()) return;
    owned_ = std::move(made);
    state_ = owned_.get();
    if (routing_ == Routing::Own) return;
    platform::setAllocRoutes(
        {[](std::size_t bytes) { return instance().allocate(bytes); },
         [](void* pointer, std::size_t bytes) { return instance().reallocate(pointer, bytes); },
         [](void* pointer) { instance().release(pointer); }});
} catch (const std::bad_alloc&) {
    // It stays off.
}

void BworkMemory::discard() {
    enabled_ = false;
    if (!owned_) return;
    for (auto& allocator : owned_->tiny) allocator.reset();  // they give blocks back
    state_ = nullptr;
    owned_.reset();
}

bool BworkMemory::isIdle(const State& state) {
    for (std::size_t i = 0; i < state.table.slotCount(); ++i) {
        const BworkMemBlockAllocator* const block = state.table.slot(i);
        if (block && block->usedCount() > 0) return false;
    }
    return true;
}

bool BworkMemory::reset(const MemorySources& sources) {
    const Guard guard(imageLock());
    if (owned_ && !isIdle(*owned_)) return false;
    if (routing_ == Routing::Process) {
        platform::setAllocRoutes(platform::runtimeRoutes());
        engageImageLock(false);
    }
    discard();
    scopes_ = 0;
    reserveHeld_ = false;
    sources_ = sources;
    return true;
}

void* BworkMemory::allocate(std::size_t bytes) {
    State* const state = this->state();
    if (!isEnabled() || !state || bypass_ > 0) return sources_.runtime.allocate(bytes);
    if (bytes < tinyThreshold) {
        if (void* const element = allocateTiny(*state, bytes)) return element;
    }
    const Guard guard(imageLock());
    return allocateLarge(*state, bytes);
}

void* BworkMemory::allocateTiny(State& state, std::size_t bytes) {
    // From the middle down to the smallest size that fits.
    std::size_t fit = bytes <= tinySizes[4] ? 4 : 7;
    while (fit > 0 && bytes <= tinySizes[fit - 1]) --fit;
    for (; fit < tinySizes.size(); ++fit)
        if (void* const element = state.tiny[fit]->allocate()) return element;
    return nullptr;
}

void* BworkMemory::allocateLarge(State& state, std::size_t bytes) {
    if (bytes > largestBlock) return sources_.runtime.allocate(bytes);
    BworkMemBlockAllocator* block = nullptr;
    if (bytes == blockBytes) {
        block = state.table.unusedSmallest();
        if (block) state.table.giveAway(*block);
    }
    if (!block) block = state.table.allocateFromClass(bytes, BlockTable::Waste::Refuse);
    if (!block && bytes <= blockBytes) {
        block = state.table.make();
        if (block) state.table.giveAway(*block);
    }
    if (block) return block->base();
    if (void* const memory = sources_.runtime.allocate(bytes)) return memory;
    block = state.table.allocateFromClass(bytes, BlockTable::Waste::Allow);
    return block ? block->base() : nullptr;
}

void* BworkMemory::takeBlock() {
    State* const state = this->state();
    if (!state) return nullptr;
    const Guard guard(imageLock());
    void* const memory = allocateLarge(*state, blockBytes);
    BworkMemBlockAllocator* const block = memory ? state->table.find(memory) : nullptr;
    if (block) block->setTiny(true);
    return memory;
}

void BworkMemory::giveBlock(void* memory) {
    const Guard guard(imageLock());
    State* const state = this->state();
    BworkMemBlockAllocator* const block = state ? state->table.find(memory) : nullptr;
    if (block)
        state->table.retire(*block);
    else
        sources_.runtime.release(memory);
}

void* BworkMemory::reallocate(void* pointer, std::size_t bytes) {
    if (!pointer) return allocate(bytes);
    const std::size_t capacity = capacityOf(pointer);
    if (capacity == 0) return sources_.runtime.reallocate(pointer, bytes);
    if (bytes <= capacity) return pointer;
    void* const larger = allocate(bytes);
    if (!larger) return nullptr;
    std::memcpy(larger, pointer, capacity);
    release(pointer);
    return larger;
}

void BworkMemory::release(void* pointer, int) {
    if (!pointer) return;
    State* const state = this->state();
    if (!state) return sources_.runtime.release(pointer);
    for (const auto& allocator : state->tiny)
        if (allocator->release(pointer)) return;
    releasePage(pointer);
}

void BworkMemory::releasePage(void* page) {
    State* const state = page ? this->state() : nullptr;
    Back back = Back::Unknown;
    if (state) {
        const Guard guard(imageLock());
        back = releaseInBlocks(*state, page);
    }
    if (back == Back::Unknown) sources_.runtime.release(page);
    if (back != Back::Damaged) return;
    // Inside a block, but nothing that is given out: the runtime would stumble over it.
    noteImageFailure();
}

BworkMemory::Back BworkMemory::releaseInBlocks(State& state, void* pointer) {
    BworkMemBlockAllocator* const block = state.table.find(pointer);
    if (!block) return Back::Unknown;
    if (block->isFrozen()) {
        if (block->isTiny() || block->base() != pointer) return Back::Damaged;
        state.table.retire(*block);
        return Back::Done;
    }
    PageAllocator* const owner = block->owner();
    return owner && owner->release(*block, pointer) ? Back::Done : Back::Damaged;
}

std::size_t BworkMemory::capacityOf(const void* pointer) const {
    State* const state = pointer ? this->state() : nullptr;
    if (!state) return 0;
    for (const auto& allocator : state->tiny)
        if (allocator->owns(pointer)) return allocator->elementSize();
    const Guard guard(imageLock());
    const BworkMemBlockAllocator* const block = state->table.find(pointer);
    if (!block) return 0;
    return block->owner() && !block->isFrozen() ? block->elementSize() : block->blockSize();
}

void* BworkMemory::allocateBig(bool mayEvict, bool reserved) {
    if (allocationRefused()) return nullptr;
    if (!isEnabled()) return sources_.runtime.allocate(PageAllocator::bigBytes);
    const Guard guard(imageLock());
    PageAllocator& pages = state()->big;
    return reserved ? pages.allocateReserved(mayEvict) : pages.allocate(mayEvict);
}

void* BworkMemory::allocateSmall(bool mayEvict, bool reserved) {
    if (allocationRefused()) return nullptr;
    if (!isEnabled()) return sources_.runtime.allocate(PageAllocator::smallBytes);
    const Guard guard(imageLock());
    PageAllocator& pages = state()->small;
    return reserved ? pages.allocateReserved(mayEvict) : pages.allocate(mayEvict);
}

void BworkMemory::releaseBig(void* page, bool) {
    releasePage(page);
}

void BworkMemory::releaseSmall(void* page) {
    releasePage(page);
}

void BworkMemory::reserve(std::size_t bytes) {
    if (!isEnabled()) return;
    const Guard guard(imageLock());
    ++scopes_;
    if (bytes == 0 || reserveHeld_) return;
    reserveHeld_ = true;
    state()->big.fillReserve(bytes);
}

void BworkMemory::endReservation() {
    const Guard guard(imageLock());
    if (scopes_ == 0 || --scopes_ > 0) return;
    reserveHeld_ = false;
    state()->big.dropEmptyReserve();
    state()->small.dropEmptyReserve();
}

std::uint64_t BworkMemory::usedBytes() const {
    const Guard guard(imageLock());
    State* const state = this->state();
    std::uint64_t bytes = 0;
    for (std::size_t i = 0; state && i < state->table.slotCount(); ++i) {
        const BworkMemBlockAllocator* const block = state->table.slot(i);
        if (block && !block->isFrozen())
            bytes += static_cast<std::uint64_t>(block->usedCount()) * block->elementSize();
    }
    return bytes;
}

bool BworkMemory::compact() {
    if (!isEnabled()) return true;
    const Guard guard(imageLock());
    const BlockTable& table = state()->table;
    bool allEmpty = true;
    for (std::size_t i = 0; i < table.slotCount(); ++i) {
        BworkMemBlockAllocator* const block = table.slot(i);
        if (!block || block->isFrozen() || block->usedCount() == 0) continue;
        if (!BlockTable::evacuate(*block)) allEmpty = false;
    }
    return allEmpty;
}

bool BworkMemory::canAllocate(std::size_t bytes, std::uint32_t count) const {
    if (!isEnabled()) return true;
    const Guard guard(imageLock());
    return state()->table.countAvailable(bytes, count) >= count;
}

std::uint32_t BworkMemory::megabytes() const {
    const Guard guard(imageLock());
    const State* const state = this->state();
    return state ? state->table.megabytes() : 0;
}

}  // namespace brushwork
