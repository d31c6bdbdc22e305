// Setting a page table's bounds: what a smaller box cuts off.
#include <cstdint>

#include "image/cache/page_tests.h"
#include "image/chain/box_difference.h"
#include "image/smart/page_accessor.h"
#include "image/smart/page_realize.h"
#include "image/smart/smart_page_table.h"

namespace brushwork {
namespace {

ilTile pageTile(std::int32_t x, std::int32_t y) {
    return flatTile(x, y, pageSide, pageSide);
}

bool isOutside(const ilTile& tile, const ilTile& box) {
    return intersection(tile, box).isEmpty();
}

// Whether all of the page that lies outside the box has this value already.
bool isFilledOutside(const SmartPage& page, const ilTile& tile, const ilTile& box,
                     std::uint32_t value) {
    if (page.isSolid()) return page.solid == value;
    ilTile piece;
    for (BoxDifference outside(tile, box); outside.next(piece);) {
        std::uint32_t found = 0;
        const bool uniform =
            isUniformPart(page, piece.x - tile.x, piece.y - tile.y, piece.nx, piece.ny, found);
        if (!uniform || found != value) return false;
    }
    return true;
}

}  // namespace

void SmartPageTable::noteBounds() {
    lastIsInside_ = lastSlot_ && !isOutside(pageTile(lastX_, lastY_), bounds_);
}

void SmartPageTable::extendBounds(const ilTile& box) {
    const ilTile wider = clippedToLimit(box);
    if (wider.isEmpty()) return;
    bounds_ = bounds_.isEmpty() ? wider : unionOf(bounds_, wider);
    noteBounds();
}

bool SmartPageTable::setBounds(const ilTile& box, bool forceTrim) {
    const ilTile next = clippedToLimit(box);
    const bool holdsOld = bounds_.isEmpty() || next.contains(bounds_);
    if ((forceTrim || !holdsOld) && !trim(next)) return false;
    bounds_ = next;
    noteBounds();
    return true;
}

bool SmartPageTable::trim(const ilTile& box) {
    if (!pullEdges(box) || !cutEdges(box)) return false;
    dropOutside(box);
    // Beyond the old bounds all was fill, whatever the parent has there.
    if (!bounds_.isEmpty()) inherited_ = intersection(inherited_, bounds_);
    inherited_ = intersection(inherited_, box);
    return true;
}

// A page of the parent's that straddles the edge must be held here to be cut.
bool SmartPageTable::pullEdges(const ilTile& box) {
    if (box.isEmpty() || !owner_.hasParent()) return true;
    constexpr std::int32_t within = pageSide - 1;
    if ((box.y & within) != 0 && !pullRow(box, box.y & pageMask)) return false;
    if ((box.endY() & within) != 0 && !pullRow(box, box.endY() & pageMask)) return false;
    if ((box.x & within) != 0 && !pullColumn(box, box.x & pageMask)) return false;
    return (box.endX() & within) == 0 || pullColumn(box, box.endX() & pageMask);
}

bool SmartPageTable::pullRow(const ilTile& box, std::int32_t y) {
    for (std::int32_t x = box.x & pageMask; x < box.endX(); x += pageSide)
        if (asksParent(x, y) && !pageRef(x, y, false)) return false;
    return true;
}

bool SmartPageTable::pullColumn(const ilTile& box, std::int32_t x) {
    for (std::int32_t y = box.y & pageMask; y < box.endY(); y += pageSide)
        if (asksParent(x, y) && !pageRef(x, y, false)) return false;
    return true;
}

bool SmartPageTable::cutEdges(const ilTile& box) {
    bool done = true;
    eachPage([&](std::int32_t x, std::int32_t y, SmartPageRef& slot) {
        const ilTile tile = pageTile(x, y);
        if (box.contains(tile) || isOutside(tile, box)) return;
        done = done && cutPage(slot, x, y, box);
    });
    return done;
}

bool SmartPageTable::cutPage(SmartPageRef& slot, std::int32_t x, std::int32_t y,
                             const ilTile& box) const {
    const ilTile tile = pageTile(x, y);
    if (!realizePage(slot, RealizeMode::Read)) return false;
    if (isFilledOutside(*slot, tile, box, solidValue_)) return true;
    if (!realizePage(slot, RealizeMode::Write)) return false;
    PageAccessor accessor;
    if (!accessor.open(*slot, x, y, PageAccessor::View::Write)) return false;
    const std::int32_t result =
        accessor.fill(tile, pixelOfWord(channels_, solidValue_), nullptr, &box);
    notePageWritten(*slot);
    return result == ImageOk;
}

void SmartPageTable::dropOutside(const ilTile& box) {
    forgetLast();
    for (SmartPageBlock* block = &first_; block;) {
        SmartPageBlock* const next = block->next;
        if (isOutside(flatTile(block->x, block->y, blockSide, blockSide), box))
            freeBlock(*block, ReleaseReason::BlockFreed);
        block = next;
    }
    eachPage([&](std::int32_t x, std::int32_t y, SmartPageRef& slot) {
        if (isOutside(pageTile(x, y), box)) slot.release(ReleaseReason::Trimmed);
    });
}

}  // namespace brushwork
