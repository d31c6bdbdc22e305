#include "image/memory/memory_manager.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <random>
#include <utility>
#include <vector>

#include "image/memory/image_health.h"
#include "image/memory/image_lock.h"
#include "memory_rig.h"

namespace brushwork {
namespace {

using test::runtimeCounts;

class MemoryManagerTest : public ::testing::Test {
  protected:
    void SetUp() override {
        test::resetRuntimeCounts();
        clearImageFailure();
    }
    void TearDown() override {
        test::resetRuntimeCounts();
        clearImageFailure();
    }
};

TEST_F(MemoryManagerTest, OffReachesTheRuntime) {
    BworkMemory memory(test::smallSources(100));
    void* const plain = memory.allocate(100);
    void* const big = memory.allocateBig(true);
    void* const small = memory.allocateSmall(false, true);
    EXPECT_EQ(runtimeCounts().allocated, 3);
    EXPECT_EQ(memory.capacityOf(plain), 0u);
    memory.reserve(1 << 20);
    memory.endReservation();
    EXPECT_TRUE(memory.compact());
    EXPECT_EQ(memory.megabytes(), 0u);
    memory.enable(true);  // what came from the runtime goes back there
    memory.release(memory.reallocate(plain, 300000));
    memory.releaseBig(big);
    memory.releaseSmall(small);
    EXPECT_EQ(runtimeCounts().released, 3);
    memory.enable(false);
    EXPECT_EQ(imageFailure(), 0);
}

TEST_F(MemoryManagerTest, SwitchedOffItStillTakesBackItsOwn) {
    BworkMemory memory(test::smallSources(100));
    memory.enable(true);
    void* const plain = memory.allocate(100);
    void* const block = memory.allocate(3 << 20);
    void* const big = memory.allocateBig(false);
    memory.enable(false);
    EXPECT_FALSE(memory.reset());
    memory.release(plain);
    memory.release(block);
    memory.releaseBig(big);
    EXPECT_EQ(runtimeCounts().released, 0);
    EXPECT_TRUE(memory.reset());
}

TEST_F(MemoryManagerTest, CapacitiesAndReallocation) {
    BworkMemory memory(test::smallSources(100));
    memory.enable(true);
    const std::pair<std::size_t, std::size_t> cases[] = {
        {0, 32},           {32, 32},           {33, 128},          {513, 1024},
        {4096, 4096},      {4097, 16384},      {65537, 262144},    {262143, 262144},
        {262144, 2097152}, {2097152, 2097152}, {2097153, 5242880}, {5242881, 10485760}};
    for (const auto& [asked, capacity] : cases) {
        SCOPED_TRACE(asked);
        void* const pointer = memory.allocate(asked);
        ASSERT_NE(pointer, nullptr);
        EXPECT_EQ(memory.capacityOf(pointer), capacity);
        EXPECT_EQ(memory.reallocate(pointer, capacity), pointer);
        EXPECT_EQ(memory.reallocate(pointer, 1), pointer);
        std::memset(pointer, 0x5A, capacity);
        auto* const moved = static_cast<std::uint8_t*>(memory.reallocate(pointer, capacity + 1));
        ASSERT_NE(moved, nullptr);
        EXPECT_EQ(moved[0], 0x5A);
        EXPECT_EQ(moved[capacity - 1], 0x5A);
        memory.release(moved);
    }
    EXPECT_EQ(memory.usedBytes(), 0u);
    EXPECT_EQ(imageFailure(), 0);
}

TEST_F(MemoryManagerTest, HugeRequestsTouchNoBlock) {
    static std::size_t asked = 0;
    MemorySources sources = test::smallSources(100);
    sources.runtime.allocate = [](std::size_t bytes) -> void* {
        asked = bytes;
        return nullptr;
    };
    BworkMemory memory(sources);
    memory.enable(true);
    const std::uint32_t before = memory.megabytes();
    EXPECT_EQ(memory.allocate(0xC800001), nullptr);
    EXPECT_EQ(asked, 0xC800001u);
    EXPECT_EQ(memory.megabytes(), before);
    // No class that was made is so large, and the runtime has nothing.
    EXPECT_EQ(memory.allocate(0xC800000), nullptr);
    EXPECT_EQ(asked, 0xC800000u);
}

TEST_F(MemoryManagerTest, AWastefulBlockComesOnlyAfterTheRuntime) {
    MemorySources sources = test::smallSources(100);
    sources.takeBlock = [](std::size_t bytes) noexcept -> void* {
        return bytes == 104857600 ? platform::takePageMemory(bytes) : nullptr;
    };
    BworkMemory memory(sources);
    memory.enable(true);
    void* const fromRuntime = memory.allocate(20971519);  // five times that is just too little
    EXPECT_EQ(runtimeCounts().allocated, 1);
    void* const fromBlock = memory.allocate(20971520);
    EXPECT_EQ(runtimeCounts().allocated, 1);
    EXPECT_EQ(memory.capacityOf(fromBlock), 104857600u);
    memory.release(fromBlock);
    runtimeCounts().fails = true;
    void* const wasteful = memory.allocate(6 << 20);
    EXPECT_EQ(wasteful, fromBlock);
    memory.release(wasteful);
    memory.release(fromRuntime);
}

TEST_F(MemoryManagerTest, PagesGrowThroughTheClassesToTheLimit) {
    MemorySources sources;  // the full table; no page is written, so it costs address space only
    sources.runtime = test::countedRuntime();
    BworkMemory memory(sources);
    memory.enable(true);
    ASSERT_EQ(memory.megabytes(), 392u);
    const auto take = [&memory](int megabytes) {
        for (int i = 0; i < megabytes * 16; ++i)
            if (!memory.allocateBig(false)) return i;
        return -1;
    };
    EXPECT_EQ(take(392), -1);
    EXPECT_EQ(memory.megabytes(), 392u);
    EXPECT_EQ(take(398), -1);  // 199 more blocks of 2 MiB make 200
    EXPECT_EQ(memory.megabytes(), 790u);
    const std::uint32_t grown[] = {990,  1090, 1140, 1165, 1175, 1185, 1195,
                                   1205, 1210, 1215, 1220, 1225, 1230};
    std::uint32_t last = 790;
    for (const std::uint32_t megabytes : grown) {
        EXPECT_EQ(take(static_cast<int>(megabytes - last)), -1);
        EXPECT_EQ(memory.megabytes(), megabytes);
        last = megabytes;
    }
    EXPECT_EQ(memory.usedBytes(), std::uint64_t{1230} << 20);
    EXPECT_EQ(memory.allocateBig(false), nullptr);
    EXPECT_EQ(memory.allocateBig(false, true), nullptr);
    EXPECT_EQ(runtimeCounts().allocated, 0);
    void* const last1 = memory.allocateBig(true);
    void* const last2 = memory.allocateSmall(true, true);
    EXPECT_EQ(runtimeCounts().allocated, 2);
    runtimeCounts().fails = true;
    EXPECT_EQ(memory.allocateBig(true), nullptr);
    memory.releaseBig(last1);
    memory.releaseSmall(last2);
    EXPECT_EQ(runtimeCounts().released, 2);
    EXPECT_FALSE(memory.canAllocate(2097152, 1));
}

TEST_F(MemoryManagerTest, CanAllocateTakesNothing) {
    BworkMemory memory(test::smallSources(40));  // 7 slots of 5 megabytes, none of 2
    memory.enable(true);
    ASSERT_EQ(memory.megabytes(), 15u);
    EXPECT_TRUE(memory.canAllocate(3 << 20, 6));  // 10 + 5 made, 5 more of 5 before the limit
    EXPECT_FALSE(memory.canAllocate(3 << 20, 20));
    EXPECT_FALSE(memory.canAllocate(0xC800001, 1));
    EXPECT_EQ(memory.megabytes(), 15u);
    std::vector<void*> blocks;
    while (memory.canAllocate(3 << 20, 1)) blocks.push_back(memory.allocate(3 << 20));
    EXPECT_EQ(runtimeCounts().allocated, 0);
    EXPECT_GE(memory.megabytes(), 40u);
    for (void* const block : blocks) memory.release(block);
    EXPECT_TRUE(memory.canAllocate(3 << 20, static_cast<std::uint32_t>(blocks.size())));
}

TEST_F(MemoryManagerTest, DamagedPointersNeverReachTheRuntime) {
    BworkMemory memory(test::smallSources(100));
    memory.enable(true);
    auto* const page = static_cast<std::uint8_t*>(memory.allocateBig(false));
    auto* const block = static_cast<std::uint8_t*>(memory.allocate(2097152));
    memory.releaseBig(page + 16);
    EXPECT_NE(imageFailure(), 0);
    clearImageFailure();
    memory.release(block + 4096);
    EXPECT_NE(imageFailure(), 0);
    clearImageFailure();
    memory.releaseBig(page);
    memory.releaseBig(page);
    EXPECT_NE(imageFailure(), 0);
    memory.release(block);
    EXPECT_EQ(runtimeCounts().released, 0);
    EXPECT_EQ(memory.usedBytes(), 0u);
}

TEST_F(MemoryManagerTest, AReservationIsHeldAndGivenBack) {
    BworkMemory memory(test::smallSources(100));
    memory.enable(true);
    memory.reserve(0);         // asks for nothing
    memory.reserve(20 << 20);  // takes 10 + 5 + 2 unused and two new blocks of 2
    EXPECT_EQ(memory.megabytes(), 21u);
    memory.reserve(60 << 20);  // an inner scope adds nothing
    EXPECT_EQ(memory.megabytes(), 21u);
    void* const own = memory.allocate(5 << 20);  // a new block: those of the reserve stay
    const std::uint32_t with = memory.megabytes();
    EXPECT_EQ(with, 26u);
    std::vector<void*> pages;
    for (int i = 0; i < 21 * 16; ++i) pages.push_back(memory.allocateBig(false, true));
    EXPECT_EQ(memory.megabytes(), with);
    for (void* const page : pages) ASSERT_NE(memory.capacityOf(page), 0u);
    for (std::size_t i = 1; i < pages.size(); ++i) memory.releaseBig(pages[i], true);
    memory.endReservation();
    void* const other = memory.allocateSmall(false);
    EXPECT_EQ(memory.megabytes(), with + 2);  // scopes are still open
    memory.endReservation();
    memory.endReservation();
    void* const again = memory.allocate(5 << 20);  // an empty block of the former reserve
    EXPECT_EQ(memory.megabytes(), with + 2);
    memory.release(own);
    memory.releaseBig(pages[0], true);
    memory.releaseSmall(other);
    memory.release(again);
    EXPECT_EQ(memory.usedBytes(), 0u);
    EXPECT_EQ(imageFailure(), 0);
}

TEST_F(MemoryManagerTest, EvictionAndCompaction) {
    BworkMemory memory(test::smallSources(60));  // 10 + 5 + 2, then six more of 2
    memory.enable(true);
    test::ToyCache cache(memory);
    const std::uint32_t inBlocks = 29 * 16;
    for (std::uint32_t i = 0; i < inBlocks + 40; ++i) {
        auto* const data = static_cast<std::uint8_t*>(memory.allocateBig(true));
        ASSERT_NE(data, nullptr);
        cache.pages.push_back({data, PageAllocator::bigBytes, i, false});
        test::ToyCache::write(cache.pages.back());
    }
    EXPECT_EQ(runtimeCounts().allocated, 0);  // forty pages left for forty others
    EXPECT_EQ(cache.pagedOut, 40);
    EXPECT_EQ(memory.usedBytes(), std::uint64_t{29} << 20);
    runtimeCounts().blocksFail = true;
    // A whole block can be had by moving pages out of the one with fewest in use.
    void* const block = memory.allocate(4 << 20);
    EXPECT_EQ(memory.capacityOf(block), 5242880u);
    EXPECT_EQ(cache.pagedOut, 40 + 80);
    memory.release(block);
    cache.pages.back().pinned = true;
    EXPECT_FALSE(memory.compact());
    cache.pages.back().pinned = false;
    EXPECT_TRUE(memory.compact());
    for (auto& page : cache.pages) {
        if (!page.data) continue;
        EXPECT_TRUE(test::ToyCache::isWhole(page));
        memory.releaseBig(page.data);
    }
    EXPECT_EQ(memory.usedBytes(), 0u);
    EXPECT_EQ(imageFailure(), 0);
}

struct Piece {
    std::size_t bytes = 0;  // as asked for
    std::uint8_t value = 0;
    int kind = 0;  // 0 general, 1 big, 2 small
};

void mark(std::uint8_t* start, const Piece& piece) {
    if (piece.bytes != 0) start[0] = start[piece.bytes - 1] = piece.value;
}

bool isMarked(const std::uint8_t* start, const Piece& piece) {
    return piece.bytes == 0 || (start[0] == piece.value && start[piece.bytes - 1] == piece.value);
}

// Everything at once beside a plain map of what is in use; the cache's pages move and leave.
TEST_F(MemoryManagerTest, RandomUseAgreesWithANaiveModel) {
    for (std::uint32_t seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE(::testing::Message() << "seed " << seed);
        BworkMemory memory(test::smallSources(seed % 2 == 0 ? 100 : 60));
        memory.enable(true);
        test::ToyCache cache(memory);
        std::map<std::uint8_t*, Piece> live;
        std::mt19937 engine(seed);
        const auto random = [&engine] { return static_cast<std::uint32_t>(engine()); };
        int scopes = 0;
        for (int step = 0; step < 6000; ++step) {
            const bool growing = step / 1000 % 2 == 0;
            const std::uint32_t what = random() % 100;
            if (what < (growing ? 60u : 30u)) {
                Piece piece{0, static_cast<std::uint8_t>(random()), static_cast<int>(random() % 3)};
                void* got = nullptr;
                const bool mayEvict = random() % 4 == 0;
                const bool reserved = random() % 5 == 0;
                if (piece.kind == 1) {
                    piece.bytes = 65536;
                    got = memory.allocateBig(mayEvict, reserved);
                } else if (piece.kind == 2) {
                    piece.bytes = 16384;
                    got = memory.allocateSmall(mayEvict, reserved);
                } else {
                    piece.bytes = random() & ((1u << (random() % 23)) - 1);
                    got = memory.allocate(piece.bytes);
                    ASSERT_NE(got, nullptr);
                }
                auto* const start = static_cast<std::uint8_t*>(got);
                if (!start) continue;
                const bool cached = piece.kind != 0 && !reserved && random() % 2 == 0;
                const auto after = live.lower_bound(start);
                ASSERT_TRUE(after == live.end() || start + piece.bytes <= after->first);
                ASSERT_TRUE(after == live.begin() ||
                            std::prev(after)->first + std::prev(after)->second.bytes <= start);
                const std::size_t capacity = memory.capacityOf(start);
                if (capacity != 0) {
                    ASSERT_GE(capacity, piece.bytes);
                    const std::size_t alignment = piece.kind == 0 ? 16 : 16384;
                    ASSERT_EQ(reinterpret_cast<std::uintptr_t>(start) % alignment, 0u);
                }
                if (cached) {
                    cache.pages.push_back(
                        {start, static_cast<std::uint32_t>(piece.bytes), random(), false});
                    test::ToyCache::write(cache.pages.back());
                } else {
                    mark(start, piece);
                    live[start] = piece;
                }
            } else if (what < 85 && !live.empty()) {
                auto place = live.lower_bound(reinterpret_cast<std::uint8_t*>(
                    reinterpret_cast<std::uintptr_t>(live.begin()->first) +
                    random() % (64u << 20)));
                if (place == live.end()) place = live.begin();
                ASSERT_TRUE(isMarked(place->first, place->second));
                if (place->second.kind == 1)
                    memory.releaseBig(place->first);
                else if (place->second.kind == 2)
                    memory.releaseSmall(place->first);
                else
                    memory.release(place->first);
                live.erase(place);
            } else if (what < 92 && !cache.pages.empty()) {
                auto& page = cache.pages.front();
                if (page.data) {
                    ASSERT_TRUE(test::ToyCache::isWhole(page));
                    memory.releaseBig(page.data);
                }
                cache.pages.pop_front();
            } else if (what < 95) {
                memory.reserve(random() % (8u << 20));
                ++scopes;
            } else if (what < 98 && scopes > 0) {
                memory.endReservation();
                --scopes;
            } else if (step % 10 == 0) {
                memory.compact();
            }
            if (step % 16 != 0) continue;
            std::uint64_t used = 0;
            const auto count = [&](const std::uint8_t* start) {
                const std::size_t capacity = memory.capacityOf(start);
                if (capacity == 65536 || capacity == 16384) used += capacity;
            };
            for (const auto& [start, piece] : live)
                if (piece.kind != 0) count(start);
            for (const auto& page : cache.pages)
                if (page.data) count(page.data);
            ASSERT_EQ(memory.usedBytes(), used) << "step " << step;
        }
        while (scopes-- > 0) memory.endReservation();
        for (const auto& page : cache.pages)
            if (page.data) memory.releaseBig(page.data);
        for (const auto& [start, piece] : live) {
            ASSERT_TRUE(isMarked(start, piece));
            memory.release(start);
        }
        EXPECT_EQ(memory.usedBytes(), 0u);
        EXPECT_TRUE(memory.reset()) << "a block is still in use";
        EXPECT_EQ(runtimeCounts().allocated, runtimeCounts().released);
        EXPECT_EQ(imageFailure(), 0);
    }
}

TEST_F(MemoryManagerTest, BlocksThatFailLeaveTheRuntime) {
    runtimeCounts().blocksFail = true;
    BworkMemory memory(test::smallSources(100));
    memory.enable(true);
    void* const page = memory.allocateBig(true);
    void* const tiny = memory.allocate(10);
    void* const block = memory.allocate(2097152);
    EXPECT_EQ(memory.allocateSmall(false), nullptr);
    EXPECT_EQ(runtimeCounts().allocated, 3);
    runtimeCounts().fails = true;
    EXPECT_EQ(memory.allocateBig(true), nullptr);
    EXPECT_EQ(memory.allocate(100000), nullptr);
    EXPECT_EQ(memory.allocate(10 << 20), nullptr);
    memory.releaseBig(page);
    memory.release(tiny);
    memory.release(block);
    EXPECT_EQ(runtimeCounts().released, 3);
}

TEST_F(MemoryManagerTest, TheProcessIsRoutedThroughTheOneInstance) {
    BworkMemory& memory = BworkMemory::instance();
    ASSERT_TRUE(memory.reset(test::smallSources(100)));
    void* const early = platform::routedAllocate(100);
    memory.enable(true);
    EXPECT_TRUE(imageLockEngaged());
    void* const routed = platform::routedAllocate(100);
    EXPECT_EQ(memory.capacityOf(routed), 128u);
    EXPECT_EQ(memory.capacityOf(early), 0u);
    void* const larger = platform::routedReallocate(routed, 1000);
    EXPECT_EQ(memory.capacityOf(larger), 1024u);
    platform::routedRelease(early);
    memory.enable(false);
    EXPECT_FALSE(imageLockEngaged());
    platform::routedRelease(larger);
    EXPECT_TRUE(memory.reset());
    EXPECT_EQ(platform::allocRoutes().allocate, platform::runtimeRoutes().allocate);
}

}  // namespace
}  // namespace brushwork
