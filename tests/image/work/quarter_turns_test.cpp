#include "image/work/quarter_turns.h"

#include <gtest/gtest.h>

#include <numeric>

#include "image/filter/kernel_recipe.h"

namespace brushwork {
namespace {

TEST(QuarterTurns, EveryPixelGoesToItsPlace) {
    test::Random random(61);
    std::vector<VectorLevel> levels = test::vectorLevels();
    levels.push_back(VectorLevel::Scalar);
    constexpr std::int32_t sizes[][2] = {{1, 1},  {1, 9},   {9, 1},   {3, 5},     {4, 4},    {8, 8},
                                         {13, 7}, {32, 33}, {35, 64}, {128, 128}, {127, 129}};
    for (const VectorLevel level : levels)
        for (const std::int32_t bytes : {1, 4})
            for (const auto& [width, height] : sizes) {
                const auto size = static_cast<std::size_t>(width * height * bytes);
                test::GuardedBytes source(size, random() % 16);
                source.fill(random);
                test::GuardedBytes left(size, random() % 16);
                test::GuardedBytes right(size, random() % 16);
                const test::AtLevel at(level);
                noteKernelForm(VectorLevel::Scalar);
                ASSERT_TRUE(rotate90(source.data(), left.data(), width, height, bytes));
                const std::int32_t reach = bytes == 4 ? turnSideFour : turnSideOne;
                const bool blocks = width >= reach && height >= reach;
                ASSERT_EQ(lastKernelForm() != VectorLevel::Scalar,
                          level != VectorLevel::Scalar && blocks);
                ASSERT_TRUE(rotateMinus90(source.data(), right.data(), width, height, bytes));
                for (std::int32_t y = 0; y < height; ++y)
                    for (std::int32_t x = 0; x < width; ++x)
                        for (std::int32_t c = 0; c < bytes; ++c) {
                            const int value = source.data()[(y * width + x) * bytes + c];
                            ASSERT_EQ(left.data()[(x * height + height - 1 - y) * bytes + c], value)
                                << vectorLevelName(level) << " " << width << " x " << height;
                            ASSERT_EQ(right.data()[((width - 1 - x) * height + y) * bytes + c],
                                      value)
                                << vectorLevelName(level) << " " << width << " x " << height;
                        }
                ASSERT_TRUE(left.guardsIntact() && right.guardsIntact());
            }
}

TEST(QuarterTurns, MirrorsExchangeSides) {
    for (const std::int32_t bytes : {1, 4})
        for (const std::int32_t width : {1, 2, 5, 16})
            for (const std::int32_t height : {1, 2, 7}) {
                std::vector<std::uint8_t> source(static_cast<std::size_t>(width * height * bytes));
                std::iota(source.begin(), source.end(), std::uint8_t{0});
                std::vector<std::uint8_t> mirrored = source;
                std::vector<std::uint8_t> flipped = source;
                ASSERT_TRUE(mirrorX(mirrored.data(), width, height, bytes));
                ASSERT_TRUE(flipY(flipped.data(), width, height, bytes));
                for (std::int32_t y = 0; y < height; ++y)
                    for (std::int32_t x = 0; x < width; ++x)
                        for (std::int32_t c = 0; c < bytes; ++c) {
                            const auto at = [&](std::int32_t px, std::int32_t py) {
                                return static_cast<std::size_t>((py * width + px) * bytes + c);
                            };
                            ASSERT_EQ(mirrored[at(width - 1 - x, y)], source[at(x, y)]);
                            ASSERT_EQ(flipped[at(x, height - 1 - y)], source[at(x, y)]);
                        }
            }
}

TEST(QuarterTurns, RefuseOtherPixels) {
    std::uint8_t pixel[3] = {};
    std::uint8_t out[3] = {};
    EXPECT_FALSE(rotate90(pixel, out, 1, 1, 3));
    EXPECT_FALSE(rotateMinus90(pixel, out, 0, 1, 1));
    EXPECT_FALSE(mirrorX(pixel, 1, -1, 1));
    EXPECT_FALSE(flipY(pixel, 1, 1, 2));
}

}  // namespace
}  // namespace brushwork
