#include "image/work/tone_kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "image/filter/kernel_recipe.h"

namespace brushwork {
namespace {

TEST(ToneKernels, InvertOfEveryColourAndAlpha) {
    for (int alpha = 0; alpha < 256; ++alpha)
        for (int color = 0; color < 256; ++color) {
            std::uint8_t pixels[16];
            for (int n = 0; n < 4; ++n) {
                pixels[4 * n] = static_cast<std::uint8_t>(color);
                pixels[4 * n + 1] = static_cast<std::uint8_t>(255 - color);
                pixels[4 * n + 2] = static_cast<std::uint8_t>(color / 2);
                pixels[4 * n + 3] = static_cast<std::uint8_t>(alpha);
            }
            std::uint8_t vector[16];
            std::copy_n(pixels, 16, vector);
            const auto expected = [&](int c) {
                if (alpha == 0) return c;
                // Whole quotients by repeated doubles: floor is exact for such small numbers.
                const double straight = std::floor(std::min(c, alpha) * 255.0 / alpha);
                return static_cast<int>(std::floor((255.0 - straight) * alpha / 255.0));
            };
            const int want[3] = {expected(color), expected(255 - color), expected(color / 2)};
            invertFourScalar(pixels, 4);
            invertFourSse2(vector, 4);
            for (int n = 0; n < 16; ++n) {
                ASSERT_EQ(pixels[n], n % 4 == 3 ? alpha : want[n % 4]) << color << " " << alpha;
                ASSERT_EQ(vector[n], pixels[n]) << color << " over " << alpha;
            }
        }
}

TEST(ToneKernels, InvertTakesEveryLengthAndPlace) {
    test::Random random(71);
    for (const VectorLevel level : test::vectorLevels())
        for (std::size_t count = 0; count < 40; ++count)
            for (std::size_t skew = 0; skew < 17; ++skew) {
                test::GuardedBytes pixels(count * 4, skew);
                pixels.fill(random);
                std::vector<std::uint8_t> expected = pixels.bytes();
                invertFourScalar(expected.data(), count);
                const test::AtLevel at(level);
                invertFour(pixels.data(), count);
                ASSERT_EQ(lastKernelForm(), VectorLevel::Sse2);
                ASSERT_EQ(pixels.bytes(), expected) << "count " << count << " skew " << skew;
                ASSERT_TRUE(pixels.guardsIntact());
            }
    std::uint8_t bytes[3] = {0, 0x55, 255};
    invertOne(bytes, 3);
    EXPECT_EQ(bytes[0], 255);
    EXPECT_EQ(bytes[1], 0xAA);
    EXPECT_EQ(bytes[2], 0);
}

TEST(ToneKernels, BrightnessAndContrast) {
    for (const float b : {-300.0f, -40.5f, 0.0f, 0.25f, 77.0f, 300.0f})
        for (const float c : {-100.0f, -37.5f, -1.0f, 0.0f, 1.0f, 50.0f, 99.0f, 100.0f, 120.0f})
            for (int v = 0; v < 256; ++v) {
                const double db = static_cast<double>(b);
                const double dc = static_cast<double>(c);
                const double factor = c >= 100.0f ? 512.0 : 100.0 / (100.0 - dc);
                const double exact = c <= 0.0f ? v * (dc + 100.0) / 100.0 + db - dc * 1.28
                                               : (v + db - 128.0) * factor + 128.0;
                const double bounded = std::clamp(exact, 0.0, 255.0);
                const int got = brightnessContrastOf(static_cast<std::uint8_t>(v), b, c);
                // Cut off: within a float rounding of the next whole number either is right.
                ASSERT_GE(got, std::floor(bounded - 0.01)) << v << " " << b << " " << c;
                ASSERT_LE(got, std::floor(bounded + 0.01)) << v << " " << b << " " << c;
            }
    EXPECT_EQ(brightnessContrastOf(200, std::nanf(""), 0.0f), 0);
    std::vector<std::uint8_t> bytes = {0, 100, 128, 255};
    brightnessContrast(bytes.data(), bytes.size(), 0.0f, 100.0f);
    EXPECT_EQ(bytes, (std::vector<std::uint8_t>{0, 0, 128, 255}));
    brightnessContrast(bytes.data(), bytes.size(), 0.0f, -100.0f);
    EXPECT_EQ(bytes, (std::vector<std::uint8_t>{128, 128, 128, 128}));
}

}  // namespace
}  // namespace brushwork
