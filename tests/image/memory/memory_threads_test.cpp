// Many threads in one memory manager; the thread sanitizer watches.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <thread>
#include <vector>

#include "image/memory/image_health.h"
#include "image/memory/image_lock.h"
#include "image/memory/memory_manager.h"
#include "memory_rig.h"

namespace brushwork {
namespace {

struct Held {
    std::uint8_t* start;
    std::size_t bytes;
    bool isPage;
};

void useMemory(BworkMemory& memory, std::uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<Held> held;
    const auto giveBack = [&](const Held& one) {
        EXPECT_EQ(one.start[0], static_cast<std::uint8_t>(seed));
        EXPECT_EQ(one.start[one.bytes - 1], static_cast<std::uint8_t>(seed));
        one.isPage ? memory.releaseBig(one.start) : memory.release(one.start);
    };
    for (int step = 0; step < 4000; ++step) {
        if (random() % 2 == 0 || held.empty()) {
            const bool isPage = random() % 4 == 0;
            const std::size_t bytes = isPage ? 65536 : 1 + random() % (1u << (random() % 20));
            void* got = nullptr;
            if (isPage) {
                const std::lock_guard guard(imageLock());  // as smart images hold it
                got = memory.allocateBig(true, random() % 3 == 0);
            } else if (random() % 3 == 0) {
                const std::lock_guard guard(imageLock());
                got = memory.allocate(bytes);
            } else {
                got = memory.allocate(bytes);
            }
            ASSERT_NE(got, nullptr);
            const Held one{static_cast<std::uint8_t*>(got), bytes, isPage};
            one.start[0] = one.start[bytes - 1] = static_cast<std::uint8_t>(seed);
            held.push_back(one);
        } else {
            std::swap(held[random() % held.size()], held.back());
            giveBack(held.back());
            held.pop_back();
        }
        if (step % 97 == 0) memory.reserve(1 << 20);
        if (step % 97 == 50) memory.endReservation();
        if (step % 500 == 0) {
            EXPECT_LE(memory.usedBytes(), std::uint64_t{60} << 20);
        }
    }
    for (const Held& one : held) giveBack(one);
}

TEST(MemoryThreads, AllKindsAtOnce) {
    test::resetRuntimeCounts();
    clearImageFailure();
    BworkMemory memory(test::smallSources(60));
    memory.enable(true);
    std::vector<std::thread> threads;
    for (std::uint32_t seed = 1; seed <= 4; ++seed)
        threads.emplace_back([&memory, seed] { useMemory(memory, seed); });
    for (auto& thread : threads) thread.join();
    for (int i = 0; i < 4 * 50; ++i) memory.endReservation();  // more than are open
    EXPECT_EQ(memory.usedBytes(), 0u);
    EXPECT_EQ(imageFailure(), 0);
    EXPECT_TRUE(memory.reset()) << "a block is still in use";
    EXPECT_EQ(test::runtimeCounts().allocated, test::runtimeCounts().released);
}

}  // namespace
}  // namespace brushwork
