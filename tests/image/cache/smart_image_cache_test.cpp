// Budgets, limits, texts, settings and the end of the cache.
#include "image/cache/smart_image_cache.h"

#include <signal.h>
#include <unistd.h>

#include <cstdlib>

#include "cache_rig.h"
#include "image/cache/memory_budget.h"
#include "image/chain/il_image.h"
#include "image/memory/image_health.h"
#include "image/work/il_const_img.h"
#include "platform/clean_up.h"

namespace brushwork {
namespace {

using test::CacheRig;
using test::Manager;

TEST(MemoryBudget, ByTheTable) {
    constexpr std::uint64_t rows[][2] = {
        {0, 16},      {16, 16},     {63, 16},     {64, 16},       {65, 17},   {95, 47},
        {96, 32},     {127, 63},    {128, 48},    {191, 111},     {192, 96},  {255, 159},
        {256, 128},   {383, 255},   {384, 192},   {767, 575},     {768, 512}, {1280, 1024},
        {1791, 1535}, {1792, 1536}, {2048, 1536}, {1 << 20, 1536}};
    for (const auto& [physical, budget] : rows)
        EXPECT_EQ(budgetMegabytes(physical), budget) << physical;
    EXPECT_EQ(firstCacheBytes(1023), 1023 * mebibyte);
    EXPECT_EQ(firstCacheBytes(1536), 0x40000000U);
    EXPECT_EQ(boundedCacheBytes(1, 1536), 32 * mebibyte);
    EXPECT_EQ(boundedCacheBytes(100 * mebibyte, 48), 48 * mebibyte);
    EXPECT_EQ(boundedCacheBytes(100 * mebibyte, 16), 32 * mebibyte);
    EXPECT_EQ(boundedCacheBytes(~std::uint64_t{0}, 1536), 0x40000000U);
}

TEST(SmartImageCache, TheFirstLimitFollowsTheMachine) {
    CacheRig rig(Manager::Off);
    const auto first = [&](std::uint64_t physical) {
        test::setMachine(physical, 80);
        EXPECT_TRUE(SmartImageCache::reset());
        return rig.cache.counts().maxBytes;
    };
    EXPECT_EQ(first(2048), 0x40000000U);
    EXPECT_EQ(first(0), 0x40000000U);  // not known
    EXPECT_EQ(first(512), 320 * mebibyte);
    rig.cache.setMaxBytes(1);
    EXPECT_EQ(rig.cache.counts().maxBytes, 32 * mebibyte);
    rig.cache.setMaxBytes(1000 * mebibyte);
    EXPECT_EQ(rig.cache.counts().maxBytes, 320 * mebibyte);
    EXPECT_EQ(first(50), 16 * mebibyte);
    rig.cache.setMaxBytes(1);
    EXPECT_EQ(rig.cache.counts().maxBytes, 32 * mebibyte);
}

TEST(SmartImageCache, TheLimitFollowsFreeMemoryWhileTheManagerIsOff) {
    CacheRig rig(Manager::Off);
    SmartImageCache& cache = rig.cache;
    const auto limit = [&] { return cache.counts().maxBytes / mebibyte; };
    cache.setMaxBytes(200 * mebibyte);
    test::setMachine(8192, 63);
    cache.adjustToMemory(false, true, false);
    EXPECT_EQ(limit(), 200U);
    cache.adjustToMemory(true, true, false);
    EXPECT_EQ(limit(), 64U);  // nothing is in use
    test::setMachine(8192, 96);
    cache.adjustToMemory(true, true, true);
    EXPECT_EQ(limit(), 64U);
    test::setMachine(8192, 97);
    cache.adjustToMemory(true, true, true);
    EXPECT_EQ(limit(), 80U);
    cache.adjustToMemory(true, true, false);
    EXPECT_EQ(limit(), 81U);
    test::setMachine(8192, std::uint64_t{1} << 33);
    cache.adjustToMemory(false, true, false);
    EXPECT_EQ(limit(), 1024U);
    EXPECT_FALSE(cache.idleStep());
    BworkMemory::instance().enable(true);
    test::setMachine(8192, 10);
    cache.adjustToMemory(true, true, false);
    EXPECT_EQ(limit(), 1024U);
}

// 32 MiB hold 512 big pages. Written ones are looked at from three quarters on.
TEST(SmartImageCache, TheSoftLimitIsKeptWhileTheManagerIsOff) {
    CacheRig rig(Manager::Off);
    SmartImageCache& cache = rig.cache;
    cache.setMaxBytes(1);
    for (int i = 0; i < 384; ++i) rig.draw(4, static_cast<std::uint32_t>(i + 1));
    SmartPage& uniform = rig.draw(4, 1000);
    CacheRig::fill(uniform, 3);
    cache.addScan(uniform);
    rig.draw(4, 1001);
    EXPECT_TRUE(uniform.isSolid());
    EXPECT_EQ(cache.counts().swapped, 0);
    for (std::uint32_t seed = 2000; seed < 2200; ++seed) {
        rig.draw(4, seed);
        ASSERT_LE(cache.counts().usedBytes, 32 * mebibyte);
    }
    EXPECT_EQ(rig.pages[0]->state, PageState::Swapped);
    EXPECT_EQ(cache.counts().maxBytes, 32 * mebibyte);
    EXPECT_TRUE(cache.pageIn(*rig.pages[0]));
    EXPECT_TRUE(CacheRig::holds(*rig.pages[0], 1));
}

// The limit evicts big pages until it holds, and one small page.
TEST(SmartImageCache, OnePageOfOneChannelLeavesForALimit) {
    CacheRig rig(Manager::Off);
    for (std::uint32_t seed = 1; seed <= 2100; ++seed) {
        SmartPage& page = rig.make(1);
        ASSERT_TRUE(rig.cache.allocatePage(page));
        page.data[7] = static_cast<std::uint8_t>(seed);
    }
    rig.draw(4, 1);
    rig.cache.setMaxBytes(1);
    EXPECT_EQ(rig.cache.counts().big, 0);
    EXPECT_EQ(rig.cache.counts().small, 2099);
}

TEST(SmartImageCache, ReportAndRates) {
    CacheRig rig(Manager::Off);
    SmartImageCache& cache = rig.cache;
    EXPECT_EQ(cache.hitRate(), 1.0f);
    SmartPage& page = rig.draw(4, 1);
    rig.draw(1, 2);
    cache.hardLock(rig.draw(1, 3));
    cache.addScan(page);
    BworkMemory::instance().releaseBig(cache.evictForBig());
    EXPECT_TRUE(cache.pageIn(page));
    cache.addScan(page);
    cache.countHit();
    cache.countHit();
    EXPECT_EQ(cache.hitRate(), 2.0f / 3.0f);
    BworkMemory::instance().releaseSmall(cache.evictForSmall());
    EXPECT_EQ(cache.swapBytes(), 5U << 14);
    rig.texts.clear();
    cache.report();
    const std::vector<std::string> expected = {
        "Maximum Cache Size: 1073741824, Hits: 2, Misses: 1.\n",
        "In Memory Pages -- Big: 1, Small: 0, Locked: 1, Total Bytes 81920\n",
        "Dirty Pages on scan list: 1\n"};
    EXPECT_EQ(rig.texts, expected);
    rig.texts.clear();
    cache.addPage(rig.make(4));
    EXPECT_EQ(rig.texts,
              std::vector<std::string>{"SID: Error: Adding a page that's not ValidInMem\n"});
    EXPECT_EQ(cache.figures().inMemoryPages, 2);
    EXPECT_EQ(cache.figures().swapObjects, 2);
    EXPECT_EQ(cache.figures().pageRecords, 4);
}

TEST(SmartImageCache, SettingsAreReadAndTold) {
    CacheRig rig(Manager::Off);
    EXPECT_FALSE(rig.cache.checking());
    rig.set("ZENON_ZC_SMARTIMAGE_CHECKING");
    EXPECT_TRUE(rig.cache.checking());
    EXPECT_EQ(rig.texts, std::vector<std::string>{"SID: SmartImage checking is enabled.\n"});
    rig.texts.clear();
    rig.set("ZENON_ZC_USE_OLD_IMAGEID");
    const std::vector<std::string> expected = {
        "SID: SmartImage checking is enabled.\n",
        "\nSID: Using Old ImageID method. Performance may be degraded.\n",
        "ZenonCanvas: to use the new method, unsetenv ZENON_ZC_USE_OLD_IMAGEID\n\n"};
    EXPECT_EQ(rig.texts, expected);
}

TEST(SmartImageCache, StampsAndFillings) {
    CacheRig rig(Manager::Off);
    const auto expectStamps = [&](bool filled) {
        SmartPage& small = rig.make(1);
        SmartPage& big = rig.make(4);
        ASSERT_TRUE(rig.cache.allocatePage(small) && rig.cache.allocatePage(big));
        const auto* const words = reinterpret_cast<const std::uint32_t*>(big.data);
        std::uint32_t mark = 0x11;
        for (std::size_t i = 0; i < pagePixels; ++i) {
            if (i == 0 || i == 127 || i == 16256 || i == 16383) {
                ASSERT_EQ(small.data[i], mark);
                ASSERT_EQ(words[i], mark * 0x01010101U);
                mark += 0x11;
            } else if (filled) {
                ASSERT_EQ(small.data[i], 53);
                ASSERT_EQ(words[i], 0xFF10FF10U);
            }
        }
        rig.drop();
    };
    expectStamps(false);
    rig.set("ZENON_ZC_SMARTIMAGE_CHECKING");
    expectStamps(true);
}

// The memory of a released page is read where it was: the manager keeps it mapped.
TEST(SmartImageCache, FreedMemoryIsFilledWhileChecking) {
    CacheRig rig(Manager::On);
    rig.set("ZENON_ZC_SMARTIMAGE_CHECKING");
    SmartPage& page = rig.draw(4, 1);
    SmartPage& small = rig.draw(1, 1);
    const std::uint8_t* const bigBytes = page.data;
    const std::uint8_t* const smallBytes = small.data;
    rig.cache.releasePage(page);
    EXPECT_EQ(page.state, PageState::Freed);
    EXPECT_EQ(page.data, nullptr);
    rig.cache.releasePage(small);
    std::uint32_t word = 0;
    std::memcpy(&word, bigBytes + 4000, 4);
    EXPECT_EQ(word, 0xFF1010FFU);
    EXPECT_EQ(smallBytes[4000], 165);
}

TEST(SmartImageCache, ChecksSeeABrokenListOnlyOnce) {
    CacheRig rig(Manager::Off);
    rig.set("ZENON_ZC_SMARTIMAGE_CHECKING");
    SmartPage& page = rig.draw(4, 1);
    rig.draw(4, 2);
    rig.texts.clear();
    page.magic = deadSignature;
    page.stamp = 1234012;
    rig.draw(4, 3);
    EXPECT_NE(imageFailure(), 0);
    EXPECT_TRUE(rig.texts.empty());
    clearImageFailure();
    EXPECT_FALSE(checkSmartPage(page));
    EXPECT_EQ(rig.texts, std::vector<std::string>{
                             "ZenonCanvas: Invalid page -- Unrefed at 1234012 (Sig - deadbeef)\n"});
    EXPECT_FALSE(checkSmartPage(page));
    EXPECT_EQ(rig.texts.size(), 1U);
    page.magic = liveSignature;
}

TEST(SmartImageCache, ShutdownBringsAllBack) {
    CacheRig rig(Manager::Off);
    for (std::uint32_t seed = 1; seed <= 6; ++seed) rig.draw(seed < 4 ? 4 : 1, seed);
    for (int i = 0; i < 2; ++i) BworkMemory::instance().releaseBig(rig.cache.evictForBig());
    BworkMemory::instance().releaseSmall(rig.cache.evictForSmall());
    ASSERT_TRUE(rig.cache.pageIn(*rig.pages[0]));
    EXPECT_EQ(rig.swapFiles(), 2U);
    rig.cache.prepareShutdown();
    EXPECT_NE(imageFailure(), 0);
    EXPECT_EQ(rig.swapFiles(), 0U);
    for (std::uint32_t seed = 1; seed <= 6; ++seed)
        EXPECT_TRUE(CacheRig::holds(*rig.pages[seed - 1], seed));
}

TEST(SmartImageCache, ResetWaitsForImagesAndPages) {
    CacheRig rig(Manager::Off);
    rig.cache.imageMade();
    EXPECT_FALSE(SmartImageCache::reset());
    rig.cache.imageGone();
    rig.draw(4, 1);
    EXPECT_FALSE(SmartImageCache::reset());
}

TEST(SmartPage, RecordsAndPendingReads) {
    CacheRig rig(Manager::Off);
    auto source = makeRef<ilConstImg>(ilPixel::untyped());
    SmartPage& page = rig.make(1, 0x1FF);
    EXPECT_EQ(page.solid, 0xFFU);
    EXPECT_EQ(page.bytes(), 16384U);
    EXPECT_TRUE(attachPendingRead(page, *source, -128, 256));
    EXPECT_EQ(page.state, PageState::Pending);
    EXPECT_EQ(page.pending->source.get(), source.get());
    EXPECT_EQ(page.pending->x, -128);
    setAllocationRefusal(+[]() noexcept { return true; });
    EXPECT_FALSE(attachPendingRead(page, *source, 0, 0));
    EXPECT_EQ(page.pending->y, 256);
    EXPECT_EQ(makeSmartPage(4, 0), nullptr);
    setAllocationRefusal(nullptr);
    SmartPage* const gone = makeSmartPage(4, 0);
    gone->stamp = 1234006;
    destroySmartPage(gone);
    EXPECT_EQ(gone->magic, deadSignature);  // the record's chunk stays
    EXPECT_EQ(gone->stamp, 1234006U);
    EXPECT_EQ(makeSmartPage(4, 5), gone);
    destroySmartPage(gone);
}

#if GTEST_HAS_DEATH_TEST && !defined(_WIN32)
// Leaves a page in a swap file of `rig`, and ends.
[[noreturn]] void endWithASwapFile(CacheRig& rig, bool bySignal) {
    if (bySignal) platform::cleanUpOnSignals(platform::AfterCleanUp::EndWithFailure);
    rig.draw(4, 1);
    BworkMemory::instance().releaseBig(rig.cache.evictForBig());
    if (rig.swapFiles() != 1) std::_Exit(9);
    if (!bySignal) std::exit(4);
    ::kill(::getpid(), SIGTERM);
    for (;;) ::pause();
}

TEST(SmartImageCacheDeathTest, NoSwapFileOutlivesTheProcess) {
    CacheRig rig(Manager::Off);
    EXPECT_EXIT(endWithASwapFile(rig, false), testing::ExitedWithCode(4), "");
    EXPECT_EQ(rig.swapFiles(), 0U);
    EXPECT_EXIT(endWithASwapFile(rig, true), testing::ExitedWithCode(255), "");
    EXPECT_EQ(rig.swapFiles(), 0U);
}
#endif

}  // namespace
}  // namespace brushwork
