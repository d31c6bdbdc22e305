// Every row against a loop over pixels: all small widths, misaligned buffers, constants, coverages,
// and every vector level of this processor.
#include "blending/paint/row_functions.h"

#include <gtest/gtest.h>

#include <cstring>

#include "blending/paint/paint_recipe.h"
#include "image/filter/kernel_recipe.h"

namespace brushwork::paint {
namespace {

using namespace brushwork::test;

struct Case {
    int sourceChannels;  // 1 beside a coverage
    int channels;
    Coverage coverage;
};

std::vector<VectorLevel> levels() {
    std::vector<VectorLevel> all = vectorLevels();
    all.push_back(VectorLevel::Scalar);
    return all;
}

Pixel pixelAt(const std::uint8_t* bytes, int channels) {
    Pixel p{};
    std::copy_n(bytes, channels, p.begin());
    return p;
}

// A row as it is asked for, and what it has to give.
void checkRow(const Case& c, BlendFactors pair, RowFunction row, std::size_t count, Dice& dice,
              VectorLevel level) {
    const bool constantSource = pick(dice, 0, 3) == 0;
    const bool constantCoverage = pick(dice, 0, 3) == 0;
    const bool covered = c.coverage != Coverage::Alpha;
    const int drawnChannels = covered ? c.channels : c.sourceChannels;
    const auto bytesOf = [&](int channels) { return count * static_cast<std::size_t>(channels); };
    GuardedBytes source(std::max<std::size_t>(bytesOf(drawnChannels), 32),
                        static_cast<std::size_t>(pick(dice, 0, 31)));
    GuardedBytes coverage(std::max<std::size_t>(count, 32),
                          static_cast<std::size_t>(pick(dice, 0, 31)));
    GuardedBytes target(bytesOf(c.channels), static_cast<std::size_t>(pick(dice, 0, 31)));
    const auto fill = [&](GuardedBytes& bytes, int channels, bool constant) {
        Pixel p{};
        const auto size = static_cast<std::size_t>(channels);
        for (std::size_t i = 0; i + size <= bytes.size(); i += size) {
            if (!constant || i == 0) p = drawPixel(dice);
            std::copy_n(p.begin() + (channels == 1 ? 3 : 0), channels, bytes.data() + i);
        }
    };
    fill(source, drawnChannels, constantSource);
    fill(coverage, 1, constantCoverage);
    fill(target, c.channels, false);
    const std::vector<std::uint8_t> before = target.bytes();

    PaintRow call;
    call.target = target.data();
    call.source = source.data();
    call.coverage = coverage.data();
    call.count = count;
    call.constantSource = constantSource;
    call.constantCoverage = constantCoverage;
    const AtLevel forced(level);
    row(call);

    for (std::size_t i = 0; i < count; ++i) {
        const Pixel d = pixelAt(before.data() + bytesOf(c.channels) / count * i, c.channels);
        const Pixel drawn = pixelAt(
            source.data() + (constantSource ? 0 : i) * static_cast<std::size_t>(drawnChannels),
            drawnChannels);
        const std::uint8_t m = coverage.data()[constantCoverage ? 0 : i];
        Pixel wanted;
        if (c.coverage == Coverage::Mix)
            wanted = mixedPixel(drawn, d, m);
        else if (covered)
            wanted = drawnPixel(pair, {m}, 1, d, 4, drawn);
        else
            wanted = drawnPixel(pair, drawn, c.sourceChannels, d, c.channels);
        const Pixel got = pixelAt(target.data() + bytesOf(c.channels) / count * i, c.channels);
        wanted = pixelAt(wanted.data(), c.channels);
        ASSERT_EQ(got, wanted) << nameOf(pair) << " " << c.sourceChannels << " into " << c.channels
                               << " coverage " << static_cast<int>(c.coverage) << " count " << count
                               << " at " << i << " level " << vectorLevelName(level) << " constant "
                               << constantSource << constantCoverage << " s "
                               << ::testing::PrintToString(drawn) << " m " << int{m} << " d "
                               << ::testing::PrintToString(d);
    }
    ASSERT_TRUE(target.guardsIntact());
}

TEST(RowFunctions, EveryPairEqualsALoopOverPixels) {
    constexpr std::uint32_t seed = 20260705;
    SCOPED_TRACE("seed " + std::to_string(seed));
    Dice dice(seed);
    const Case cases[] = {{4, 4, Coverage::Alpha}, {1, 1, Coverage::Alpha},
                          {4, 1, Coverage::Alpha}, {1, 4, Coverage::Through},
                          {1, 4, Coverage::Mix},   {1, 1, Coverage::Mix}};
    int found = 0;
    for (const Case& c : cases) {
        const bool covered = c.coverage != Coverage::Alpha;
        for (const BlendFactors pair : allPairs()) {
            const RowFunction row =
                rowFunction(covered ? c.channels : c.sourceChannels, c.channels, pair, c.coverage);
            if (!row) continue;
            ++found;
            for (const VectorLevel level : levels())
                for (std::size_t count = 0; count <= 70; ++count)
                    ASSERT_NO_FATAL_FAILURE(checkRow(c, pair, row, count, dice, level));
            ASSERT_NO_FATAL_FAILURE(checkRow(c, pair, row, 700, dice, VectorLevel::Avx2));
        }
    }
    EXPECT_EQ(found, 8 + 8 + 2 + 3 + 1 + 1);
}

TEST(RowFunctions, TheVectorFormsRun) {
    std::vector<std::uint8_t> target(4 * 64), source(4 * 64, 100);
    PaintRow row;
    row.target = target.data();
    row.source = source.data();
    row.count = 64;
    for (const VectorLevel level : levels()) {
        const AtLevel forced(level);
        for (const BlendFactors pair : allPairs()) {
            if (pair == pairCopy) continue;
            noteKernelForm(level == VectorLevel::Scalar ? VectorLevel::Avx2 : VectorLevel::Scalar);
            rowFunction(4, 4, pair)(row);
            EXPECT_EQ(lastKernelForm(), level) << nameOf(pair);
        }
    }
}

// All pairs of bytes: 255 gives the source, 0 the target, equal values stay.
TEST(RowFunctions, MixingIsExactAtItsEnds) {
    std::vector<std::uint8_t> target(256), source(256), coverage(256);
    const RowFunction mix = rowFunction(1, 1, pairOver, Coverage::Mix);
    for (int m = 0; m < 256; ++m) {
        for (int s = 0; s < 256; ++s) {
            for (int d = 0; d < 256; ++d)
                target[static_cast<std::size_t>(d)] = static_cast<std::uint8_t>(d);
            std::fill(source.begin(), source.end(), static_cast<std::uint8_t>(s));
            std::fill(coverage.begin(), coverage.end(), static_cast<std::uint8_t>(m));
            PaintRow row;
            row.target = target.data();
            row.source = source.data();
            row.coverage = coverage.data();
            row.count = 256;
            mix(row);
            ASSERT_EQ(target[static_cast<std::size_t>(s)], s);
            for (int d = 0; d < 256; ++d) {
                const int got = target[static_cast<std::size_t>(d)];
                if (m == 0) {
                    ASSERT_EQ(got, d);
                }
                if (m == 255) {
                    ASSERT_EQ(got, s);
                }
                ASSERT_LE(std::abs(255 * got - (s * m + d * (255 - m))), 127);
            }
        }
    }
}

TEST(RowFunctions, AConstantThatLeavesTheTargetDoesSo) {
    constexpr std::uint32_t seed = 7405;
    SCOPED_TRACE("seed " + std::to_string(seed));
    Dice dice(seed);
    int leaving = 0;
    for (int n = 0; n < 20000; ++n) {
        for (const BlendFactors pair : allPairs()) {
            for (const int channels : {1, 4}) {
                const Pixel s = drawPixel(dice), d = drawPixel(dice);
                const ConstantPixel constant(s.data() + (channels == 1 ? 3 : 0), channels);
                if (!leavesTarget(pair, constant.data(), channels)) continue;
                ++leaving;
                Pixel target = d;
                PaintRow row;
                row.target = target.data();
                row.source = constant.data();
                row.count = 1;
                row.constantSource = true;
                rowFunction(channels, channels, pair)(row);
                ASSERT_EQ(target, d) << nameOf(pair);
            }
        }
    }
    EXPECT_GT(leaving, 1000);
}

}  // namespace
}  // namespace brushwork::paint
