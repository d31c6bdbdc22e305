// SmartPageTable: the pages of one smart image, in blocks of 16 by 16 slots.
//
//     if (SmartPageRef* slot = table.pageRef(x & pageMask, y & pageMask, true)) ...
//
// Page origins are multiples of 128, rounded toward minus infinity. An empty slot means: the
// parent's page, or without a parent the image's one shared page of the fill.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "brushwork/il_tile.h"
#include "image/smart/page_source.h"
#include "image/smart/smart_page_ref.h"

namespace brushwork {

constexpr std::int32_t pageMask = ~(pageSide - 1);
constexpr std::int32_t blockSide = 16 * pageSide;  // pixels

// All places that a smart image has.
constexpr ilTile limitBox =
    flatTile(-coordinateLimit, -coordinateLimit, 2 * coordinateLimit, 2 * coordinateLimit);
// The box cut to the coordinate limit; a negative size becomes 0.
[[nodiscard]] ilTile clippedToLimit(const ilTile& box);

struct SmartPageBlock {
    static constexpr std::size_t slotCount = 256;

    std::int32_t x = 0, y = 0;  // origin, a multiple of 2048
    SmartPageBlock* next = nullptr;
    SmartPageBlock* previous = nullptr;
    std::array<SmartPageRef, slotCount> slots;  // x major: (column * 16 + row)

    [[nodiscard]] bool holds(std::int32_t px, std::int32_t py) const {
        return px >= x && px < x + blockSide && py >= y && py < y + blockSide;
    }
    [[nodiscard]] SmartPageRef& slot(std::int32_t px, std::int32_t py) {
        return slots[static_cast<std::size_t>(((px - x) >> 7) * 16 + ((py - y) >> 7))];
    }
};

// Where the blocks of one column of blocks are, from the bottom of the limit up.
struct SmartPageColumn {
    static constexpr std::size_t blockCount = 2 * coordinateLimit / blockSide;
    std::array<SmartPageBlock*, blockCount> blocks{};
};

class SmartPageTable {
  public:
    // `owner` outlives the table.
    SmartPageTable(PageSource& owner, std::uint8_t channels);
    SmartPageTable(const SmartPageTable&) = delete;
    SmartPageTable& operator=(const SmartPageTable&) = delete;
    ~SmartPageTable();

    // The slot of the page at a page origin. An empty one takes the parent's page, if the page
    // meets the bounds, the owner's initial bounds and what no trim has cut off, else the shared
    // page of the fill. Without `create` a place outside the bounds answers the shared page of the
    // fill in a slot that stands for no place; beyond the coordinate limit each call makes a page
    // of its own. What is written through either is lost. Null without memory; nothing has changed
    // then.
    //
    // A slot is valid until the next trim or clear, the two that stand for no place until the next
    // look-up. Writers put their clone into it; the page of the fill is never the only holder's, so
    // that it can't be written through a slot.
    [[nodiscard]] SmartPageRef* pageRef(std::int32_t x, std::int32_t y, bool create) {
        if (x == lastX_ && y == lastY_ && (create || lastIsInside_) && *lastSlot_) return lastSlot_;
        return lookUp(x, y, create);
    }
    // The slot if a page stands in it, null else; asks no parent and makes nothing.
    [[nodiscard]] SmartPageRef* findSlot(std::int32_t x, std::int32_t y);
    // Whether an empty slot there would take the parent's page.
    [[nodiscard]] bool asksParent(std::int32_t x, std::int32_t y) const;

    // The box that holds everything that is not fill.
    [[nodiscard]] const ilTile& bounds() const { return bounds_; }
    // Sets the box, cut to the limit. Unless it holds the old one and no trim is forced, what lies
    // outside it is the fill from then on, wherever bounds grow later: pages outside go, and of
    // those that straddle its edge the outer part is filled. False without memory for that: the box
    // and all within the new one are as they were, some of what lies outside may be filled.
    bool setBounds(const ilTile& box, bool forceTrim = false);
    // Widens the box only; nothing is dropped.
    void extendBounds(const ilTile& box);
    // All pages go; everything is fill, the parent isn't asked any more.
    void clear();

