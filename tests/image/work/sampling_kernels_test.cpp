#include "image/work/sampling_kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "image/filter/kernel_recipe.h"
#include "image/work/sampling_weights.h"

namespace brushwork {
namespace {

constexpr const char* modeNames[3] = {"nearest", "bilinear", "bicubic"};

SampleRun kernelOf(VectorLevel level, int mode, int channels) {
    const SamplingKernels& kernels = samplingKernels(level);
    return channels == 4 ? kernels.four[mode] : kernels.one[mode];
}

// A place near the picture, at its edges often, or far off.
std::int32_t randomPlace(test::Random& random, std::int32_t size) {
    const auto draw = static_cast<std::uint32_t>(random());
    if (draw % 16 == 0) return static_cast<std::int32_t>(random());
    const std::int32_t whole = static_cast<std::int32_t>(draw >> 8) % (size + 8) - 4;
    const std::uint32_t fraction =
        draw % 3 == 0 ? 0 : static_cast<std::uint32_t>(random()) & 0xFFFF;
    return whole * 65536 + static_cast<std::int32_t>(fraction);
}

TEST(SamplingKernels, VectorFormsEqualTheScalarOnes) {
    test::Random random(21);
    constexpr std::int32_t sizes[][2] = {{1, 1}, {2, 2}, {3, 5}, {4, 4}, {5, 4}, {17, 9}, {64, 33}};
    for (const VectorLevel level : test::vectorLevels())
        for (const int channels : {1, 4})
            for (int mode = 0; mode < 3; ++mode) {
                const SampleRun scalar = kernelOf(VectorLevel::Scalar, mode, channels);
                const SampleRun vector = kernelOf(level, mode, channels);
                if (mode == 2 || (mode == 1 && channels == 4)) {
                    ASSERT_NE(vector, scalar);
                }
                for (const auto& [width, height] : sizes)
                    for (std::size_t count = 1; count <= 67; count += count < 20 ? 1 : 9) {
                        const auto bytes = static_cast<std::size_t>(channels);
                        const std::size_t skew = random() % 32;
                        test::GuardedBytes picture(static_cast<std::size_t>(width * height) * bytes,
                                                   skew);
                        picture.fill(random);
                        const SampleSource source{picture.data(),
                                                  width,
                                                  height,
                                                  std::ptrdiff_t{width} * channels,
                                                  {1, 2, 3, 4}};
                        std::vector<std::int32_t> x(count);
                        std::vector<std::int32_t> y(count);
                        for (std::size_t n = 0; n < count; ++n) {
                            x[n] = randomPlace(random, width);
                            y[n] = randomPlace(random, height);
                        }
                        test::GuardedBytes expected(count * bytes, 0);
                        test::GuardedBytes got(count * bytes, random() % 32);
                        scalar(source, x.data(), y.data(), count, expected.data());
                        vector(source, x.data(), y.data(), count, got.data());
                        const VectorLevel form = lastKernelForm();
                        if (vector != scalar) {
                            ASSERT_NE(form, VectorLevel::Scalar);
                        }
                        ASSERT_EQ(got.bytes(), expected.bytes())
                            << vectorLevelName(level) << " " << modeNames[mode] << " channels "
                            << channels << " size " << width << " x " << height << " count "
                            << count << " skew " << skew;
                        ASSERT_TRUE(got.guardsIntact());
                    }
            }
}

struct Oracle {
    const SampleSource& source;
    std::size_t channels;

