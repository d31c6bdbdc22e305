#include "image/cache/cache_evacuation.h"

#include <cstring>
#include <functional>
#include <utility>

#include "image/cache/cache_out.h"
#include "image/memory/memory_manager.h"
#include "image/memory/page_reclaimer.h"

namespace brushwork::pagecache {
namespace {

struct Range {
    const void* low;
    const void* high;  // excluded

    [[nodiscard]] bool holds(const SmartPage& page) const {
        const std::less<const void*> less;
        return page.inMemory() && page.pins == 0 && page.data && !less(page.data, low) &&
               less(page.data, high);
    }
};

class Evacuation {
  public:
    Evacuation(CacheState& state, const Range& range, std::int32_t count)
        : state_(state), range_(range), left_(count) {}

    void walk(const PageList& list) {
        for (SmartPage* page = list.tail(); page && left_ > 0;) {
            SmartPage* const previous = PageList::previous(*page);
            if (range_.holds(*page)) {
                const bool gone = move(*page) || putOut(*page);
                left_ = gone ? left_ - 1 : 0;  // the disk that refused one page is asked no more
            }
            page = previous;
        }
    }

  private:
    bool move(SmartPage& page) {
        if (!roomLeft_) return false;
        BworkMemory& memory = BworkMemory::instance();
        void* const buffer =
            page.channels == 1 ? memory.allocateSmall(false) : memory.allocateBig(false);
        roomLeft_ = buffer != nullptr;
        if (!buffer) return false;
        std::memcpy(buffer, page.data, page.bytes());
        std::uint8_t* const old = std::exchange(page.data, static_cast<std::uint8_t*>(buffer));
        state_.freeBuffer(page.channels, old);
        return true;
    }
    bool putOut(SmartPage& page) {
        if (!pageOut(state_, page)) return false;
        freeBuffer(state_, page);
        return true;
    }

    CacheState& state_;
    Range range_;
    std::int32_t left_;
    bool roomLeft_ = true;
};

}  // namespace

void evacuate(CacheState& state, const void* low, const void* high, std::int32_t count,
              std::uint32_t lists) {
    if (imageFailure() != 0 || state.writing) return;
    Evacuation evacuation(state, {low, high}, count);
    if ((lists & PageReclaimer::smallPages) != 0) evacuation.walk(state.small);
    if ((lists & PageReclaimer::bigPages) != 0) evacuation.walk(state.big);
}

bool canEvacuate(const CacheState& state, const void* low, const void* high, std::int32_t count,
                 std::uint32_t& listsOut) {
    listsOut = 0;
    if (imageFailure() != 0 || state.writing) return false;
    const Range range = {low, high};
    const auto find = [&](const PageList& list, std::uint32_t bit) {
        for (const SmartPage* page = list.tail(); page && count > 0;
             page = PageList::previous(*page)) {
            if (!range.holds(*page)) continue;
            --count;
            listsOut |= bit;
        }
    };
    find(state.small, PageReclaimer::smallPages);
    find(state.big, PageReclaimer::bigPages);
    return count <= 0;
}

}  // namespace brushwork::pagecache
