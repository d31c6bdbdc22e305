#include "image/memory/object_pool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <thread>
#include <vector>

#include "memory_rig.h"

namespace brushwork {
namespace {

TEST(ObjectPool, ChunksOfSixtyFourLastInFirstOut) {
    test::resetRuntimeCounts();
    ObjectPool pool(40, ObjectPool::defaultCapacity, test::countedRuntime());
    std::set<std::uint8_t*> places;
    for (int i = 0; i < 65; ++i) {
        auto* const place = static_cast<std::uint8_t*>(pool.allocate());
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(place) % 8, 0u);
        std::fill_n(place, 40, std::uint8_t{0xEE});
        places.insert(place);
        EXPECT_EQ(test::runtimeCounts().allocated, i < 64 ? 1 : 2);
    }
    EXPECT_EQ(pool.usedCount(), 65u);
    EXPECT_EQ(pool.freeCount(), 63u);
    EXPECT_EQ(pool.totalBytes(), 2 * (2 * sizeof(void*) + 64 * 40));
    std::uint8_t* before = nullptr;
    for (auto* const place : places) {
        if (before) {
            EXPECT_GE(place - before, 40);
        }
        before = place;
    }
    for (auto* const place : places) {
        EXPECT_TRUE(pool.release(place));
        EXPECT_EQ(pool.allocate(), place);
    }
}

TEST(ObjectPool, AsksGeneralAllocationThenAnswersNull) {
    test::resetRuntimeCounts();
    static int asked = 0;
    static bool gives = true;
    asked = 0;
    gives = true;
    platform::AllocRoutes routes = platform::runtimeRoutes();
    routes.allocate = [](std::size_t bytes) -> void* {
        ++asked;
        return gives ? std::malloc(bytes) : nullptr;
    };
    platform::setAllocRoutes(routes);
    {
        ObjectPool pool(8, 2, test::countedRuntime());
        test::runtimeCounts().fails = true;
        void* const first = pool.allocate();
        EXPECT_NE(first, nullptr);
        EXPECT_EQ(asked, 1);
        EXPECT_NE(pool.allocate(), nullptr);
        gives = false;
        EXPECT_EQ(pool.allocate(), nullptr);
        EXPECT_EQ(pool.usedCount(), 2u);
        pool.release(first);
        EXPECT_EQ(pool.allocate(), first);
    }
    platform::setAllocRoutes(platform::runtimeRoutes());
    test::resetRuntimeCounts();
}

TEST(ObjectPool, ServesManyThreads) {
    ObjectPool pool(16, 4);
    const auto work = [&pool](std::uint32_t seed) {
        std::mt19937 random(seed);
        std::vector<std::uint32_t*> own;
        for (int i = 0; i < 5000; ++i) {
            if (random() % 2 == 0) {
                own.push_back(static_cast<std::uint32_t*>(pool.allocate()));
                *own.back() = seed;
            } else if (!own.empty()) {
                EXPECT_EQ(*own.back(), seed);
                pool.release(own.back());
                own.pop_back();
            }
        }
        for (auto* const place : own) {
            EXPECT_EQ(*place, seed);
            pool.release(place);
        }
    };
    std::vector<std::thread> threads;
    for (std::uint32_t seed = 1; seed <= 4; ++seed) threads.emplace_back(work, seed);
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(pool.usedCount(), 0u);
}

}  // namespace
}  // namespace brushwork
