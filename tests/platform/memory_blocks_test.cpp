#include "platform/memory_blocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <utility>
#include <vector>

namespace brushwork::platform {
namespace {

constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();

TEST(MemoryBlocks, BlocksAreOwnedOnce) {
    GlobalBlock block = GlobalBlock::allocate(1000);
    ASSERT_TRUE(block);
    {
        const LockedBlock lock(block);
        ASSERT_GE(lock.bytes().size(), 1000U);
        EXPECT_EQ(std::count(lock.bytes().begin(), lock.bytes().end(), 0),
                  static_cast<std::ptrdiff_t>(lock.bytes().size()));
        lock.bytes()[999] = 7;
    }
    GlobalBlock other = std::move(block);
    EXPECT_FALSE(block);
    EXPECT_EQ(LockedBlock(other).bytes()[999], 7);
    void* const handle = other.release();
    EXPECT_TRUE(LockedBlock(other).bytes().empty());
    GlobalBlock back(handle);
    EXPECT_EQ(LockedBlock(back).bytes()[999], 7);
    back = GlobalBlock::holding(std::vector<std::uint8_t>{1, 2, 3});
    EXPECT_EQ(LockedBlock(back).bytes()[2], 3);

    EXPECT_FALSE(GlobalBlock::allocate(0));
    EXPECT_FALSE(GlobalBlock::holding({}));
    EXPECT_FALSE(GlobalBlock::allocate(std::numeric_limits<std::size_t>::max() / 2));
}

TEST(MemoryBlocks, BitmapsHavePaddedRows) {
    EXPECT_EQ(paddedBitmapBytes(1, 1, 24), 4U);
    EXPECT_EQ(paddedBitmapBytes(3, 5, 24), 60U);
    EXPECT_EQ(paddedBitmapBytes(4, 5, 24), 60U);
    EXPECT_EQ(paddedBitmapBytes(9, 2, 1), 8U);
    for (const auto& [w, h, bits] :
         {std::array{0, 1, 32}, {1, 0, 32}, {-1, 1, 32}, {1, 1, 0}, {1, 1, 33}})
        EXPECT_EQ(paddedBitmapBytes(w, h, bits), 0U);
    if (sizeof(std::size_t) == 4) {
        EXPECT_EQ(paddedBitmapBytes(most, most, 32), 0U);
    }

    const BitmapHandle bitmap = BitmapHandle::create(3, 5, 24);
    const BitmapLayout layout = bitmap.layout();
    EXPECT_EQ(layout.width, 3);
    EXPECT_EQ(layout.height, 5);
    EXPECT_EQ(layout.bitsPerPixel, 24);
    EXPECT_EQ(layout.stride, 12U);
    EXPECT_EQ(std::count(layout.bits, layout.bits + 60, 0), 60);
    EXPECT_FALSE(BitmapHandle::create(3, 5, 8));
    EXPECT_FALSE(BitmapHandle::create(0, 5));
    EXPECT_FALSE(BitmapHandle::create(most, most));
    EXPECT_EQ(BitmapHandle().layout().bits, nullptr);
}

TEST(MemoryBlocks, ResourcesHaveAModuleANameAndAType) {
    static const std::vector<std::uint8_t> first{1, 2, 3}, second{4};
    int module = 0;
    if (!addResource({&module, u"A"}, first)) GTEST_SKIP() << "resources are in the program file";
    addResource({&module, u"A", u"ICON"}, second);
    EXPECT_EQ(LockedBlock(copyResource({&module, u"A"})).bytes().size(), 3U);
    EXPECT_EQ(LockedBlock(copyResource({&module, u"A", u"ICON"})).bytes()[0], 4);
    EXPECT_FALSE(copyResource({nullptr, u"A"}));
    EXPECT_FALSE(copyResource({&module, u"B"}));
    addResource({&module, u"A"}, second);
    EXPECT_EQ(LockedBlock(copyResource({&module, u"A"})).bytes()[0], 4) << "the later one counts";
}

}  // namespace
}  // namespace brushwork::platform
