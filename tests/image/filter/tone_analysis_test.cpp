#include "image/filter/tone_analysis.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "adjust_oracle.h"
#include "image/filter/color_convert.h"
#include "image/filter/tone_records.h"
#include "kernel_recipe.h"

namespace brushwork {
namespace {

using Words = std::vector<std::uint32_t>;

Words noise(std::size_t count, unsigned seed) {
    test::Random random(seed);
    Words words(count);
    for (auto& word : words) {
        const std::uint32_t alpha = random() % 4 == 0 ? 0 : test::edgyByte(random);
        word = alpha << 24;
        for (unsigned shift = 0; shift < 24; shift += 8)
            word |= static_cast<std::uint32_t>(random() % (alpha + 1)) << shift;
    }
    return words;
}

// Walks the analysis and checks that each pixel comes once, beside its own record.
void expectRecords(const ToneAnalysis& analysis, const Words& pixels) {
    Words seen = pixels;
    analysis.walk(seen.data(), [&](const ToneBlock& block) {
        for (std::size_t y = 0; y < block.rows; ++y)
            for (std::size_t x = 0; x < block.width; ++x) {
                std::uint32_t& word = block.pixels[y * block.pixelStride + x];
                const float* const record = block.records + y * block.recordStride + x * 4;
                const double alpha = word >> 24;
                test::Triple hsv{};
                if (alpha > 0.0)
                    hsv = test::oracleToHsv({(word & 0xFF) * 255.0 / alpha,
                                             (word >> 8 & 0xFF) * 255.0 / alpha,
                                             (word >> 16 & 0xFF) * 255.0 / alpha});
                ASSERT_NEAR(record[0], hsv.a, 1e-3);
                ASSERT_NEAR(record[1], hsv.b, 1e-5);
                ASSERT_NEAR(record[2], hsv.c, 1e-3);
                word = ~word;
            }
    });
    for (std::size_t n = 0; n < pixels.size(); ++n) ASSERT_EQ(seen[n], ~pixels[n]) << n;
}

TEST(ToneAnalysis, CountsWhatCanBeSeen) {
    const Words pixels = noise(150 * 77, 3);
    const auto analysis = ToneAnalysis::make(pixels.data(), 150, 77);
    ASSERT_TRUE(analysis);
    std::array<std::int32_t, 256> histogram{};
    double least = 255.0, most = 0.0;
    for (const std::uint32_t word : pixels) {
        const double alpha = word >> 24;
        if (alpha == 0.0) continue;
        const auto top = std::max({word & 0xFF, word >> 8 & 0xFF, word >> 16 & 0xFF});
        const double value = top * 255.0 / alpha;
        least = std::min(least, value);
        most = std::max(most, value);
        ++histogram[static_cast<std::size_t>(value + 0.5)];
    }
    std::size_t first = 0;
    while (histogram[first] == 0) ++first;
    // A value of exactly a half above a whole number may lie on either side of it.
    int moved = 0;
    for (std::size_t n = 0; n < 256; ++n)
        moved += std::abs(histogram[n] - analysis->histogram()[n]);
    EXPECT_LE(moved, 20);
    EXPECT_NEAR(analysis->minValue(), least, 1e-4);
    EXPECT_NEAR(analysis->maxValue(), most, 1e-4);
    EXPECT_EQ(analysis->medianValue(), static_cast<float>(first));
    EXPECT_EQ(analysis->pixelCount(), 150u * 77u);
    expectRecords(*analysis, pixels);
}

TEST(ToneAnalysis, NothingToCount) {
    const Words pixels(100, 0);
    const auto analysis = ToneAnalysis::make(pixels.data(), 10, 10);
    ASSERT_TRUE(analysis);
    EXPECT_EQ(analysis->minValue(), 255.0f);
    EXPECT_EQ(analysis->medianValue(), 128.0f);
    EXPECT_EQ(analysis->maxValue(), 0.0f);
    EXPECT_FALSE(ToneAnalysis::make(pixels.data(), 0, 10));
    EXPECT_FALSE(ToneAnalysis::make(pixels.data(), 2147483647, 2147483647));
}

TEST(ToneAnalysis, ASlotServesImagesOfAsManyPixels) {
    const Words first = noise(60 * 40, 4), second(30 * 40, 0xFF0000FF);
    Ref<ToneAnalysis> slot;
    const auto made = ToneAnalysis::in(slot, first.data(), 60, 40);
    ASSERT_TRUE(made);
    EXPECT_EQ(ToneAnalysis::in(slot, second.data(), 40, 60).get(), made.get());
    expectRecords(*made, first);
    const auto other = ToneAnalysis::in(slot, second.data(), 30, 40);
    ASSERT_TRUE(other);
    EXPECT_NE(other.get(), made.get());
    EXPECT_EQ(slot.get(), other.get());
    // The former statistics, the new pixels.
    EXPECT_EQ(other->histogram(), made->histogram());
    EXPECT_EQ(other->minValue(), made->minValue());
    EXPECT_EQ(other->medianValue(), made->medianValue());
    EXPECT_EQ(other->maxValue(), made->maxValue());
    EXPECT_EQ(other->width(), 30);
    expectRecords(*other, second);
}

// Wider and higher than the store's rows and columns can be.
TEST(ToneAnalysis, FoldsLongImages) {
    const Words pixels = noise(110007, 5);
    const auto wide = ToneAnalysis::make(pixels.data(), 110007, 1);
    ASSERT_TRUE(wide);
    expectRecords(*wide, pixels);
    const auto high = ToneAnalysis::make(pixels.data(), 1, 110007);
    ASSERT_TRUE(high);
    expectRecords(*high, pixels);
}

// Blocks of 32 by 32, row of blocks by row of blocks: the hue of the last one stays.
TEST(ToneAnalysis, RemembersTheLastHueOfItsWalk) {
    Words pixels(64 * 64, 0xFF808080);
    pixels[63 * 64 + 31] = 0xFF00FF00;  // upper left block
    pixels[32 * 64 + 32] = 0xFFFF0000;  // upper right block, a row further down
    pixels[31 * 64 + 63] = 0xFF0000FF;
    ASSERT_TRUE(ToneAnalysis::make(pixels.data(), 64, 64));
    EXPECT_EQ(rememberedHue(), 240.0f);
}

TEST(ToneRecords, AreTheSameAtEveryLevel) {
    test::Random random(21);
    for (const VectorLevel level : test::vectorLevels()) {
        const test::AtLevel at(level);
        for (std::size_t count = 0; count < 40; ++count) {
            Words pixels(count);
            for (auto& word : pixels)
                for (unsigned shift = 0; shift < 32; shift += 8)
                    word |= std::uint32_t{test::edgyByte(random)} << shift;
            test::GuardedBytes expected(count * 16, 4), got(count * 16, count % 16 * 4);
            toneRecordsScalar(pixels.data(), count, reinterpret_cast<float*>(expected.data()));
            toneRecords(pixels.data(), count, reinterpret_cast<float*>(got.data()));
            ASSERT_EQ(lastKernelForm(), level);
            ASSERT_EQ(got.bytes(), expected.bytes()) << count;
            ASSERT_TRUE(got.guardsIntact());
        }
    }
}

}  // namespace
}  // namespace brushwork
