// PageWalk: the pages of a box, pinned, in an order that reads the swap file front to back.
//
//     PageWalk walk(table, box, PageWalk::Create::No, PageWalk::Order::Swap);
//     while (walk.next())
//         if (walk.realize(RealizeMode::Read)) use(walk.x(), walk.y(), *walk.slot());
#pragma once

#include <cstdint>
#include <vector>

#include "image/smart/page_realize.h"
#include "image/smart/smart_page_table.h"

namespace brushwork {

// Collects all pages first, row by row from the page that holds the box's corner, cut to the
// coordinate limit; each is pinned until the walk has moved past it or ends. A slot stays valid
// for the walk, which must not trim or clear its table; other pages may be put into it. Pins belong
// to pages: of a page that was put into the slot the walk has none, unless its own realize put it
// there. A pin keeps a page from eviction, not a written one from being scanned: who gets memory
// for other pages while working on one locks that hard.
//
// Without creation all places outside the bounds share one slot, which stands for none of them.
class PageWalk {
  public:
    enum class Create { No, Yes };
    // Swap: with 5 pages or more, pages in memory first, then those swapped by place in the file.
    enum class Order { Rows, Swap };

    PageWalk(SmartPageTable& table, const ilTile& box, Create create, Order order = Order::Rows);
    PageWalk(const PageWalk&) = delete;
    PageWalk& operator=(const PageWalk&) = delete;
    ~PageWalk();

    // Before the first page at first; false behind the last one.
    bool next();
    [[nodiscard]] std::int32_t x() const { return entry().x; }  // page origin
    [[nodiscard]] std::int32_t y() const { return entry().y; }
    [[nodiscard]] SmartPageRef& slot() const { return *entry().slot; }
    // The page's box.
    [[nodiscard]] ilTile tile() const { return flatTile(x(), y(), pageSide, pageSide); }
    // realizePage for the present slot; the page that stands in it then has the walk's pin.
    [[nodiscard]] bool realize(RealizeMode mode);

    [[nodiscard]] std::size_t count() const { return entries_.size(); }
    // No page needs the disk. Only a walk without creation can say so.
    [[nodiscard]] bool allInMemory() const { return allInMemory_; }
    // False if pages were left out for want of memory.
    [[nodiscard]] bool isComplete() const { return complete_; }

  private:
    static constexpr std::size_t fewPages = 5;  // below it order isn't worth sorting

    struct Entry {
        std::int32_t x, y;
        SmartPageRef* slot;
        SmartPage* pinned;  // null: no more
    };
    [[nodiscard]] const Entry& entry() const { return entries_[index_ - 1]; }
    void collect(SmartPageTable& table, const ilTile& box, bool create);
    void sortBySwapPlace();
    static void dropPin(Entry& entry);

    std::vector<Entry> entries_;
    std::size_t index_ = 0;  // of the entry behind the present one
    bool allInMemory_ = false;
    bool complete_ = true;
};

// Touches the pages of the box that are in memory and reads those that are swapped, in the order of
// their places in the file.
void prefetchPages(SmartPageTable& table, const ilTile& box);

}  // namespace brushwork
