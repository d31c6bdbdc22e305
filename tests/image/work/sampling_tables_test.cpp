#include "image/work/sampling_tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "image/filter/kernel_recipe.h"
#include "image/work/sampling_weights.h"

namespace brushwork {
namespace {

constexpr SampleMode modes[3] = {SampleMode::Nearest, SampleMode::Bilinear, SampleMode::Bicubic};

struct Picture {
    std::int32_t width, height, channels;
    test::GuardedBytes bytes;

    Picture(std::int32_t w, std::int32_t h, std::int32_t c, test::Random& random,
            std::size_t skew = 0)
        : width(w), height(h), channels(c), bytes(static_cast<std::size_t>(w * h * c), skew) {
        bytes.fill(random);
    }
    [[nodiscard]] SampleSource view() {
        return {bytes.data(), width, height, std::ptrdiff_t{width} * channels, {}};
    }
    [[nodiscard]] double at(std::int32_t x, std::int32_t y, int channel) {
        const auto column = std::clamp(x, 0, width - 1);
        const auto row = std::clamp(y, 0, height - 1);
        return bytes.data()[(row * width + column) * channels + channel];
    }
};

// One value of the scaled picture in double, from the positions alone.
double exactValue(Picture& picture, SampleMode modeX, SampleMode modeY, float scaleX, float scaleY,
                  std::int32_t x, std::int32_t y, int channel) {
    const auto weight = [](SampleMode mode, double at, double position) {
        if (mode == SampleMode::Nearest) return std::floor(position) == at ? 1.0 : 0.0;
        const double steps = std::floor((position - 0.5) * 256.0 + 0.5) / 256.0;
        const double distance = std::abs(at - steps);
        return mode == SampleMode::Bicubic ? cubicKernel(distance) : std::max(0.0, 1.0 - distance);
    };
    const double px = static_cast<double>((static_cast<float>(x) + 0.5f) / scaleX);
    const double py = static_cast<double>((static_cast<float>(y) + 0.5f) / scaleY);
    double sum = 0.0;
    const auto left = static_cast<std::int32_t>(std::floor(px));
    const auto bottom = static_cast<std::int32_t>(std::floor(py));
    for (std::int32_t j = bottom - 3; j <= bottom + 3; ++j)
        for (std::int32_t i = left - 3; i <= left + 3; ++i)
            sum += weight(modeX, i, px) * weight(modeY, j, py) * picture.at(i, j, channel);
    return std::clamp(sum, 0.0, 255.0);
}

TEST(SamplingTables, EveryModePairFollowsTheDoubleFormula) {
    test::Random random(31);
    for (const int channels : {1, 4})
        for (const SampleMode modeX : modes)
            for (const SampleMode modeY : modes)
                for (const auto& [scaleX, scaleY] :
                     {std::pair{1.0f, 1.0f}, {0.37f, 0.5f}, {2.5f, 0.21f}, {3.0f, 1.7f}}) {
                    Picture picture(23, 19, channels, random);
                    SamplingTables tables;
                    tables.setScale(scaleX, scaleY);
                    tables.setModes(modeX, modeY);
                    const std::int32_t w = SamplingTables::scaledSize(23, scaleX);
                    const std::int32_t h = SamplingTables::scaledSize(19, scaleY);
                    std::vector<std::uint8_t> out(static_cast<std::size_t>(w * h * channels));
                    ASSERT_TRUE(tables.read(picture.view(), channels, {0, 0, w, h},
                                            {out.data(), w, h, w * channels, 0, 0}));
                    EXPECT_FALSE(tables.dirty());
                    // Bilinear pairs cut off; where an axis is bicubic, results are rounded.
                    const bool cubic = modeX == SampleMode::Bicubic || modeY == SampleMode::Bicubic;
                    for (std::int32_t y = 0; y < h; ++y)
                        for (std::int32_t x = 0; x < w; ++x)
                            for (int c = 0; c < channels; ++c) {
                                const double exact =
                                    exactValue(picture, modeX, modeY, scaleX, scaleY, x, y, c);
                                const int got =
                                    out[static_cast<std::size_t>((y * w + x) * channels + c)];
                                if (cubic)
                                    ASSERT_NEAR(got, exact, 0.6)
                                        << int(modeX) << int(modeY) << " at " << x << "," << y;
                                else
                                    ASSERT_EQ(got, static_cast<int>(exact + 1e-9))
                                        << int(modeX) << int(modeY) << " at " << x << "," << y;
                            }
                }
}

TEST(SamplingTables, ScaleOneIsTheIdentity) {
    test::Random random(32);
    for (const int channels : {1, 4})
        for (const SampleMode mode : modes) {
            Picture picture(31, 17, channels, random);
            SamplingTables tables;
            tables.setModes(mode, mode);
            std::vector<std::uint8_t> out(picture.bytes.size());
            ASSERT_TRUE(tables.read(picture.view(), channels, {0, 0, 31, 17},
                                    {out.data(), 31, 17, 31 * channels, 0, 0}));
            EXPECT_EQ(out, picture.bytes.bytes()) << int(mode);
        }
}

TEST(SamplingTables, VectorPassesEqualTheScalarOnes) {
    test::Random random(33);
    for (const VectorLevel level : test::vectorLevels())
        for (int round = 0; round < 500; ++round) {
            const std::int32_t channels = random() % 2 ? 4 : 1;
            const auto w = static_cast<std::int32_t>(random() % 70 + 1);
            const auto h = static_cast<std::int32_t>(random() % 12 + 1);
            Picture picture(w, h, channels, random, random() % 32);
            const float scaleX = std::exp2(static_cast<float>(random() % 1000) / 200.0f - 2.5f);
            const float scaleY = std::exp2(static_cast<float>(random() % 1000) / 200.0f - 2.5f);
            const SampleMode modeX = modes[random() % 3];
            const SampleMode modeY = modes[random() % 3];
            const std::int32_t sw = SamplingTables::scaledSize(w, scaleX);
            const std::int32_t sh = SamplingTables::scaledSize(h, scaleY);
            if (sw < 1 || sh < 1) continue;
            std::vector<std::uint8_t> results[2];
            for (const int k : {0, 1}) {
                const test::AtLevel at(k ? level : VectorLevel::Scalar);
                test::GuardedBytes out(static_cast<std::size_t>(sw * sh * channels),
                                       k ? random() % 32 : 0);
                SamplingTables tables;
                tables.setScale(scaleX, scaleY);
                tables.setModes(modeX, modeY);
                ASSERT_TRUE(tables.read(picture.view(), channels, {0, 0, sw, sh},
                                        {out.data(), sw, sh, std::ptrdiff_t{sw} * channels, 0, 0}));
                if (k && modeX == SampleMode::Bicubic && modeY == SampleMode::Bicubic) {
                    ASSERT_EQ(lastKernelForm(), level);
                }
                results[k] = out.bytes();
                ASSERT_TRUE(out.guardsIntact());
            }
            ASSERT_EQ(results[1], results[0])
                << vectorLevelName(level) << " round " << round << " size " << w << " x " << h
                << " channels " << channels << " scale " << scaleX << " " << scaleY << " modes "
                << int(modeX) << int(modeY);
        }
}

// A part of the scaled picture, moved and cut, has the bytes of the whole one; nothing else is
// written.
TEST(SamplingTables, BoxesAndOffsetsPickTheSamePixels) {
    test::Random random(34);
    Picture picture(40, 30, 4, random);
    const float scale = 1.3f;
    const std::int32_t w = SamplingTables::scaledSize(40, scale);
    const std::int32_t h = SamplingTables::scaledSize(30, scale);
    for (const SampleMode mode : modes) {
        SamplingTables tables;
        tables.setScale(scale, scale);
        tables.setModes(mode, mode);
        std::vector<std::uint8_t> whole(static_cast<std::size_t>(w * h * 4));
        ASSERT_TRUE(
            tables.read(picture.view(), 4, {0, 0, w, h}, {whole.data(), w, h, w * 4, 0, 0}));
        for (int round = 0; round < 200; ++round) {
            const auto draw = [&](int low, int high) {
                return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
            };
            const Rect<std::int32_t> box{draw(-5, w), draw(-5, h), draw(0, w), draw(0, h)};
            const ScaledTarget shape{nullptr, 20, 15, 20 * 4 + 12, draw(-9, 22), draw(-9, 17)};
            std::vector<std::uint8_t> out(static_cast<std::size_t>(shape.rowBytes * 15), 0x5A);
            ScaledTarget target = shape;
            target.pixels = out.data();
            ASSERT_TRUE(tables.read(picture.view(), 4, box, target));
            for (std::int32_t y = 0; y < 15; ++y)
                for (std::int32_t x = 0; x < 23; ++x) {
                    const std::int32_t sx = x - shape.offsetX + box.x;
                    const std::int32_t sy = y - shape.offsetY + box.y;
                    const bool written = x < 20 && sx >= 0 && sx < w && sy >= 0 && sy < h &&
                                         sx >= box.x && sx < box.x + box.w && sy >= box.y &&
                                         sy < box.y + box.h;
                    for (int c = 0; c < 4; ++c)
                        ASSERT_EQ(
                            out[static_cast<std::size_t>(y * shape.rowBytes + x * 4 + c)],
                            written ? whole[static_cast<std::size_t>((sy * w + sx) * 4 + c)] : 0x5A)
                            << x << "," << y;
                }
        }
    }
}

TEST(SamplingTables, ScalesAreComparedExactly) {
    SamplingTables tables;
    std::uint8_t pixel[4] = {};
    const SampleSource source{pixel, 1, 1, 4, {}};
    std::uint8_t out[4];
    const ScaledTarget target{out, 1, 1, 4, 0, 0};
    tables.setScale(0.5f, 0.5f);
    ASSERT_TRUE(tables.read(source, 4, {0, 0, 1, 1}, target));
    EXPECT_FALSE(tables.dirty());
    tables.setScale(0.5f, 0.5f);
    EXPECT_FALSE(tables.dirty());
    tables.setScale(0.5f, std::nextafter(0.5f, 1.0f));
    EXPECT_TRUE(tables.dirty());
}

TEST(SamplingTables, RefusesWhatItCannotRead) {
    std::uint8_t pixel[4] = {};
    const SampleSource source{pixel, 1, 1, 4, {}};
    std::uint8_t out[4];
    const ScaledTarget target{out, 1, 1, 4, 0, 0};
    SamplingTables tables;
    EXPECT_FALSE(tables.read(source, 3, {0, 0, 1, 1}, target));
    EXPECT_FALSE(tables.read({}, 4, {0, 0, 1, 1}, target));
    for (const float scale : {0.0f, -1.0f, std::nanf(""), std::numeric_limits<float>::infinity()}) {
        tables.setScale(1.0f, scale);
        EXPECT_FALSE(tables.read(source, 4, {0, 0, 1, 1}, target)) << scale;
    }
    tables.setScale(1e30f, 1e30f);
    EXPECT_TRUE(tables.read(source, 4, {2000000000, 2000000000, 1, 1}, target));
    tables.setScale(1.0f, 1.0f);
    tables.setModes(static_cast<SampleMode>(3), SampleMode::Nearest);
    EXPECT_FALSE(tables.read(source, 4, {0, 0, 1, 1}, target));
}

}  // namespace
}  // namespace brushwork
