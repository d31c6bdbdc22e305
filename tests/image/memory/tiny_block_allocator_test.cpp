#include "image/memory/tiny_block_allocator.h"

#include <gtest/gtest.h>

#include <cstring>
#include <iterator>
#include <map>
#include <random>
#include <set>

#include "platform/page_memory.h"

namespace brushwork {
namespace {

// Blocks of which `left` may be out at one time.
class CountedSource : public BlockSource {
  public:
    explicit CountedSource(int most) : left(most) {}
    void* takeBlock() override {
        if (left == 0) return nullptr;
        --left;
        void* const block = platform::takePageMemory(blockBytes);
        taken_.insert(block);
        return block;
    }
    void giveBlock(void* block) override {
        ++left;
        taken_.erase(block);
        platform::givePageMemory(block, blockBytes);
    }
    // The block that an element lies in.
    const void* blockOf(const void* element) const {
        return *std::prev(taken_.upper_bound(const_cast<void*>(element)));
    }
    int left;

  private:
    std::set<void*> taken_;
};

TEST(TinyChildBlockAllocator, HasABlockOnlyWhileInUse) {
    CountedSource source(1);
    {
        BworkTinyChildBlockAllocator child(source, 262144);
        EXPECT_EQ(source.left, 1);
        void* const first = child.allocate();
        void* const second = child.allocate();
        EXPECT_EQ(source.left, 0);
        EXPECT_TRUE(child.release(first));
        EXPECT_TRUE(child.release(second));
        EXPECT_EQ(source.left, 1);
        EXPECT_FALSE(child.owns(second));
        EXPECT_FALSE(child.release(second));
        EXPECT_NE(child.allocate(), nullptr);
        EXPECT_EQ(source.left, 0);
    }
    EXPECT_EQ(source.left, 1);
    source.left = 0;
    BworkTinyChildBlockAllocator child(source, 32);
    EXPECT_EQ(child.allocate(), nullptr);
}

TEST(TinyBlockAllocator, RandomUseOverlapsNothingAndGivesAllBack) {
    for (std::uint32_t seed = 1; seed <= 5; ++seed) {
        SCOPED_TRACE(::testing::Message() << "seed " << seed);
        constexpr std::int32_t size = 65536;  // 32 to a block
        CountedSource source(4);
        std::atomic<std::int32_t> bypass{0};
        {
            BworkTinyBlockAllocator tiny(source, size, bypass);
            std::map<std::uint8_t*, std::uint32_t> live;
            std::mt19937 random(seed);
            for (std::uint32_t step = 0; step < 4000; ++step) {
                if (random() % 100 < (step / 400 % 2 == 0 ? 75u : 25u)) {
                    auto* const element = static_cast<std::uint8_t*>(tiny.allocate());
                    if (!element) {
                        ASSERT_EQ(live.size(), 4u * 32);
                        continue;
                    }
                    const auto after = live.lower_bound(element);
                    ASSERT_TRUE(after == live.end() || after->first - element >= size);
                    ASSERT_TRUE(after == live.begin() || element - std::prev(after)->first >= size);
                    live[element] = step;
                    std::memcpy(element, &step, sizeof step);
                } else if (!live.empty()) {
                    auto place = live.begin();
                    std::advance(place, random() % live.size());
                    ASSERT_EQ(std::memcmp(place->first, &place->second, 4), 0);
                    ASSERT_TRUE(tiny.owns(place->first));
                    ASSERT_FALSE(tiny.release(place->first + 8));
                    ASSERT_TRUE(tiny.release(place->first));
                    live.erase(place);
                }
                std::set<const void*> blocks;
                for (const auto& [element, value] : live) blocks.insert(source.blockOf(element));
                ASSERT_EQ(4 - source.left, static_cast<int>(blocks.size()));
            }
            for (const auto& [element, value] : live) ASSERT_TRUE(tiny.release(element));
            EXPECT_TRUE(tiny.isEmpty());
            EXPECT_EQ(source.left, 4);
            EXPECT_NE(tiny.allocate(), nullptr);
        }
        EXPECT_EQ(source.left, 4);  // the destroyed allocator kept nothing
        EXPECT_EQ(bypass, 0);
    }
}

}  // namespace
}  // namespace brushwork
