#include "image/smart/page_walk.h"

#include <algorithm>
#include <new>
#include <tuple>
#include <utility>

#include "image/cache/smart_image_cache.h"

namespace brushwork {
namespace {

std::size_t mostPages(const ilTile& box) {
    const auto across = static_cast<std::size_t>(box.nx + 2 * pageSide);
    const auto down = static_cast<std::size_t>(box.ny + 2 * pageSide);
    return across / pageSide * (down / pageSide) + 1;
}

// Pages in memory come first, in the order in which they were collected.
std::pair<bool, std::uint64_t> swapPlace(const SmartPage& page) {
    const bool swapped = page.state == PageState::Swapped && page.swapRecord;
    return {swapped, swapped ? page.swapRecord->offset : 0};
}

}  // namespace

PageWalk::PageWalk(SmartPageTable& table, const ilTile& box, Create create, Order order) {
    const ilTile clipped = clippedToLimit(box);
    if (clipped.isEmpty()) return;
    try {
        entries_.reserve(mostPages(clipped));
    } catch (const std::bad_alloc&) {
        complete_ = false;
        return;
    }
    collect(table, clipped, create == Create::Yes);
    if (order == Order::Swap && !allInMemory_ && entries_.size() >= fewPages) sortBySwapPlace();
}

void PageWalk::collect(SmartPageTable& table, const ilTile& box, bool create) {
    allInMemory_ = !create;
    for (std::int32_t y = box.y & pageMask; y < box.endY(); y += pageSide)
        for (std::int32_t x = box.x & pageMask; x < box.endX(); x += pageSide) {
            SmartPageRef* const slot = table.pageRef(x, y, create);
            if (!slot) {
                complete_ = false;
                continue;
            }
            SmartPage& page = **slot;
            ++page.pins;
            if (!page.inMemory() && !page.isSolid()) allInMemory_ = false;
            entries_.push_back({x, y, slot, &page});
        }
}

void PageWalk::sortBySwapPlace() {
    std::sort(entries_.begin(), entries_.end(), [](const Entry& a, const Entry& b) {
        return std::make_tuple(swapPlace(*a.pinned), a.y, a.x) <
               std::make_tuple(swapPlace(*b.pinned), b.y, b.x);
    });
}

PageWalk::~PageWalk() {
    for (Entry& entry : entries_) dropPin(entry);
}

void PageWalk::dropPin(Entry& entry) {
    if (SmartPage* const page = std::exchange(entry.pinned, nullptr)) unpinPage(*page);
}

bool PageWalk::next() {
    if (index_ > 0 && index_ <= entries_.size()) dropPin(entries_[index_ - 1]);
    if (index_ < entries_.size()) {
        ++index_;
        return true;
    }
    index_ = entries_.size() + 1;
    return false;
}

bool PageWalk::realize(RealizeMode mode) {
    Entry& present = entries_[index_ - 1];
    const bool realized = realizePage(*present.slot, mode);
    SmartPage* const page = present.slot->get();
    if (page == present.pinned) return realized;
    if (page) ++page->pins;
    dropPin(present);
    present.pinned = page;
    return realized;
}

void prefetchPages(SmartPageTable& table, const ilTile& box) {
    SmartImageCache& cache = SmartImageCache::instance();
    std::vector<SmartPageRef*> swapped;
    PageWalk walk(table, box, PageWalk::Create::No);
    try {
        swapped.reserve(walk.count());
    } catch (const std::bad_alloc&) {
        return;  // nobody is owed a prefetch
    }
    while (walk.next()) {
        SmartPage& page = *walk.slot();
        if (page.inMemory())
            cache.touch(page);
        else if (page.state == PageState::Swapped)
            swapped.push_back(&walk.slot());
    }
    std::sort(swapped.begin(), swapped.end(), [](const SmartPageRef* a, const SmartPageRef* b) {
        return swapPlace(**a) < swapPlace(**b);
    });
    for (SmartPageRef* slot : swapped)
        if ((*slot)->state == PageState::Swapped && !realizePage(*slot, RealizeMode::Read)) return;
}

}  // namespace brushwork
