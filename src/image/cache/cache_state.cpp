#include "image/cache/cache_state.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "foundation/services/settings.h"
#include "image/cache/memory_budget.h"
#include "image/memory/memory_manager.h"

namespace brushwork {
namespace {

constexpr std::array<std::size_t, 4> stampPlaces{0, 127, 16256, 16383};
constexpr std::uint8_t freshByte = 53, freedByte = 165;
constexpr std::uint32_t freshWord = 0xFF10FF10, freedWord = 0xFF1010FF;

void fillBuffer(std::uint8_t channels, std::uint8_t* buffer, std::uint8_t byte,
                std::uint32_t word) {
    if (channels == 1)
        std::memset(buffer, byte, pagePixels);
    else
        std::fill_n(reinterpret_cast<std::uint32_t*>(buffer), pagePixels, word);
}

void stampBuffer(const SmartPage& page, std::uint8_t* buffer) {
    std::uint8_t mark = 0x11;
    for (const std::size_t place : stampPlaces) {
        std::memset(buffer + (place << page.shift), mark, std::size_t{1} << page.shift);
        mark = static_cast<std::uint8_t>(mark + 0x11);
    }
}

}  // namespace

CacheState::CacheState()
    : checking(cacheSettings().checking),
      budget(budgetMegabytes(physicalMegabytes())),
      limit(firstCacheBytes(budget)),
      maxBytes(limit),
      bigSwap(SwapFile::fourChannels, swapDirectories, imageFailure),
      smallSwap(SwapFile::oneChannel, swapDirectories, imageFailure) {}

PageList* CacheState::homeOf(const SmartPage& page) {
    if (page.state == PageState::Swapped) return &swapped;
    if (!page.inMemory()) return nullptr;
    return page.cacheLocks > 0 ? &locked : &listOf(page.channels);
}

void CacheState::enter(SmartPage& page) {
    PageList* const home = homeOf(page);
    if (!home || home->mayHold(page)) return;
    home->pushFront(page);
    check();
}

void CacheState::leave(SmartPage& page) {
    PageList* const home = homeOf(page);
    if (!home || !home->mayHold(page)) return;
    home->remove(page);
    check();
}

void CacheState::promote(SmartPage& page) {
    PageList* const home = homeOf(page);
    if (!home || !home->mayHold(page)) return;
    home->moveToFront(page);
    check();
}

void CacheState::enterScan(SmartPage& page) {
    if (!page.inMemory() || page.unscanned == 0) return;
    page.unscanned = 0;
    scan.pushFront(page);
    idleWork = true;
    check();
}

void CacheState::leaveScan(SmartPage& page) {
    if (page.unscanned != 0) return;
    scan.remove(page);
    page.unscanned = 1;
    check();
}

void CacheState::freeBuffer(std::uint8_t channels, std::uint8_t* buffer) const {
    if (!buffer) return;
    if (checking) fillBuffer(channels, buffer, freedByte, freedWord);
    BworkMemory& memory = BworkMemory::instance();
    channels == 1 ? memory.releaseSmall(buffer) : memory.releaseBig(buffer);
}

void CacheState::markFresh(const SmartPage& page, std::uint8_t* buffer) const {
    if (checking) fillBuffer(page.channels, buffer, freshByte, freshWord);
    stampBuffer(page, buffer);
}

bool CacheState::checkLists() const {
    if (imageFailure() != 0) return false;
    const auto holds = [](bool isLocked, std::uint8_t channels) {
        return [=](const SmartPage& page) {
            return page.inMemory() && page.data && (page.cacheLocks > 0) == isLocked &&
                   (isLocked || page.channels == channels);
        };
    };
    const bool sound =
        magic == liveSignature && big.isSound(holds(false, 4)) && small.isSound(holds(false, 1)) &&
        locked.isSound(holds(true, 0)) && swapped.isSound([](const SmartPage& page) {
            return page.state == PageState::Swapped && page.swapRecord;
        }) &&
        scan.isSound([](const SmartPage& page) { return page.inMemory() && page.unscanned == 0; });
    if (!sound) noteImageFailure();
    return sound;
}

}  // namespace brushwork
