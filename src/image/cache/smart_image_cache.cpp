#include "image/cache/smart_image_cache.h"

#include <cinttypes>
#include <cstdlib>
#include <utility>

#include "foundation/services/log.h"
#include "foundation/services/settings.h"
#include "image/cache/cache_evacuation.h"
#include "image/cache/cache_eviction.h"
#include "image/cache/cache_in.h"
#include "image/cache/cache_out.h"
#include "image/cache/cache_scan.h"
#include "image/cache/cache_sizes.h"
#include "image/cache/cache_state.h"

namespace brushwork {
namespace {

void tellSettings() {
    if (cacheSettings().checking) log("SID: SmartImage checking is enabled.\n");
    if (!cacheSettings().oldImageId) return;
    log("\nSID: Using Old ImageID method. Performance may be degraded.\n");
    log("ZenonCanvas: to use the new method, unsetenv ZENON_ZC_USE_OLD_IMAGEID\n\n");
}

void removeSwapFiles() {
    noteImageFailure();
    SmartImageCache& cache = SmartImageCache::instance();
    cache.bigSwap().close();
    cache.smallSwap().close();
}

// Back into memory; nothing may leave meanwhile.
void bringBack(CacheState& state) {
    for (SmartPage* page = state.swapped.head(); page;) {
        SmartPage* const next = PageList::next(*page);
        static_cast<void>(pagecache::pageIn(state, *page));
        page = next;
    }
    for (const PageList* list : {&state.big, &state.small, &state.locked})
        for (SmartPage* page = list->head(); page; page = PageList::next(*page))
            pagecache::dropSwapRecord(state, *page);
}

}  // namespace

SmartImageCache& SmartImageCache::instance() {
    // Never destroyed: pages go back while the process ends.
    static SmartImageCache& cache = []() -> SmartImageCache& {
        std::unique_ptr<SmartImageCache> made(new SmartImageCache);
        std::atexit(removeSwapFiles);
        return *made.release();
    }();
    return cache;
}

SmartImageCache::SmartImageCache() : state_(std::make_unique<CacheState>()) {
    tellSettings();
    setPageReclaimer(this);
}

SmartImageCache::~SmartImageCache() {
    if (pageReclaimer() == this) setPageReclaimer(nullptr);
}

bool SmartImageCache::reset() {
    SmartImageCache& cache = instance();
    const CacheState& old = *cache.state_;
    if (old.images > 0 || old.big.head() || old.small.head() || old.locked.head() ||
        old.swapped.head())
        return false;
    resetSettings();
    cache.state_ = std::make_unique<CacheState>();
    tellSettings();
    setPageReclaimer(&cache);
    return true;
}

void SmartImageCache::touch(SmartPage& page) {
    CacheState& state = *state_;
    if (page.stamp == state.nextStamp - 1) return;  // nobody else was touched since
    page.stamp = state.nextStamp++;
    if (page.inMemory() && page.cacheLocks == 0) state.promote(page);
}

void SmartImageCache::countHit() {
    ++state_->hits;
}

void SmartImageCache::countClone() {
    ++state_->cloned;
}

bool SmartImageCache::allocatePage(SmartPage& page) {
    return pagecache::allocatePage(*state_, page);
}

void SmartImageCache::releasePage(SmartPage& page, void** handback) {
    pagecache::releasePage(*state_, page, handback);
}

bool SmartImageCache::pageOut(SmartPage& page) {
    return pagecache::pageOut(*state_, page);
}

void* SmartImageCache::detachBuffer(SmartPage& page) {
    return page.inMemory() ? nullptr : pagecache::detachBuffer(*state_, page);
}

bool SmartImageCache::pageIn(SmartPage& page) {
    return pagecache::pageIn(*state_, page);
}

void SmartImageCache::dropSwapRecord(SmartPage& page) {
    if (page.state != PageState::Swapped) pagecache::dropSwapRecord(*state_, page);
}

void SmartImageCache::hardLock(SmartPage& page) {
    pagecache::hardLock(*state_, page);
}

void SmartImageCache::hardUnlock(SmartPage& page) {
    pagecache::hardUnlock(*state_, page);
}

void SmartImageCache::addPage(SmartPage& page) {
    if (page.inMemory()) return state_->enter(page);
    log("SID: Error: Adding a page that's not ValidInMem\n");
}

void SmartImageCache::removePage(SmartPage& page) {
    if (page.inMemory()) state_->leave(page);
}

void SmartImageCache::addSwapped(SmartPage& page) {
    if (page.state == PageState::Swapped) state_->enter(page);
}

void SmartImageCache::removeSwapped(SmartPage& page) {
    if (page.state == PageState::Swapped) state_->leave(page);
}

void SmartImageCache::addScan(SmartPage& page) {
    state_->enterScan(page);
}

void SmartImageCache::removeScan(SmartPage& page) {
    state_->leaveScan(page);
}

bool SmartImageCache::idleStep() {
    if (imageFailure() != 0) return false;
    CacheState& state = *state_;
    pagecache::scanStep(state);
    state.idleWork = state.scan.head() != nullptr;
    if (!state.idleWork) pagecache::adjustToMemory(state, true, false);
    return state.idleWork;
}

void SmartImageCache::setMaxBytes(std::uint64_t bytes) {
    pagecache::setMaxBytes(*state_, bytes);
}

void SmartImageCache::adjustToMemory(bool mayShrink, bool, bool growALittle) {
    pagecache::adjustToMemory(*state_, mayShrink, growALittle);
}

void SmartImageCache::setCeiling(std::uint64_t bytes) {
    pagecache::setCeiling(*state_, bytes);
}

void SmartImageCache::report() {
    const CacheState& state = *state_;
    log("Maximum Cache Size: %" PRIu64 ", Hits: %" PRIu32 ", Misses: %" PRIu32 ".\n",
        state.maxBytes, state.hits, state.misses);
    log("In Memory Pages -- Big: %" PRId32 ", Small: %" PRId32 ", Locked: %" PRId32
        ", Total Bytes %" PRIu64 "\n",
        state.big.count(), state.small.count(), state.locked.count(), state.usedBytes);
    log("Dirty Pages on scan list: %" PRId32 "\n", state.scan.count());
}

float SmartImageCache::hitRate() const {
    const CacheState& state = *state_;
    if (state.misses == 0) return 1.0f;
    const std::uint64_t all = std::uint64_t{state.hits} + state.misses;
    return static_cast<float>(state.hits) / static_cast<float>(all);
}

std::uint64_t SmartImageCache::swapBytes() const {
    const std::uint64_t records =
        state_->smallSwap.recordCount() + std::uint64_t{4} * state_->bigSwap.recordCount();
    return records << 14;
}

void SmartImageCache::prepareShutdown() {
    noteImageFailure();
    bringBack(*state_);
    state_->bigSwap.closeIfUnused();
    state_->smallSwap.closeIfUnused();
}

SmartImageCache::Counts SmartImageCache::counts() const {
    const CacheState& state = *state_;
    Counts counts{};
    counts.maxBytes = state.maxBytes;
    counts.usedBytes = state.usedBytes;
    counts.hits = state.hits;
    counts.misses = state.misses;
    counts.scan = state.scan.count();
    counts.big = state.big.count();
    counts.small = state.small.count();
    counts.locked = state.locked.count();
    counts.swapped = state.swapped.count();
    counts.bigSwapRecords = state.bigSwap.recordCount();
    counts.smallSwapRecords = state.smallSwap.recordCount();
    counts.images = state.images;
    counts.allocated = state.allocated;
    counts.cloned = state.cloned;
    counts.swapWrites = state.swapWrites;
    counts.swapReads = state.swapReads;
    counts.failedReads = state.bigSwap.failedReads() + state.smallSwap.failedReads();
    counts.failedWrites = state.bigSwap.failedWrites() + state.smallSwap.failedWrites();
    return counts;
}

bool SmartImageCache::isConsistent() {
    const CacheState& state = *state_;
    if (!state.checkLists()) return false;
    std::uint64_t bytes = 0;
    for (const PageList* list : {&state.big, &state.small, &state.locked})
        for (const SmartPage* page = list->head(); page; page = PageList::next(*page))
            bytes += page->bytes();
    if (bytes != state.usedBytes) noteImageFailure();
    return bytes == state.usedBytes;
}

bool SmartImageCache::checking() const {
    return state_->checking;
}

void SmartImageCache::setSwapQuestion(SwapQuestion question) {
    state_->bigSwap.setQuestion(question);
    state_->smallSwap.setQuestion(std::move(question));
}

SwapFile& SmartImageCache::bigSwap() {
    return state_->bigSwap;
}

SwapFile& SmartImageCache::smallSwap() {
    return state_->smallSwap;
}

void SmartImageCache::imageMade() {
    ++state_->images;
}

void SmartImageCache::imageGone() {
    --state_->images;
}

void* SmartImageCache::evictForBig() {
    return pagecache::evictForBig(*state_);
}

void* SmartImageCache::evictForSmall() {
    return pagecache::evictForSmall(*state_);
}

void SmartImageCache::evacuate(const void* low, const void* high, std::int32_t count,
                               std::uint32_t lists) {
    pagecache::evacuate(*state_, low, high, count, lists);
}

bool SmartImageCache::canEvacuate(const void* low, const void* high, std::int32_t count,
                                  std::uint32_t& listsOut) {
    return pagecache::canEvacuate(*state_, low, high, count, listsOut);
}

PageReclaimer::Figures SmartImageCache::figures() const {
    const CacheState& state = *state_;
    Figures figures;
    figures.inMemoryPages = state.big.count() + state.small.count() + state.locked.count();
    figures.swapObjects =
        static_cast<std::int32_t>(state.bigSwap.recordCount() + state.smallSwap.recordCount());
    figures.pageRecords = static_cast<std::int32_t>(smartPageCount());
    return figures;
}

}  // namespace brushwork
