// Who leaves memory, where to, and what stays when the disk or the memory is at its end.
#include <algorithm>
#include <vector>

#include "cache_rig.h"
#include "image/memory/image_health.h"

namespace brushwork {
namespace {

using test::CacheRig;
using test::Manager;

class CacheEviction : public testing::TestWithParam<Manager> {
  protected:
    void takeBack(void* buffer) { BworkMemory::instance().releaseBig(buffer); }
    // No directory takes a file, and the host ends each wait.
    void breakDisk(bool broken = true) {
        const std::u16string none = (rig_.root / "none" / "none").u16string();
        const auto nowhere = [none] { return SwapDirectories{none, none, none}; };
        for (SwapFile* file : {&cache_.bigSwap(), &cache_.smallSwap()})
            broken ? file->setDirectories(nowhere) : file->setDirectories(swapDirectories);
        cache_.setSwapQuestion([this](const SwapTrouble&) {
            ++asked_;
            return SwapAnswer::GiveUp;
        });
    }
    CacheRig rig_{GetParam()};
    SmartImageCache& cache_ = rig_.cache;
    int asked_ = 0;
};

TEST_P(CacheEviction, NothingToGive) {
    EXPECT_EQ(cache_.evictForBig(), nullptr);
    EXPECT_EQ(cache_.evictForSmall(), nullptr);
    SmartPage& small = rig_.draw(1, 1);
    EXPECT_EQ(cache_.evictForBig(), nullptr);
    cache_.hardLock(small);
    EXPECT_EQ(cache_.evictForSmall(), nullptr);
}

TEST_P(CacheEviction, TheOldestWithoutPinsAndABigOneForASmallRequest) {
    SmartPage& oldest = rig_.draw(4, 1);
    SmartPage& second = rig_.draw(4, 2);
    SmartPage& third = rig_.draw(4, 3);
    cache_.touch(oldest);
    {
        const PagePin pin(second);
        takeBack(cache_.evictForSmall());
        EXPECT_EQ(third.state, PageState::Swapped);
    }
    takeBack(cache_.evictForBig());
    EXPECT_EQ(second.state, PageState::Swapped);
    EXPECT_EQ(cache_.counts().usedBytes, 65536U);
    EXPECT_EQ(cache_.swapBytes(), 2U * 65536);
    EXPECT_TRUE(cache_.pageIn(third));
    EXPECT_TRUE(CacheRig::holds(third, 3));
    EXPECT_TRUE(CacheRig::holds(oldest, 1));
    SmartPage& small = rig_.draw(1, 4);
    takeBack(cache_.evictForSmall());
    EXPECT_EQ(small.state, PageState::Swapped);
}

TEST_P(CacheEviction, CollapseComesBeforeTheDisk) {
    SmartPage& plain = rig_.draw(4, 1);
    SmartPage& mixed = rig_.draw(4, 2);
    SmartPage& uniform = rig_.draw(4, 3);
    CacheRig::fill(uniform, 0xFF);
    for (SmartPage* page : {&uniform, &mixed}) cache_.addScan(*page);
    takeBack(cache_.evictForBig());
    EXPECT_TRUE(uniform.isSolid());
    EXPECT_EQ(uniform.solid, 0xFFFFFFFFU);
    EXPECT_EQ(uniform.data, nullptr);
    EXPECT_EQ(mixed.unscanned, 1);  // looked at on the way
    EXPECT_TRUE(plain.inMemory());
    EXPECT_EQ(cache_.counts().swapWrites, 0U);
    EXPECT_FALSE(cache_.bigSwap().isOpen());
    EXPECT_EQ(rig_.swapFiles(), 0U);
}

TEST_P(CacheEviction, AClearPageNeverReachesTheFile) {
    SmartPage& page = rig_.draw(4, 1);
    CacheRig::fill(page, 0);
    takeBack(cache_.evictForBig());
    EXPECT_TRUE(page.isSolid());
    EXPECT_EQ(page.solid, 0U);
    EXPECT_EQ(cache_.counts().swapped, 0);
    EXPECT_FALSE(cache_.bigSwap().isOpen());
}

TEST_P(CacheEviction, AnUnchangedPageLeavesAgainWithoutAWrite) {
    SmartPage& page = rig_.draw(1, 1);
    takeBack(cache_.evictForSmall());
    const SwapRecord* const record = page.swapRecord;
    ASSERT_TRUE(cache_.pageIn(page));
    EXPECT_EQ(page.swapRecord, record);
    takeBack(cache_.evictForSmall());
    EXPECT_EQ(page.swapRecord, record);
    EXPECT_EQ(cache_.counts().swapWrites, 1U);
    ASSERT_TRUE(cache_.pageIn(page));
    cache_.dropSwapRecord(page);
    EXPECT_EQ(cache_.swapBytes(), 0U);
    page.data[5] = static_cast<std::uint8_t>(page.data[5] + 1);
    takeBack(cache_.evictForSmall());
    EXPECT_EQ(cache_.counts().swapWrites, 2U);
    EXPECT_EQ(cache_.counts().misses, 2U);
}

TEST_P(CacheEviction, PinsDontHoldAScanStepBackButLocksDo) {
    SmartPage& locked = rig_.draw(4, 1);
    SmartPage& pinned = rig_.draw(4, 2);
    SmartPage& mixed = rig_.draw(4, 3);
    for (SmartPage* page : {&locked, &pinned}) CacheRig::fill(*page, 9);
    cache_.addScan(mixed);
    cache_.addScan(pinned);
    cache_.hardLock(locked);
    cache_.addScan(locked);
    const PagePin pin(pinned);
    EXPECT_TRUE(cache_.idleStep());
    EXPECT_TRUE(pinned.isSolid());
    EXPECT_TRUE(cache_.idleStep());
    EXPECT_TRUE(mixed.inMemory());
    EXPECT_EQ(mixed.unscanned, 1);
    EXPECT_TRUE(cache_.idleStep());  // the locked one waits
    EXPECT_TRUE(locked.inMemory());
    cache_.hardUnlock(locked);
    EXPECT_FALSE(cache_.idleStep());
    EXPECT_TRUE(locked.isSolid());
}

TEST_P(CacheEviction, ARefusingDiskLosesNothing) {
    breakDisk();
    for (std::uint32_t seed = 1; seed <= 4; ++seed) rig_.draw(seed % 2 == 0 ? 4 : 1, seed);
    EXPECT_EQ(cache_.evictForBig(), nullptr);
    EXPECT_EQ(asked_, 1);
    EXPECT_EQ(cache_.evictForSmall(), nullptr);
    cache_.setCeiling(65536);
    cache_.setCeiling(0);
    std::uint32_t lists = 0;
    EXPECT_TRUE(cache_.canEvacuate(nullptr, reinterpret_cast<void*>(~std::uintptr_t{0}), 4, lists));
    EXPECT_EQ(lists, PageReclaimer::smallPages | PageReclaimer::bigPages);
    for (std::uint32_t seed = 1; seed <= 4; ++seed)
        EXPECT_TRUE(CacheRig::holds(*rig_.pages[seed - 1], seed)) << seed;
    EXPECT_EQ(cache_.counts().usedBytes, 2U * (65536 + 16384));
    EXPECT_EQ(cache_.counts().swapWrites, 0U);
    EXPECT_GE(cache_.counts().failedWrites, 3U);
    EXPECT_EQ(imageFailure(), 0);
    // Room on the disk again.
    breakDisk(false);
    takeBack(cache_.evictForBig());
    EXPECT_EQ(rig_.pages[1]->state, PageState::Swapped);
}

TEST_P(CacheEviction, NoPageGoesOutWhileOneIsBeingWritten) {
    breakDisk();
    SmartPage& page = rig_.draw(4, 1);
    rig_.draw(4, 2);
    void* inner = this;
    cache_.setSwapQuestion([&](const SwapTrouble&) {
        inner = cache_.evictForBig();
        cache_.evacuate(nullptr, reinterpret_cast<void*>(~std::uintptr_t{0}), 2, 3);
        return SwapAnswer::GiveUp;
    });
    EXPECT_EQ(cache_.evictForBig(), nullptr);
    EXPECT_EQ(inner, nullptr);
    EXPECT_TRUE(CacheRig::holds(page, 1));
}

TEST_P(CacheEviction, TheFailureFlagStopsAllOfIt) {
    SmartPage& page = rig_.draw(4, 1);
    SmartPage& uniform = rig_.draw(4, 2);
    CacheRig::fill(uniform, 1);
    cache_.addScan(uniform);
    const std::uint64_t before = cache_.counts().maxBytes;
    noteImageFailure();
    cache_.setMaxBytes(std::uint64_t{64} << 20);
    cache_.setCeiling(1);
    EXPECT_FALSE(cache_.idleStep());
    EXPECT_EQ(cache_.evictForBig(), nullptr);
    EXPECT_EQ(cache_.evictForSmall(), nullptr);
    cache_.evacuate(nullptr, reinterpret_cast<void*>(~std::uintptr_t{0}), 2, 3);
    EXPECT_TRUE(page.inMemory());
    EXPECT_TRUE(uniform.inMemory());
    EXPECT_FALSE(cache_.isConsistent());
    cache_.setCeiling(0);
    EXPECT_EQ(cache_.counts().maxBytes, before);
}

TEST_P(CacheEviction, ACeilingHoldsByReusingWhatLeaves) {
    constexpr std::uint64_t ceiling = 20 * 65536;
    cache_.setCeiling(ceiling);
    EXPECT_EQ(cache_.counts().maxBytes, ceiling);
    for (std::uint32_t seed = 1; seed <= 60; ++seed) {
        rig_.draw(seed % 7 == 0 ? 1 : 4, seed);
        ASSERT_LE(cache_.counts().usedBytes, ceiling);
        ASSERT_TRUE(cache_.isConsistent());
    }
    EXPECT_GT(cache_.counts().swapped, 30);
    for (std::uint32_t seed = 60; seed >= 1; --seed) {
        SmartPage& page = *rig_.pages[seed - 1];
        ASSERT_TRUE(cache_.pageIn(page)) << seed;
        ASSERT_TRUE(CacheRig::holds(page, seed));
        ASSERT_LE(cache_.counts().usedBytes, ceiling);
    }
    cache_.setMaxBytes(std::uint64_t{128} << 20);
    EXPECT_EQ(cache_.counts().maxBytes, ceiling);
    cache_.setCeiling(65536);
    EXPECT_LE(cache_.counts().usedBytes, 65536U);
    cache_.setCeiling(0);
    EXPECT_EQ(cache_.counts().maxBytes, std::uint64_t{128} << 20);
}

TEST_P(CacheEviction, EachAllocationMayFail) {
    static int left;
    for (const std::uint8_t channels : {std::uint8_t{1}, std::uint8_t{4}}) {
        for (int fails = 1; fails <= 6; ++fails) {
            SmartPage& page = rig_.draw(channels, 1);
            SmartPage& other = rig_.draw(channels, 2);
            left = fails;
            setAllocationRefusal(+[]() noexcept { return --left == 0; });
            // Record, buffer, swap record, page record, buffer of the page read.
            if (SmartPage* const fresh = makeSmartPage(channels, 0)) {
                const bool got = cache_.allocatePage(*fresh);
                EXPECT_EQ(got, fresh->inMemory());
                EXPECT_EQ(fresh->data != nullptr, got);
                cache_.releasePage(*fresh);
                destroySmartPage(fresh);
            } else {
                EXPECT_EQ(fails, 1);
            }
            if (cache_.pageOut(page)) {
                BworkMemory::instance().releaseBig(cache_.detachBuffer(page));
                const bool back = cache_.pageIn(page);
                EXPECT_EQ(page.state, back ? PageState::InMemory : PageState::Swapped);
            } else if (page.state != PageState::Swapped) {  // evicted for the new page
                EXPECT_TRUE(CacheRig::holds(page, 1));
            }
            setAllocationRefusal(nullptr);
            clearImageFailure();  // an end of memory is noted there
            EXPECT_TRUE(cache_.pageIn(page));
            EXPECT_TRUE(cache_.pageIn(other));
            EXPECT_TRUE(CacheRig::holds(page, 1));
            EXPECT_TRUE(CacheRig::holds(other, 2));
            EXPECT_TRUE(cache_.isConsistent());
            rig_.drop();
        }
    }
}

TEST_P(CacheEviction, AnEvacuatedRangeIsEmptyAndNothingIsLost) {
    for (std::uint32_t seed = 1; seed <= 24; ++seed) rig_.draw(seed % 3 == 0 ? 1 : 4, seed);
    SmartPage& pinned = *rig_.pages[4];
    SmartPage& locked = *rig_.pages[6];
    const PagePin pin(pinned);
    cache_.hardLock(locked);
    const auto less = [](const SmartPage* a, const SmartPage* b) { return a->data < b->data; };
    std::vector<SmartPage*> sorted = rig_.pages;
    std::sort(sorted.begin(), sorted.end(), less);
    const std::uint8_t* const low = sorted[3]->data;
    const std::uint8_t* const high = sorted[18]->data;
    const std::uint8_t* const pinnedData = pinned.data;
    const auto inRange = [=](const SmartPage* page) {
        return page->data && page->data >= low && page->data < high && page->pins == 0 &&
               page->cacheLocks == 0;
    };
    const auto count =
        static_cast<std::int32_t>(std::count_if(rig_.pages.begin(), rig_.pages.end(), inRange));
    std::uint32_t lists = 0;
    EXPECT_TRUE(cache_.canEvacuate(low, high, count, lists));
    EXPECT_FALSE(cache_.canEvacuate(low, high, count + 1, lists));
    const std::uint64_t allocated = cache_.counts().allocated;
    // Memory for three pages; then they go to the disk.
    static int left;
    left = 3;
    setAllocationRefusal(+[]() noexcept {
        if (left > 0) return --left < 0;
        left = left == 0 ? -1 : left;
        return left == -1 ? (left = -2, true) : false;
    });
    cache_.evacuate(low, high, count - 1, 3);
    setAllocationRefusal(nullptr);
    // New buffers may lie in the range again if there is no block that keeps them out.
    if (GetParam() == Manager::Off) {
        EXPECT_EQ(cache_.counts().swapped, count - 1 - 3);
    }
    EXPECT_EQ(cache_.counts().allocated, allocated);
    EXPECT_TRUE(cache_.isConsistent());
    for (std::uint32_t seed = 1; seed <= 24; ++seed) {
        EXPECT_TRUE(cache_.pageIn(*rig_.pages[seed - 1]));
        EXPECT_TRUE(CacheRig::holds(*rig_.pages[seed - 1], seed)) << seed;
    }
    EXPECT_EQ(pinned.data, pinnedData);
}

INSTANTIATE_TEST_SUITE_P(Both, CacheEviction, testing::Values(Manager::Off, Manager::On),
                         [](const auto& row) {
                             return row.param == Manager::On ? "ManagerOn" : "ManagerOff";
                         });

// The manager's own shortage: blocks of 15 megabytes, and many more of them.
TEST(CacheWithManager, ShortageEvictsAndCompactEmptiesBlocks) {
    CacheRig rig(Manager::On, 32);
    BworkMemory& memory = BworkMemory::instance();
    for (std::uint32_t seed = 1; seed <= 400; ++seed) rig.draw(seed % 5 == 0 ? 1 : 4, seed);
    EXPECT_LE(rig.cache.counts().usedBytes, std::uint64_t{memory.megabytes()} << 20);
    EXPECT_GT(rig.cache.counts().swapped, 100);
    for (std::uint32_t seed = 400; seed >= 1; --seed) {
        ASSERT_TRUE(rig.cache.pageIn(*rig.pages[seed - 1])) << seed;
        ASSERT_TRUE(CacheRig::holds(*rig.pages[seed - 1], seed));
    }
    EXPECT_TRUE(memory.compact());
    EXPECT_TRUE(rig.cache.isConsistent());
    ASSERT_TRUE(rig.cache.pageIn(*rig.pages[0]));
    EXPECT_TRUE(CacheRig::holds(*rig.pages[0], 1));
}

// A page taken and given back in turn comes from the same warm memory each time.
TEST(CacheWithManager, TheBlockEmptiedLastIsTakenAgain) {
    CacheRig rig(Manager::On);
    BworkMemory& memory = BworkMemory::instance();
    std::vector<void*> first;  // they fill the blocks of 10, 5 and 2 megabytes
    for (int i = 0; i < 272; ++i) first.push_back(memory.allocateBig(false));
    for (void* page : first) memory.releaseBig(page);
    std::vector<void*> again;
    for (int i = 0; i < 272; ++i) again.push_back(memory.allocateBig(false));
    for (void* page : again) memory.releaseBig(page);
    std::sort(first.begin(), first.end());
    std::sort(again.begin(), again.end());
    EXPECT_EQ(again, first);
    // What somebody else had meanwhile is as old as it looks.
    void* const block = memory.allocate(std::size_t{10} << 20);
    memory.release(block);
    void* const page = memory.allocateBig(false);
    memory.releaseBig(page);
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(memory.allocateBig(false), page);
        memory.releaseBig(page);
    }
}

}  // namespace
}  // namespace brushwork
