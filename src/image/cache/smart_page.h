// SmartPage: the record of one page of 128 by 128 pixels, and how pages are counted and made.
//
// A page is a block of memory, one repeated value, a record in the swap file, or a promise to read
// from another image. Holders share it; who writes takes a copy first if there is another holder.
// The record knows no cache: SmartPageRef, above the cache, releases it. A large document has some
// hundred thousand of them, so its fields are ordered by size and leave no gaps.
#pragma once

#include <cstddef>
#include <cstdint>

#include "brushwork/ref.h"
#include "image/chain/il_image.h"
#include "image/memory/image_health.h"
#include "image/swap/swap_record.h"

namespace brushwork {

constexpr std::int32_t pageSide = 128;  // pixels
constexpr std::int32_t pagePixels = pageSide * pageSide;
constexpr std::int32_t coordinateLimit = 102400;  // pixels on either side of zero, excluded above

enum class PageState : std::int32_t {
    Invalid = 0,
    InMemory = 1,  // data
    Swapped = 2,   // swapRecord
    Solid = 3,     // solid
    NeverSet = 4,
    Pending = 6,  // pending
    Freed = 7,
    Unrealized = 8,
    ZeroReference = 9,
};

enum class AlphaClass : std::int32_t { Mixed = 0, Clear = 1, Opaque = 2, NoPage = 3 };

// A page that will be read from `source`, whose box of one page begins at (x, y).
struct PendingRead {
    std::uint32_t magic = liveSignature;
    Ref<ilImage> source;
    std::int32_t x = 0, y = 0;
};

struct SmartPage {
    static constexpr std::uint8_t mustStaySolid = 255;  // in `unscanned`

    SmartPage* lruNext = nullptr;  // of the cache list it is on; first: see destroySmartPage
    SmartPage* lruPrev = nullptr;
    SmartPage* scanNext = nullptr;
    SmartPage* scanPrev = nullptr;
    std::uint8_t* data = nullptr;           // state 1
    PendingRead* pending = nullptr;         // state 6; owned
    SwapRecord* swapRecord = nullptr;       // state 2; in state 1: the same pixels on disk
    const SmartPage* sourcePage = nullptr;  // what it was cloned from; compared, never followed
    // In memory or swapped, of 4 channels: the cells of 16 by 16 pixels that hold something other
    // than 0, bit x / 16 + y / 16 * 8. 0: nobody has looked since it was written.
    std::uint64_t filledCells = 0;
    std::uint32_t magic = liveSignature;
    std::uint32_t solid = 0;     // state 3; the low byte for one channel
    std::int32_t userLocks = 0;  // by lockPages
    std::int32_t refCount = 0;   // SmartPageRefs
    std::uint32_t stamp = 0;     // of its last use; after release the reason
    PageState state = PageState::Invalid;
    AlphaClass alphaClass = AlphaClass::Mixed;
    std::int32_t pins = 0;         // above 0 the allocator leaves it alone
    std::uint16_t cacheLocks = 0;  // hard locks
    std::uint8_t locked = 0;       // 255 while hard-locked
    std::uint8_t channels = 4;
    std::uint8_t shift = 2;  // log2 of bytes a pixel
    std::uint8_t cloned = 0;
    std::uint8_t clean = 1;      // until it is written
    std::uint8_t unscanned = 1;  // 0: on the scan list

    [[nodiscard]] std::size_t bytes() const { return std::size_t{pagePixels} << shift; }
    [[nodiscard]] bool isLive() const { return magic == liveSignature; }
    [[nodiscard]] bool inMemory() const { return state == PageState::InMemory; }
    [[nodiscard]] bool isSolid() const { return state == PageState::Solid; }
};

// A solid page without holders, 1 or 4 channels; null without memory. Of one channel's value the
// low byte counts.
[[nodiscard]] SmartPage* makeSmartPage(std::uint8_t channels, std::uint32_t solid);
// Marks the record dead and gives it back to its pool, which links free records by their first
// word: signature and reason stay to be seen. It holds no memory and no swap record, and
// is on no list; a pending read goes with it.
void destroySmartPage(SmartPage* page);
// Records in use.
[[nodiscard]] std::uint32_t smartPageCount();

// A pending-read record, in place of one that it has, and state 6; false without memory: the page
// stays as it was.
bool attachPendingRead(SmartPage& page, ilImage& source, std::int32_t x, std::int32_t y);
void dropPendingRead(SmartPage& page);

// The cheap test of a record before it is used: its signature. A wrong one is logged with the
// reason of the release that killed it, and sets the failure flag.
bool checkSmartPage(const SmartPage& page);

// Keeps a page from being evicted or moved for a scope. A scan step may still turn it solid: who
// holds its address while pages are allocated takes a hard lock.
class PagePin {
  public:
    explicit PagePin(SmartPage& page) : page_(&page) { ++page_->pins; }
    PagePin(const PagePin&) = delete;
    PagePin& operator=(const PagePin&) = delete;
    ~PagePin() { --page_->pins; }

  private:
    SmartPage* page_;
};

}  // namespace brushwork