    [[nodiscard]] std::uint32_t solidValue() const { return solidValue_; }
    // The value of all places that were never written, in this image alone: slots that hold the
    // shared page of the old value take that of the new one, holders elsewhere keep theirs. One
    // channel takes the low byte. False, with nothing changed, without memory.
    bool setSolidValue(std::uint32_t value);
    // Empty only while there was no memory for it.
    [[nodiscard]] const SmartPageRef& defaultPage() const { return defaultPage_; }

    // Whether both magic words are whole.
    [[nodiscard]] bool isSound() const {
        return magic_ == liveSignature && endMagic_ == liveSignature;
    }
    [[nodiscard]] std::uint8_t channels() const { return channels_; }
    [[nodiscard]] std::uint8_t shift() const { return shift_; }
    // Pages taken from the parent on behalf of a writer.
    [[nodiscard]] std::uint32_t pullCount() const { return pullCount_; }
    // Slots with a page in them, be it the shared one.
    [[nodiscard]] std::size_t heldPages() const;

    // Forgets the remembered slot.
    void forgetLast() {
        lastX_ = noPlace;
        lastSlot_ = nullptr;
    }
    // Calls visit(x, y, slot) for each slot with a page in it.
    template <class Visit>
    void eachPage(Visit&& visit) {
        for (SmartPageBlock* block = &first_; block != nullptr; block = block->next) {
            for (std::size_t i = 0; i < SmartPageBlock::slotCount; ++i) {
                if (!block->slots[i]) continue;
                visit(block->x + static_cast<std::int32_t>(i / 16) * pageSide,
                      block->y + static_cast<std::int32_t>(i % 16) * pageSide, block->slots[i]);
            }
        }
    }

  private:
    static constexpr std::int32_t noPlace = 1;  // no page origin

    [[nodiscard]] SmartPageRef* lookUp(std::int32_t x, std::int32_t y, bool create);
    [[nodiscard]] SmartPageRef* outOfBounds();
    [[nodiscard]] SmartPageRef* outOfLimit();
    [[nodiscard]] bool fillSlot(SmartPageRef& slot, std::int32_t x, std::int32_t y, bool create);
    [[nodiscard]] bool ensureDefaultPage();
    void noteBounds();

    [[nodiscard]] SmartPageBlock* findBlock(std::int32_t x, std::int32_t y);
    [[nodiscard]] SmartPageBlock* makeBlock(std::int32_t x, std::int32_t y);
    void freeBlock(SmartPageBlock& block, ReleaseReason reason);

    [[nodiscard]] bool trim(const ilTile& box);
    [[nodiscard]] bool pullEdges(const ilTile& box);
    [[nodiscard]] bool pullRow(const ilTile& box, std::int32_t y);
    [[nodiscard]] bool pullColumn(const ilTile& box, std::int32_t x);
    [[nodiscard]] bool cutEdges(const ilTile& box);
    [[nodiscard]] bool cutPage(SmartPageRef& slot, std::int32_t x, std::int32_t y,
                               const ilTile& box) const;
    void dropOutside(const ilTile& box);

    std::uint32_t magic_ = liveSignature;
    std::int32_t lastX_ = noPlace, lastY_ = 0;
    bool lastIsInside_ = false;  // the last looked-up page meets the bounds
    SmartPageRef* lastSlot_ = nullptr;
    ilTile bounds_{0, 0, 0, 0, 0, 1};
    ilTile inherited_ = limitBox;  // where the parent's pages may show; what was cut off is not
    std::uint32_t solidValue_ = 0;
    std::uint8_t channels_, shift_;
    SmartPageRef defaultPage_;
    SmartPageRef outOfBounds_;  // shares defaultPage_
    SmartPageRef outOfRange_;
    std::array<std::unique_ptr<SmartPageColumn>, SmartPageColumn::blockCount> columns_;
    SmartPageBlock first_;  // heads the list; the others are owned through it
    PageSource& owner_;
    std::uint32_t pullCount_ = 0;
    std::uint32_t endMagic_ = liveSignature;
};

}  // namespace brushwork
