#include "image/smart/pending_pages.h"

#include <memory>
#include <new>
#include <set>
#include <tuple>

namespace brushwork {
namespace {

using Promise = std::tuple<const ilImage*, std::int32_t, std::int32_t, SmartPage*>;

// Never destroyed: pages go back while the process ends.
std::set<Promise>& promises() {
    static std::set<Promise>& all = *std::make_unique<std::set<Promise>>().release();
    return all;
}

}  // namespace

bool promisePage(SmartPage& page, ilImage& source, std::int32_t x, std::int32_t y) {
    endPromise(page);
    try {
        promises().emplace(&source, x, y, &page);
    } catch (const std::bad_alloc&) {
        return false;
    }
    if (attachPendingRead(page, source, x, y)) return true;
    promises().erase({&source, x, y, &page});
    return false;
}

void endPromise(SmartPage& page) {
    if (!page.pending) return;
    promises().erase({page.pending->source.get(), page.pending->x, page.pending->y, &page});
    dropPendingRead(page);
}

SmartPage* nextPromised(const ilImage& source, std::int32_t x, std::int32_t y, SmartPage* after) {
    const auto next = promises().upper_bound({&source, x, y, after});
    if (next == promises().end()) return nullptr;
    const auto [from, atX, atY, page] = *next;
    return from == &source && atX == x && atY == y ? page : nullptr;
}

}  // namespace brushwork