    [[nodiscard]] double at(std::int32_t x, std::int32_t y, std::size_t channel) const {
        const auto column = std::clamp(x, 0, source.width - 1);
        const auto row = std::clamp(y, 0, source.height - 1);
        return source.pixels[row * source.rowBytes +
                             static_cast<std::ptrdiff_t>(
                                 static_cast<std::size_t>(column) * channels + channel)];
    }
    // Weights by the steps of the samplers, in double.
    [[nodiscard]] double mix(std::int32_t x, std::int32_t y, std::size_t channel,
                             bool cubic) const {
        const double fx = ((x >> 8) & 0xFF) / 256.0;
        const double fy = ((y >> 8) & 0xFF) / 256.0;
        double sum = 0.0;
        for (int j = -1; j <= 2; ++j)
            for (int i = -1; i <= 2; ++i) {
                const auto weight = [&](double d) {
                    return cubic ? cubicKernel(d) : std::max(0.0, 1.0 - std::abs(d));
                };
                sum += weight(i - fx) * weight(j - fy) * at((x >> 16) + i, (y >> 16) + j, channel);
            }
        return sum;
    }
};

TEST(SamplingKernels, ScalarFormsFollowTheDoubleFormulas) {
    test::Random random(22);
    double cubicError = 0.0;
    double cubicBias = 0.0;
    int samples = 0;
    for (int round = 0; round < 4000; ++round) {
        const std::size_t channels = round % 2 ? 4 : 1;
        test::GuardedBytes picture(9 * 7 * channels, 0);
        picture.fill(random);
        const SampleSource source{
            picture.data(), 9, 7, static_cast<std::ptrdiff_t>(9 * channels), {}};
        const Oracle oracle{source, channels};
        const std::int32_t x = randomPlace(random, 9);
        const std::int32_t y = randomPlace(random, 7);
        std::uint8_t out[4];
        const int kind = static_cast<int>(channels);
        kernelOf(VectorLevel::Scalar, 1, kind)(source, &x, &y, 1, out);
        for (std::size_t c = 0; c < channels; ++c)
            ASSERT_EQ(out[c], static_cast<int>(std::floor(oracle.mix(x, y, c, false) + 1e-9)));
        kernelOf(VectorLevel::Scalar, 2, kind)(source, &x, &y, 1, out);
        for (std::size_t c = 0; c < channels; ++c) {
            const double exact = std::clamp(oracle.mix(x, y, c, true), 0.0, 255.0);
            cubicError = std::max(cubicError, std::abs(out[c] - exact));
            cubicBias += out[c] - exact;
            ++samples;
        }
    }
    // Half a level of rounding and what the 6 bits between the passes cut off.
    EXPECT_LT(cubicError, 0.62);
    EXPECT_LT(std::abs(cubicBias / samples), 0.02);
}

TEST(SamplingKernels, ConstantPicturesStayConstant) {
    for (int value = 0; value < 256; ++value) {
        const std::vector<std::uint8_t> pixels(8 * 8, static_cast<std::uint8_t>(value));
        const SampleSource source{pixels.data(), 8, 8, 8, {}};
        for (int step = 0; step < 65536; step += 251) {
            const std::int32_t x = 3 * 65536 + step;
            const std::int32_t y = 2 * 65536 + (step * 7) % 65536;
            for (int mode = 0; mode < 3; ++mode) {
                std::uint8_t out = 0;
                kernelOf(VectorLevel::Scalar, mode, 1)(source, &x, &y, 1, &out);
                ASSERT_EQ(out, value) << modeNames[mode] << " step " << step;
            }
        }
    }
}

TEST(SamplingKernels, NearestOutsideTakesTheFillPixel) {
    const std::uint8_t pixels[4] = {9, 9, 9, 9};
    const SampleSource source{pixels, 1, 1, 4, {1, 2, 3, 4}};
    const std::int32_t x[3] = {-1, 65535, 65536};
    const std::int32_t y[3] = {0, 0, 0};
    std::uint8_t out[12];
    kernelOf(VectorLevel::Scalar, 0, 4)(source, x, y, 3, out);
    EXPECT_EQ(std::vector<std::uint8_t>(out, out + 12),
              (std::vector<std::uint8_t>{1, 2, 3, 4, 9, 9, 9, 9, 1, 2, 3, 4}));
}

TEST(SamplingWeights, EachStepSumsToOneAndFollowsTheKernel) {
    const SamplingWeights& weights = samplingWeights();
    for (int step = 0; step < 256; ++step) {
        int sum = 0;
        for (int k = 0; k < 4; ++k) {
            const int weight = weights.four[step][k];
            sum += weight;
            EXPECT_NEAR(weight, -32768.0 * cubicKernel(k - 1 - step / 256.0), 2.0) << step;
            if (step) {
                EXPECT_NEAR(weight, weights.four[256 - step][3 - k], 2) << step;
            }
        }
        EXPECT_EQ(sum, -32768) << step;
    }
}

TEST(FixedPoint, WholePartsAreExactAndBoundsHold) {
    EXPECT_EQ(toFixed(2047.0f), 2047 * 65536);
    EXPECT_EQ(toFixed(0.5f), 32767);
    EXPECT_EQ(toFixed(-0.5f), -65536 + 32767);
    EXPECT_EQ(toFixed(std::nanf("")), 0);
    EXPECT_EQ(toFixed(-1e30f), -32768 * 65536);
    EXPECT_EQ(toFixed(1e30f) >> 16, 32767);
    for (float place = -100.0f; place < 100.0f; place += 0.37f)
        EXPECT_NEAR(static_cast<double>(fromFixed(toFixed(place))), static_cast<double>(place),
                    3e-5);
}

}  // namespace
}  // namespace brushwork
