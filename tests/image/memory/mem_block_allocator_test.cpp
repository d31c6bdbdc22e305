#include "image/memory/mem_block_allocator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "image/memory/image_health.h"

namespace brushwork {
namespace {

// The free elements as a plain stack beside the block: last released first, then upward.
TEST(MemBlockAllocator, GivesWhatANaiveStackGives) {
    for (const std::uint32_t size : {16u, 24u, 100u, 4096u, 5000u}) {
        for (std::uint32_t seed = 1; seed <= 20; ++seed) {
            SCOPED_TRACE(::testing::Message() << "size " << size << " seed " << seed);
            alignas(16) static std::uint8_t memory[65536 + 16];
            BworkMemBlockAllocator block(memory, 65536, size);
            std::vector<void*> free;
            for (std::uint32_t i = 65536 / size; i-- > 0;) free.push_back(memory + i * size);
            std::vector<void*> used;
            std::mt19937 random(seed);
            for (int step = 0; step < 3000; ++step) {
                if (random() % 100 < (step / 500 % 2 == 0 ? 80u : 20u)) {
                    void* const expected = free.empty() ? nullptr : free.back();
                    ASSERT_EQ(block.allocate(), expected);
                    if (!expected) continue;
                    free.pop_back();
                    used.push_back(expected);
                    std::fill_n(static_cast<std::uint8_t*>(expected), size, std::uint8_t{0xA5});
                } else if (!used.empty()) {
                    std::swap(used[random() % used.size()], used.back());
                    auto* const element = static_cast<std::uint8_t*>(used.back());
                    ASSERT_FALSE(block.release(element + 1));
                    ASSERT_TRUE(block.release(element));
                    ASSERT_FALSE(block.release(element));  // twice
                    free.push_back(element);
                    used.pop_back();
                }
                ASSERT_EQ(block.usedCount(), static_cast<std::int32_t>(used.size()));
                ASSERT_EQ(block.freeCount(), static_cast<std::int32_t>(free.size()));
            }
        }
    }
}

TEST(MemBlockAllocator, FlagsRefuse) {
    alignas(16) std::uint8_t memory[1024];
    BworkMemBlockAllocator block(memory, 1024, 128);
    void* const first = block.allocate();
    block.setFixed(true);
    EXPECT_EQ(block.allocate(), nullptr);
    EXPECT_TRUE(block.release(first));
    block.setFixed(false);
    EXPECT_EQ(block.allocate(), first);
    block.clearFreeList();
    EXPECT_EQ(block.allocate(), nullptr);
    EXPECT_EQ(block.freeCount(), 0);
    block.freeze();
    EXPECT_EQ(block.allocate(), nullptr);
    EXPECT_FALSE(block.release(first));
    EXPECT_TRUE(block.owns(memory + 1023));
    EXPECT_FALSE(block.owns(memory + 1024));
    EXPECT_FALSE(block.release(memory + 1024));
}

TEST(MemBlockAllocator, ADamagedLinkIsNotFollowed) {
    clearImageFailure();
    alignas(16) std::uint8_t memory[1024];
    BworkMemBlockAllocator block(memory, 1024, 128);
    void* const low = block.allocate();
    void* const high = block.allocate();
    ASSERT_TRUE(block.release(low));
    ASSERT_TRUE(block.release(high));
    std::fill_n(static_cast<std::uint8_t*>(high), sizeof(void*), std::uint8_t{0x77});
    EXPECT_EQ(block.allocate(), high);
    EXPECT_NE(imageFailure(), 0);
    EXPECT_EQ(block.freeCount(), 6);
    for (int i = 2; i < 8; ++i) EXPECT_EQ(block.allocate(), memory + i * 128);
    EXPECT_EQ(block.allocate(), nullptr);
    clearImageFailure();
}

}  // namespace
}  // namespace brushwork
