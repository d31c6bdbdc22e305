#include "image/smart/smart_page_table.h"

#include <algorithm>
#include <new>

#include "platform/alloc_routes.h"

namespace brushwork {
namespace {

constexpr std::int32_t blockMask = ~(blockSide - 1);

// Of a place within the limit.
std::size_t blockIndex(std::int32_t place) {
    return static_cast<std::size_t>(place + coordinateLimit) / blockSide;
}

bool isInLimit(std::int32_t x, std::int32_t y) {
    return x >= -coordinateLimit && x < coordinateLimit && y >= -coordinateLimit &&
           y < coordinateLimit;
}

void clipSpan(std::int32_t& start, std::int32_t& extent) {
    constexpr std::int64_t most = coordinateLimit;
    const std::int64_t from = std::clamp<std::int64_t>(start, -most, most);
    const std::int64_t to = std::clamp<std::int64_t>(std::int64_t{start} + extent, from, most);
    start = static_cast<std::int32_t>(from);
    extent = static_cast<std::int32_t>(to - from);
}

}  // namespace

ilTile clippedToLimit(const ilTile& box) {
    ilTile clipped = box;
    clipSpan(clipped.x, clipped.nx);
    clipSpan(clipped.y, clipped.ny);
    clipped.nz = std::max(clipped.nz, 0);
    return clipped;
}

SmartPageTable::SmartPageTable(PageSource& owner, std::uint8_t channels)
    : channels_(channels), shift_(channels == 4 ? 2 : 0), owner_(owner) {
    static_cast<void>(ensureDefaultPage());  // else at the first look-up
}

SmartPageTable::~SmartPageTable() {
    clear();
    magic_ = endMagic_ = deadSignature;
}

SmartPageRef* SmartPageTable::lookUp(std::int32_t x, std::int32_t y, bool create) {
    const ilTile page = flatTile(x, y, pageSide, pageSide);
    if (!isInLimit(x, y)) return create ? outOfLimit() : outOfBounds();
    const bool inside = !intersection(page, bounds_).isEmpty();
    if (!create && !inside) return outOfBounds();
    SmartPageBlock* block = findBlock(x, y);
    if (!block) block = makeBlock(x, y);
    if (!block) return nullptr;
    SmartPageRef& slot = block->slot(x, y);
    if (!slot && !fillSlot(slot, x, y, create)) return nullptr;
    lastX_ = x;
    lastY_ = y;
    lastIsInside_ = inside;
    lastSlot_ = &slot;
    return &slot;
}

bool SmartPageTable::fillSlot(SmartPageRef& slot, std::int32_t x, std::int32_t y, bool create) {
    if (!asksParent(x, y)) {
        if (!ensureDefaultPage()) return false;
        slot = defaultPage_;
        return true;
    }
    SmartPageRef page = owner_.parentPage(x, y);
    if (!page) return false;
    slot = std::move(page);
    if (create) ++pullCount_;
    return true;
}

bool SmartPageTable::asksParent(std::int32_t x, std::int32_t y) const {
    const ilTile page = flatTile(x, y, pageSide, pageSide);
    return owner_.hasParent() && !intersection(page, bounds_).isEmpty() &&
           !intersection(page, owner_.initialBounds()).isEmpty() &&
           !intersection(page, inherited_).isEmpty();
}

// A writer who didn't ask for creation has put his clone into the slot; nobody sees it again.
SmartPageRef* SmartPageTable::outOfBounds() {
    if (!ensureDefaultPage()) return nullptr;
    if (outOfBounds_.get() != defaultPage_.get()) outOfBounds_ = defaultPage_;
    return &outOfBounds_;
}

SmartPageRef* SmartPageTable::outOfLimit() {
    outOfRange_.release(ReleaseReason::OutOfRangeRenewed);
    outOfRange_ = SmartPageRef(makeSmartPage(channels_, solidValue_));
    return outOfRange_ ? &outOfRange_ : nullptr;
}

bool SmartPageTable::ensureDefaultPage() {
    if (!defaultPage_) {
        defaultPage_ = SmartPageRef(makeSmartPage(channels_, solidValue_));
        outOfBounds_ = defaultPage_;
    }
    return static_cast<bool>(defaultPage_);
}

SmartPageRef* SmartPageTable::findSlot(std::int32_t x, std::int32_t y) {
    if (!isInLimit(x, y)) return nullptr;
    SmartPageBlock* const block = findBlock(x, y);
    if (!block) return nullptr;
    SmartPageRef& slot = block->slot(x, y);
    return slot ? &slot : nullptr;
}

SmartPageBlock* SmartPageTable::findBlock(std::int32_t x, std::int32_t y) {
    if (first_.holds(x, y)) return &first_;
    const SmartPageColumn* const column = columns_[blockIndex(x)].get();
    return column ? column->blocks[blockIndex(y)] : nullptr;
}

SmartPageBlock* SmartPageTable::makeBlock(std::int32_t x, std::int32_t y) {
    auto& column = columns_[blockIndex(x)];
    if (!column) column.reset(new (std::nothrow) SmartPageColumn);
    void* const memory = column ? platform::routedAllocate(sizeof(SmartPageBlock)) : nullptr;
    if (!memory) return nullptr;
    auto* const block = new (memory) SmartPageBlock;
    block->x = x & blockMask;
    block->y = y & blockMask;
    block->previous = &first_;
    block->next = first_.next;
    if (block->next) block->next->previous = block;
    first_.next = block;
    column->blocks[blockIndex(y)] = block;
    return block;
}

// The embedded block only loses its pages.
void SmartPageTable::freeBlock(SmartPageBlock& block, ReleaseReason reason) {
    forgetLast();
    for (SmartPageRef& slot : block.slots) slot.release(reason);
    if (&block == &first_) return;
    block.previous->next = block.next;
    if (block.next) block.next->previous = block.previous;
    columns_[blockIndex(block.x)]->blocks[blockIndex(block.y)] = nullptr;
    block.~SmartPageBlock();
    platform::routedRelease(&block);
}

void SmartPageTable::clear() {
    while (first_.next) freeBlock(*first_.next, ReleaseReason::TableCleared);
    freeBlock(first_, ReleaseReason::TableCleared);
    inherited_ = {0, 0, 0, 0, 0, 1};
}

bool SmartPageTable::setSolidValue(std::uint32_t value) {
    if (channels_ == 1) value &= 0xFF;
    if (defaultPage_ && value == solidValue_) return true;
    const SmartPageRef page(makeSmartPage(channels_, value));
    if (!page) return false;
    solidValue_ = value;
    const SmartPageRef former = std::move(defaultPage_);
    defaultPage_ = page;
    outOfBounds_ = page;
    if (!former) return true;
    eachPage([&](std::int32_t, std::int32_t, SmartPageRef& slot) {
        if (slot.get() == former.get()) slot.assign(page.get(), ReleaseReason::FillChanged);
    });
    return true;
}

std::size_t SmartPageTable::heldPages() const {
    std::size_t count = 0;
    for (const SmartPageBlock* block = &first_; block; block = block->next)
        count += static_cast<std::size_t>(
            std::count_if(block->slots.begin(), block->slots.end(),
                          [](const SmartPageRef& slot) { return static_cast<bool>(slot); }));
    return count;
}

}  // namespace brushwork
