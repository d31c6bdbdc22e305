#include "image/cache/smart_page.h"

#include <cinttypes>
#include <memory>
#include <new>
#include <type_traits>

#include "foundation/services/log.h"
#include "image/memory/object_pool.h"

namespace brushwork {
namespace {

// Neither is ever destroyed: pages go back while the process ends.
ObjectPool& pagePool() {
    static ObjectPool& pool = *std::make_unique<ObjectPool>(sizeof(SmartPage)).release();
    return pool;
}

ObjectPool& pendingPool() {
    static ObjectPool& pool = *std::make_unique<ObjectPool>(sizeof(PendingRead)).release();
    return pool;
}

}  // namespace

SmartPage* makeSmartPage(std::uint8_t channels, std::uint32_t solid) {
    void* const place = pagePool().allocate();
    if (!place) return nullptr;
    SmartPage& page = *new (place) SmartPage;
    page.state = PageState::Solid;
    page.channels = channels;
    page.shift = channels == 1 ? 0 : 2;
    page.solid = channels == 1 ? solid & 0xFF : solid;
    return &page;
}

void destroySmartPage(SmartPage* page) {
    static_assert(std::is_trivially_destructible_v<SmartPage> &&
                  std::is_standard_layout_v<SmartPage> && offsetof(SmartPage, lruNext) == 0);
    if (!page) return;
    dropPendingRead(*page);
    page->magic = deadSignature;
    page->data = nullptr;
    pagePool().release(page);
}

std::uint32_t smartPageCount() {
    return static_cast<std::uint32_t>(pagePool().usedCount());
}

bool attachPendingRead(SmartPage& page, ilImage& source, std::int32_t x, std::int32_t y) {
    void* const place = pendingPool().allocate();
    if (!place) return false;
    dropPendingRead(page);
    page.pending = new (place) PendingRead{liveSignature, Ref<ilImage>(&source), x, y};
    page.state = PageState::Pending;
    return true;
}

void dropPendingRead(SmartPage& page) {
    PendingRead* const pending = page.pending;
    if (!pending) return;
    page.pending = nullptr;
    pending->magic = deadSignature;
    pending->~PendingRead();
    pendingPool().release(pending);
}

bool checkSmartPage(const SmartPage& page) {
    if (page.isLive()) return true;
    if (imageFailure() != 0) return false;
    log("ZenonCanvas: Invalid page -- Unrefed at %" PRIu32 " (Sig - %8" PRIx32 ")\n", page.stamp,
        page.magic);
    noteImageFailure();
    return false;
}

}  // namespace brushwork
