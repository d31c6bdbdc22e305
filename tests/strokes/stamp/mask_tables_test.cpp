#include "strokes/stamp/mask_tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "support/test_seed.h"

namespace brushwork::npc {
namespace {

int gaussianOf(int index) {
    const long double x = static_cast<long double>(std::min(index, 11055)) * 9.042409e-5L * 3.5L;
    return static_cast<int>(std::exp(-0.5L * x * x) * 65535.0L);
}

// The profile of a radius and hardness, in long double; radius and hardness are exact floats whose
// product was rounded to float, as the table has it.
std::vector<int> profileOf(float radius, float hardness) {
    std::vector<int> entries(11059, 0);
    const int rim = static_cast<int>(16.0f * radius);
    const float core = radius > 6   ? radius - 3.0f
                       : radius > 4 ? 0.5f * radius
                       : radius > 3 ? 0.375f * radius
                       : radius > 2 ? 0.25f * radius
                                    : 0.125f * radius;
    const int solid = static_cast<int>(core * hardness * 16.0f);
    const long double step = rim - solid > 1 ? 11058.0L / (2.0L * (rim - solid)) : 0.0L;
    for (int i = 0; i < rim; ++i) {
        // A product that is whole but for the rounding of the division counts as whole.
        const long double place = static_cast<long double>(2 * (i - solid) + 1) * step;
        entries[static_cast<std::size_t>(i)] =
            i < solid ? 255 : std::min(gaussianOf(static_cast<int>(place)) + 128, 65535) >> 8;
    }
    return entries;
}

std::vector<int> filteredOf(const std::vector<int>& entries, float radius) {
    const int rim = static_cast<int>(16.0f * radius);
    std::vector<int> filtered(static_cast<std::size_t>(std::max(rim + 9, 144)), 0);
    for (int i = 0; i < rim + 8; ++i) {
        int sum = 0;
        if (rim > 16) {
            for (int n = i - 8; n < i + 8; ++n)
                sum += entries[static_cast<std::size_t>(n < 0 ? -n - 1 : n)];
            filtered[static_cast<std::size_t>(i)] = (sum + 15) >> 4;
        } else {
            for (int a = -8; a < 8; ++a)
                for (int b = -8; b < 8; ++b)
                    sum += entries[static_cast<std::size_t>(
                        std::sqrt((a + i + 0.5L) * (a + i + 0.5L) + (b + 0.5L) * (b + 0.5L)))];
            filtered[static_cast<std::size_t>(i)] = (sum + 255) >> 8;
        }
    }
    return filtered;
}

void expectProfile(const CoverageProfile& profile, const std::vector<int>& expected) {
    int solid = 0, empty = profile.last + 1;
    while (solid <= profile.last && expected[static_cast<std::size_t>(solid)] == 255) ++solid;
    while (empty > 0 && expected[static_cast<std::size_t>(empty - 1)] == 0) --empty;
    EXPECT_EQ(profile.solidEnd, solid);
    EXPECT_EQ(profile.emptyBegin, empty);
    int wrong = 0;
    for (int i = 0; i <= profile.last; ++i)
        wrong += profile.entries[i] != expected[static_cast<std::size_t>(i)];
    EXPECT_EQ(wrong, 0);
}

TEST(GaussianFalloffTable, IsTheBellCurve) {
    const auto& table = GaussianFalloffTable::instance();
    for (int i = 0; i < 11056; ++i) ASSERT_EQ(table.at(i), gaussianOf(i)) << i;
    EXPECT_EQ(table.at(0), 65535);
    EXPECT_EQ(table.at(11058), table.at(11055));
}

TEST(CoverageHistogram, CountsEverySampleOnce) {
    const auto& histogram = CoverageHistogram::instance();
    for (int d = 0; d < 32; ++d) {
        int counts[64] = {};
        for (int a = -8; a < 8; ++a)
            for (int b = -8; b < 8; ++b)
                ++counts[static_cast<int>(
                    std::sqrt((a + d + 0.5L) * (a + d + 0.5L) + (b + 0.5L) * (b + 0.5L)))];
        for (int j = 0; j < 64; ++j)
            ASSERT_EQ(histogram.row(d)[static_cast<std::size_t>(j)], counts[j]) << d << ", " << j;
    }
}

// In random order, since a table leaves out clearing what it knows to be clear.
TEST(StampMaskTable, IsTheToldProfileForEveryRadius) {
    const unsigned seed = brushwork::test::testSeed();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::vector<float> radii;
    for (int sixteenths = 1; sixteenths <= 300; ++sixteenths)
        radii.push_back(static_cast<float>(sixteenths) / 16.0f);
    for (const float r : {24.25f, 63.75f, 64.0f, 100.0f, 511.0f, 665.0f}) radii.push_back(r);
    std::shuffle(radii.begin(), radii.end(), random);
    StampMaskTable table;
    for (const float radius : radii)
        for (const float hardness : {1.0f, 0.88f, 0.75f, 0.28f, 0.0f}) {
            SCOPED_TRACE("radius " + std::to_string(radius) + " hardness " +
                         std::to_string(hardness));
            table.build(radius, hardness);
            const auto expected = profileOf(radius, hardness);
            expectProfile(table.plain(), expected);
            const auto averaged = filteredOf(expected, radius);
            ASSERT_EQ(table.filtered().last + 1, static_cast<int>(averaged.size()));
            ASSERT_EQ(averaged.back(), 0);  // stands for all that lies further out
            expectProfile(table.filtered(), averaged);
        }
}

TEST(StampMaskTable, SmallStampsTakeTheAveragedProfile) {
    StampMaskTable table;
    table.build(7.9375f, 1.0f);
    EXPECT_EQ(table.profileFor(1.0f, 1.0f).entries, table.filtered().entries);
    EXPECT_EQ(table.profileFor(1.0f, 2.0f).entries, table.plain().entries);
    EXPECT_EQ(table.profileFor(-1.5f, 0.25f).entries, table.plain().entries);
    table.build(8.25f, 0.5f);
    EXPECT_EQ(table.profileFor(1.0f, 0.5f).entries, table.plain().entries);
    EXPECT_EQ(table.profileFor(0.5f, 0.75f).entries, table.filtered().entries);
    table.build(20.0f, 0.5f);
    EXPECT_EQ(table.profileFor(0.25f, 0.25f).entries, table.filtered().entries);
    table.build(5.0f, NAN);  // as hardness 0
    EXPECT_EQ(table.plain().entries[40], 53);
}

}  // namespace
}  // namespace brushwork::npc
