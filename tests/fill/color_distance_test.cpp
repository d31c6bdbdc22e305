#include "fill/color_distance.h"

#include <gtest/gtest.h>

#include <cstring>

#include "fill/coverage_table.h"
#include "fill/naive_flood.h"
#include "image/filter/kernel_recipe.h"

namespace brushwork::test {
namespace {

TEST(ColorDistance, WeighsColorByTheTargetsAlpha) {
    const ColorTarget opaque(0xFF804020, 4);
    EXPECT_EQ(opaque.red, 0x20U);
    EXPECT_EQ(opaque.green, 0x40U);
    EXPECT_EQ(opaque.blue, 0x80U);
    EXPECT_EQ(opaque.alpha, 0xFFU);
    EXPECT_EQ(colorDistance(0xFF804020, opaque), 0);
    EXPECT_EQ(colorDistance(0xFF814121, opaque), 3);
    EXPECT_EQ(colorDistance(0xF0814121, opaque), 15);
    EXPECT_EQ(colorDistance(0xFF00FFFF, opaque), 255);
    EXPECT_EQ(colorDistance(0x00FFFFFF, ColorTarget(0, 4)), 0);
    EXPECT_EQ(colorDistance(0xABCDEF10, ColorTarget(0x30, 1)), 0x20);
}

class DistanceKernelTest : public testing::TestWithParam<VectorLevel> {};

TEST_P(DistanceKernelTest, GivesTheBytesOfTheFormula) {
    const DistanceKernels& kernels = distanceKernels(GetParam());
    Random random(11);
    for (std::size_t count = 0; count <= 150; ++count) {
        const std::size_t misalignment = count % 33;
        for (const std::int32_t channels : {1, 4}) {
            const auto size = static_cast<std::size_t>(channels);
            GuardedBytes pixels(count * size, misalignment);
            GuardedBytes distances(count, count % 31);
            pixels.fill(random);
            std::uint32_t word = 0;
            for (int c = 0; c < 4; ++c) word = word << 8 | edgyByte(random);
            const ColorTarget target(word, channels);
            (channels == 1 ? kernels.one : kernels.four)(pixels.data(), count, target,
                                                         distances.data());
            EXPECT_EQ(lastKernelForm(), GetParam());
            for (std::size_t i = 0; i < count; ++i) {
                std::uint32_t pixel = 0;
                std::memcpy(&pixel, pixels.data() + size * i, size);
                ASSERT_EQ(distances.data()[i], naiveDistance(pixel, target.value, channels))
                    << "channels " << channels << " count " << count << " at " << i << std::hex
                    << " pixel " << pixel << " target " << target.value;
            }
            ASSERT_TRUE(distances.guardsIntact()) << count;
        }
    }
}

// All sums and alphas that there are.
TEST_P(DistanceKernelTest, RoundsAsTheFormulaDoes) {
    const DistanceKernels& kernels = distanceKernels(GetParam());
    std::vector<std::uint32_t> pixels(766);
    for (std::uint32_t sum = 0; sum < 766; ++sum) {
        const std::uint32_t red = std::min(sum, 255U);
        const std::uint32_t green = std::min(sum - red, 255U);
        pixels[sum] = red | green << 8 | (sum - red - green) << 16;
    }
    std::vector<std::uint8_t> distances(pixels.size());
    for (std::uint32_t alpha = 0; alpha < 256; ++alpha) {
        for (auto& pixel : pixels) pixel = (pixel & 0xFFFFFF) | alpha << 24;
        const ColorTarget target(alpha << 24, 4);
        kernels.four(reinterpret_cast<const std::uint8_t*>(pixels.data()), pixels.size(), target,
                     distances.data());
        for (std::uint32_t sum = 0; sum < 766; ++sum)
            ASSERT_EQ(distances[sum], naiveDistance(pixels[sum], target.value, 4))
                << "alpha " << alpha << " sum " << sum;
    }
}

TEST_P(DistanceKernelTest, FindsWhatIsBelowALimit) {
    const DistanceKernels& kernels = distanceKernels(GetParam());
    Random random(12);
    for (const std::uint32_t limit : {0U, 1U, 2U, 127U, 128U, 129U, 254U, 255U, 256U}) {
        GuardedBytes bytes(96, limit % 33);
        bytes.fill(random);
        GuardedBytes bits(3 * sizeof(std::uint32_t), 0);
        kernels.below(bytes.data(), 96, limit, reinterpret_cast<std::uint32_t*>(bits.data()));
        EXPECT_EQ(lastKernelForm(), GetParam());
        for (std::size_t i = 0; i < 96; ++i) {
            std::uint32_t word;
            std::memcpy(&word, bits.data() + i / 32 * 4, sizeof word);
            ASSERT_EQ((word >> (i % 32) & 1) != 0, bytes.data()[i] < limit) << limit << " at " << i;
        }
        EXPECT_TRUE(bits.guardsIntact());
    }
}

TEST_P(DistanceKernelTest, OpensPixelsInOnePassAsInTwo) {
    const DistanceKernels& kernels = distanceKernels(GetParam());
    Random random(13);
    for (int round = 0; round < 400; ++round) {
        const auto count = std::size_t{32} * between(random, 0, 4);
        GuardedBytes pixels(4 * count, between(random, 0, 32));
        GuardedBytes bits(count / 8, 0);
        // Few distances each time, so that often none lies between two limits.
        std::uint32_t words[3];
        for (std::uint32_t& word : words)
            for (int c = 0; c < 4; ++c) word = word << 8 | edgyByte(random);
        for (std::size_t i = 0; i < count; ++i)
            std::memcpy(pixels.data() + 4 * i, &words[between(random, 0, 2)], 4);
        const ColorTarget target(words[0], 4);
        constexpr std::uint32_t edges[] = {0, 1, 2, 31, 160, 254, 255, 256};
        const DistanceLimits limits{edges[between(random, 0, 7)], edges[between(random, 0, 7)],
                                    edges[between(random, 0, 7)]};
        const bool answer = kernels.openFour(pixels.data(), count, target, limits,
                                             reinterpret_cast<std::uint32_t*>(bits.data()));
        EXPECT_EQ(lastKernelForm(), GetParam());
        bool wanted = false;
        for (std::size_t i = 0; i < count; ++i) {
            std::uint32_t pixel;
            std::memcpy(&pixel, pixels.data() + 4 * i, 4);
            const std::uint32_t distance = colorDistance(pixel, target);
            wanted = wanted || (distance >= limits.whole && distance < limits.none);
            ASSERT_EQ((bits.data()[i / 8] >> (i % 8) & 1) != 0, distance < limits.open)
                << limits.open << " at " << i;
        }
        ASSERT_EQ(answer, wanted) << limits.whole << " to " << limits.none;
        ASSERT_TRUE(bits.guardsIntact());
    }
}

std::vector<VectorLevel> allLevels() {
    std::vector<VectorLevel> levels = vectorLevels();
    levels.insert(levels.begin(), VectorLevel::Scalar);
    return levels;
}

INSTANTIATE_TEST_SUITE_P(Levels, DistanceKernelTest, testing::ValuesIn(allLevels()),
                         [](const auto& each) { return vectorLevelName(each.param); });

TEST(CoverageTable, FallsFromWholeToNothing) {
    for (int tolerance = 0; tolerance < 256; ++tolerance) {
        for (const bool smooth : {false, true}) {
            const CoverageTable table(static_cast<std::uint8_t>(tolerance), smooth);
            std::uint32_t whole = 0;
            std::uint32_t some = 0;
            for (int distance = 0; distance < 256; ++distance) {
                const int got = table[static_cast<std::uint8_t>(distance)];
                ASSERT_EQ(got, naiveCoverage(distance, tolerance, smooth))
                    << "tolerance " << tolerance << " distance " << distance;
                whole += got == 255 ? 1U : 0U;
                some += got != 0 ? 1U : 0U;
            }
            EXPECT_EQ(table.endOfWhole(), whole);
            EXPECT_EQ(table.startOfNone(), some);
            EXPECT_EQ(table.stop(), tolerance == 0 ? 1U : static_cast<std::uint32_t>(tolerance));
        }
    }
    const CoverageTable exact(0, true);
    EXPECT_EQ(exact[0], 255);
    EXPECT_EQ(exact[1], 254);
    EXPECT_EQ(exact[127], 255 - 127 * 255 / 128);
    EXPECT_EQ(exact[128], 0);
    const CoverageTable usual(32, true);
    EXPECT_EQ(usual[0], 255);
    EXPECT_EQ(usual[32], 204);
    EXPECT_EQ(usual[159], 2);
    EXPECT_EQ(usual[160], 0);
}

}  // namespace
}  // namespace brushwork::test
