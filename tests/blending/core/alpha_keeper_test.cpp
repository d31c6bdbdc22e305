#include "blending/core/alpha_keeper.h"

#include <gtest/gtest.h>

#include <cmath>

#include "image/filter/kernel_recipe.h"

namespace brushwork::npc {
namespace {

// Every colour, alpha and kept alpha. In double the product of two floats is exact, and so is the
// test for its half.
TEST(AlphaKeeper, EveryColourAndAlpha) {
    for (int alpha = 0; alpha < 256; ++alpha)
        for (int kept = 0; kept < 256; ++kept) {
            std::uint8_t pixels[256 * 4], vector[256 * 4], saved[256];
            for (int c = 0; c < 256; ++c) {
                saved[c] = static_cast<std::uint8_t>(kept);
                pixels[4 * c] = static_cast<std::uint8_t>(c);
                pixels[4 * c + 1] = static_cast<std::uint8_t>(255 - c);
                pixels[4 * c + 2] = static_cast<std::uint8_t>(c ^ 0x55);
                pixels[4 * c + 3] = static_cast<std::uint8_t>(alpha);
            }
            std::copy(std::begin(pixels), std::end(pixels), vector);
            restoreAlphaScalar(pixels, saved, 256);
            restoreAlphaSse2(vector, saved, 256);
            const auto expected = [&](int c) {
                if (alpha == 0) return 0;
                const float f = static_cast<float>(kept) / static_cast<float>(alpha);
                const float product = static_cast<float>(c) * f;
                return static_cast<int>(
                    std::min(255.0, std::floor(static_cast<double>(product) + 0.5)));
            };
            for (int c = 0; c < 256; ++c) {
                ASSERT_EQ(pixels[4 * c], expected(c)) << c << " " << alpha << " " << kept;
                ASSERT_EQ(pixels[4 * c + 1], expected(255 - c));
                ASSERT_EQ(pixels[4 * c + 2], expected(c ^ 0x55));
                ASSERT_EQ(pixels[4 * c + 3], kept);
            }
            ASSERT_TRUE(std::equal(std::begin(pixels), std::end(pixels), vector))
                << alpha << " " << kept;
        }
}

TEST(AlphaKeeper, EveryLengthAndPlace) {
    test::Random random(3);
    for (const VectorLevel level : test::vectorLevels())
        for (std::size_t count = 0; count <= 40; ++count)
            for (std::size_t skew = 0; skew < 17; ++skew) {
                test::GuardedBytes hi(count * 4, skew), lo(count * 4, (skew * 5) % 16);
                test::GuardedBytes keptHi(count, skew % 3), keptLo(count, skew % 7);
                for (auto* bytes : {&hi, &lo, &keptHi, &keptLo}) bytes->fill(random);
                auto want = hi.bytes();
                auto wantHi = want, wantLo = lo.bytes();
                restoreAlphaScalar(want.data(), keptHi.data(), count);
                restoreAlpha16Scalar(wantHi.data(), wantLo.data(), keptHi.data(), keptLo.data(),
                                     count);
                const test::AtLevel at(level);
                const auto before = hi.bytes();
                restoreAlpha(hi.data(), keptHi.data(), count);
                ASSERT_EQ(lastKernelForm(), VectorLevel::Sse2);
                ASSERT_EQ(hi.bytes(), want) << "count " << count << " skew " << skew;
                std::copy(before.begin(), before.end(), hi.data());
                restoreAlpha16(hi.data(), lo.data(), keptHi.data(), keptLo.data(), count);
                ASSERT_EQ(lastKernelForm(), VectorLevel::Sse2);
                ASSERT_EQ(hi.bytes(), wantHi) << "count " << count << " skew " << skew;
                ASSERT_EQ(lo.bytes(), wantLo) << "count " << count << " skew " << skew;
                ASSERT_TRUE(hi.guardsIntact() && lo.guardsIntact());
            }
}

TEST(AlphaKeeper, TwoPlanesAreLimitedAndNotScaled) {
    const auto restored = [](std::vector<int> channels, int kept) {
        std::uint8_t hi[4], lo[4];
        for (int c = 0; c < 4; ++c) {
            hi[c] = static_cast<std::uint8_t>(channels[static_cast<std::size_t>(c)] >> 8);
            lo[c] = static_cast<std::uint8_t>(channels[static_cast<std::size_t>(c)]);
        }
        const auto keptHi = static_cast<std::uint8_t>(kept >> 8);
        const auto keptLo = static_cast<std::uint8_t>(kept);
        restoreAlpha16Scalar(hi, lo, &keptHi, &keptLo, 1);
        std::vector<int> result;
        for (int c = 0; c < 4; ++c) result.push_back(hi[c] * 256 + lo[c]);
        return result;
    };
    using Pixel = std::vector<int>;
    EXPECT_EQ(restored({1000, 0x1234, 0xFFFF, 0xFFFF}, 0x1233),
              (Pixel{1000, 0x1233, 0x1233, 0x1233}));
    // Alpha in the low byte alone is alpha.
    EXPECT_EQ(restored({7, 300, 0, 1}, 0x100), (Pixel{7, 0x100, 0, 0x100}));
    EXPECT_EQ(restored({7, 300, 9, 0}, 0x8001), (Pixel{0, 0, 0, 0x8001}));
    EXPECT_EQ(restored({7, 300, 9, 50}, 0), (Pixel{0, 0, 0, 0}));
}

}  // namespace
}  // namespace brushwork::npc
