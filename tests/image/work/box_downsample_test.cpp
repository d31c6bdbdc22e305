#include "image/work/box_downsample.h"

#include <gtest/gtest.h>

#include <string>

#include "foundation/services/log.h"
#include "image/filter/kernel_recipe.h"

namespace brushwork {
namespace {

TEST(BoxDownsample, TheScalePicksTheBlock) {
    const auto blockOf = [](float scale) { return blockReduction(scale).block; };
    EXPECT_EQ(blockOf(0.5f), 2);
    EXPECT_EQ(blockOf(0.51f), 1);
    EXPECT_EQ(blockOf(0.99f), 1);
    EXPECT_EQ(blockOf(1.0f), 0);
    EXPECT_EQ(blockOf(0.0f), 0);
    EXPECT_EQ(blockOf(0.00001f), 0);
    EXPECT_EQ(blockOf(0.0000101f), 16);
    EXPECT_EQ(blockOf(0.0625f), 16);
    EXPECT_EQ(blockOf(0.0626f), 8);
    EXPECT_EQ(blockOf(0.125f), 8);
    EXPECT_EQ(blockOf(0.25f), 4);
    EXPECT_EQ(blockOf(0.2501f), 2);
    EXPECT_EQ(blockOf(-0.5f), 0);
    EXPECT_EQ(reducedSize({5, 4}, blockReduction(0.5f)), (Extent<std::int32_t>{3, 2}));
    EXPECT_EQ(reducedSize({23, 24}, blockReduction(0.01f)), (Extent<std::int32_t>{1, 2}));
    EXPECT_EQ(reducedSize({23, 24}, blockReduction(0.7f)), (Extent<std::int32_t>{23, 24}));
}

// Every block size over odd sizes, all levels, against sums in plain integers; uncovered columns
// and rows of the target are 0.
TEST(BoxDownsample, EveryFormIsTheMeanOfItsBlock) {
    test::Random random(51);
    std::vector<VectorLevel> levels = test::vectorLevels();
    levels.push_back(VectorLevel::Scalar);
    setLogSink([](std::string_view) {});
    for (const VectorLevel level : levels)
        for (const std::int32_t block : {2, 4, 8, 16})
            for (std::int32_t width = 1; width <= 84; width += width < 40 ? 1 : 7)
                for (const std::int32_t height : {block - 1, block, 3 * block + block / 2}) {
                    test::GuardedBytes source(static_cast<std::size_t>(width * height * 4),
                                              random() % 32);
                    if (random() % 4)
                        source.fill(random);
                    else
                        std::fill_n(source.data(), source.size(), std::uint8_t{255});
                    const BlockReduction reduction =
                        blockReduction(1.0f / static_cast<float>(block));
                    const Extent<std::int32_t> size = reducedSize({width, height}, reduction);
                    test::GuardedBytes out(static_cast<std::size_t>(size.x * size.y * 4),
                                           random() % 32);
                    const test::AtLevel at(level);
                    noteKernelForm(VectorLevel::Scalar);
                    ASSERT_TRUE(
                        boxDownsample(source.data(), {width, height}, block, out.data(), size));
                    ASSERT_EQ(lastKernelForm() == VectorLevel::Scalar,
                              level == VectorLevel::Scalar);
                    for (std::int32_t y = 0; y < size.y; ++y)
                        for (std::int32_t x = 0; x < size.x; ++x)
                            for (std::int32_t c = 0; c < 4; ++c) {
                                std::int32_t sum = 0;
                                if ((x + 1) * block <= width && (y + 1) * block <= height)
                                    for (std::int32_t n = 0; n < block * block; ++n)
                                        sum += source.data()[((y * block + n / block) * width +
                                                              x * block + n % block) *
                                                                 4 +
                                                             c];
                                ASSERT_EQ(out.data()[(y * size.x + x) * 4 + c],
                                          sum / (block * block))
                                    << vectorLevelName(level) << " block " << block << " size "
                                    << width << " x " << height << " at " << x << "," << y;
                            }
                    ASSERT_TRUE(out.guardsIntact());
                }
    setLogSink({});
    std::uint8_t pixel[4];
    EXPECT_FALSE(boxDownsample(pixel, {1, 1}, 3, pixel, {0, 0}));
}

TEST(BoxDownsample, FourByFourOfOneChannel) {
    test::Random random(52);
    std::vector<VectorLevel> levels = test::vectorLevels();
    levels.push_back(VectorLevel::Scalar);
    for (const VectorLevel level : levels)
        for (std::int32_t width = 4; width < 75; ++width) {
            const std::int32_t height = 11;
            test::GuardedBytes source(static_cast<std::size_t>(width * height), random() % 16);
            source.fill(random);
            test::GuardedBytes out(static_cast<std::size_t>((width / 4) * (height / 4)), 3);
            const test::AtLevel at(level);
            boxDownsample4One(source.data(), {width, height}, out.data());
            ASSERT_EQ(lastKernelForm() == VectorLevel::Scalar, level == VectorLevel::Scalar);
            for (std::int32_t y = 0; y < height / 4; ++y)
                for (std::int32_t x = 0; x < width / 4; ++x) {
                    std::int32_t sum = 0;
                    for (std::int32_t n = 0; n < 16; ++n)
                        sum += source.data()[(y * 4 + n / 4) * width + x * 4 + n % 4];
                    ASSERT_EQ(out.data()[y * (width / 4) + x], sum >> 4)
                        << vectorLevelName(level) << " width " << width;
                }
            ASSERT_TRUE(out.guardsIntact());
        }
}

TEST(BoxDownsample, SixteenSaysSoInTheLog) {
    std::string line;
    setLogSink([&](std::string_view text) { line = text; });
    const std::vector<std::uint8_t> source(33 * 16 * 4);
    std::uint8_t out[2 * 4];
    boxDownsample(source.data(), {33, 16}, 16, out, {2, 1});
    setLogSink({});
    EXPECT_EQ(line, "Using ASM BoxFilter16 33, 16, 8\n");
}

}  // namespace
}  // namespace brushwork
