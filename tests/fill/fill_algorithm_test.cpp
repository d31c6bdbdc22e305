#include "fill/fill_algorithm.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <set>
#include <vector>

#include "fill/fill_noise.h"
#include "fill/gradient_rows.h"

namespace brushwork {
namespace {

using Words = std::vector<std::uint32_t>;

constexpr std::uint32_t untouched = 0x11223344;

GradientStops blackToWhite() {
    GradientStops stops;
    stops.add(0.0f, {0.0f, 0.0f, 0.0f, 1.0f});
    stops.add(1.0f, {1.0f, 1.0f, 1.0f, 1.0f});
    return stops;
}

struct Canvas {
    Canvas(std::int32_t w, std::int32_t h)
        : width(w), words(static_cast<std::size_t>(w * h), untouched) {
        image = Ref<ilMemoryImg>(
            new ilMemoryImg(words.data(), w, h, 1, 4, TypeUChar, OrderInterleaved));
    }
    bool fill(const FillParameters& parameters) {
        FillAlgorithm algorithm;
        algorithm.setup(&parameters, image);
        return algorithm.run();
    }
    [[nodiscard]] std::uint32_t at(std::int32_t x, std::int32_t y) const {
        return words[static_cast<std::size_t>(y * width + x)];
    }
    std::int32_t width;
    Words words;
    Ref<ilMemoryImg> image;
};

FillParameters gradient(FillKind kind, const GradientStops& stops, std::int32_t right,
                        std::int32_t bottom) {
    FillParameters parameters;
    parameters.kind = kind;
    parameters.stops = &stops;
    parameters.right = right;
    parameters.bottom = bottom;
    return parameters;
}

TEST(GradientStops, BetweenBesideAndAtTheStops) {
    GradientStops stops;
    EXPECT_EQ(stops.at(0.5f), (GradientStops::Color{}));
    stops.add(0.75f, {0.0f, 0.0f, 1.0f, 1.0f});
    stops.add(0.25f, {1.0f, 0.0f, 0.0f, 0.0f});
    stops.add(0.25f, {0.0f, 1.0f, 0.0f, 0.5f});
    EXPECT_EQ(stops.at(0.0f), (GradientStops::Color{}));
    EXPECT_EQ(stops.at(0.25f), (GradientStops::Color{0.0f, 0.5f, 0.0f, 0.5f}));
    EXPECT_EQ(stops.at(0.5f), (GradientStops::Color{0.0f, 0.25f, 0.5f, 0.75f}));
    EXPECT_EQ(stops.at(2.0f), (GradientStops::Color{0.0f, 0.0f, 1.0f, 1.0f}));
    stops.add(std::numeric_limits<float>::quiet_NaN(), {7.0f, -1.0f, 0.0f, 1.0f});
    EXPECT_EQ(stops.at(0.0f), (GradientStops::Color{1.0f, 0.0f, 0.0f, 1.0f}));
}

TEST(GradientTable, ExactBytes) {
    GradientStops stops;
    stops.add(0.0f, {1.0f, 0.0f, 0.25f, 1.0f});
    stops.add(1.0f, {0.0f, 1.0f, 0.25f, 0.0f});
    Words plain(8192);
    std::vector<DeepColor> deep(8192);
    const GradientEnds ends = fillGradientTable(stops, std::span(plain));
    EXPECT_EQ(ends.first, 0xFF4000FFu);
    EXPECT_EQ(ends.last, 0u);
    EXPECT_EQ(fillGradientTable(stops, std::span(deep)).first, ends.first);
    for (std::uint32_t i = 0; i < 8192; ++i) {
        // All in eight-thousandths, which neither float nor integer rounds: alpha is 1 - t, red
        // premultiplied 1 - t, blue a quarter of it.
        const std::uint32_t rest = 8192 - i;
        const auto byte = [&](std::uint32_t over) {
            return (rest * 255 * 2 + 8192 * over) / (8192 * over * 2);
        };
        const std::uint32_t word = byte(1) | byte(4) << 16 | byte(1) << 24;
        ASSERT_EQ(plain[i], word) << i;
        const auto wide = [&](std::uint64_t over) {
            return static_cast<std::uint16_t>(rest * std::uint64_t{65535} / (8192 * over));
        };
        ASSERT_EQ(deep[i], (DeepColor{wide(1), wide(1), 0, wide(4)})) << i;
    }
}

TEST(FillNoise, FollowsTheTwoGenerators) {
    std::uint64_t a = 0, b = 0;
    FillNoise noise;
    for (int n = 0; n < 1000; ++n) {
        a = ((a + 1) & 0xFFFF) * 36969 + ((a + 1) >> 16);
        b = ((b + 1) & 0xFFFF) * 18000 + ((b + 1) >> 16);
        ASSERT_EQ(noise.next(), static_cast<std::uint32_t>(a * 65536 + b)) << n;
    }
    restartSpreadNumbers();
    const int first[] = {128, 64, 192, 32, 160};
    for (const int number : first) EXPECT_EQ(nextSpreadNumber(), number);
    std::set<int> all;
    for (int n = 0; n < 256; ++n) all.insert(nextSpreadNumber());
    EXPECT_EQ(all.size(), 256u);
}

TEST(FillAlgorithm, SolidFillsTheWholeSize) {
    Canvas canvas(9, 5);
    FillParameters parameters;
    parameters.color = 0x80402010;
    parameters.width = 9;
    parameters.height = 4;
    EXPECT_TRUE(canvas.fill(parameters));
    EXPECT_EQ(canvas.at(0, 0), 0x80402010u);
    EXPECT_EQ(canvas.at(8, 3), 0x80402010u);
    EXPECT_EQ(canvas.at(0, 4), untouched);
}

// Against t in exact arithmetic: a pixel may have the entry beside it where float decides.
TEST(FillAlgorithm, GradientsLieWhereTheyShould) {
    const GradientStops stops = blackToWhite();
    Words table(8192);
    fillGradientTable(stops, std::span(table));
    std::mt19937 random(3);
    for (int round = 0; round < 40; ++round) {
        Canvas canvas(61, 47);
        auto parameters = gradient(round % 2 ? FillKind::Radial : FillKind::Linear, stops, 50, 40);
        parameters.left = 7;
        parameters.top = 3;
        const auto coordinate = [&] { return static_cast<float>(random() % 1000) / 10.0f - 20.0f; };
        parameters.startX = coordinate();
        parameters.startY = coordinate();
        parameters.endX = coordinate() + 200.0f;
        parameters.endY = coordinate();
        ASSERT_TRUE(canvas.fill(parameters));
        const double dx = double{parameters.endX} - parameters.startX;
        const double dy = double{parameters.endY} - parameters.startY;
        for (std::int32_t y = 0; y < 47; ++y)
            for (std::int32_t x = 0; x < 61; ++x) {
                if (x < 7 || x >= 50 || y < 3 || y >= 40) {
                    ASSERT_EQ(canvas.at(x, y), untouched);
                    continue;
                }
                const double px = x - double{parameters.startX}, py = y - double{parameters.startY};
                const double square = dx * dx + dy * dy;
                const double t = round % 2 ? std::sqrt((px * px + py * py) / square)
                                           : (px * dx + py * dy) / square;
                const auto entry = [&](double index) {
                    return table[static_cast<std::size_t>(std::clamp(index, 0.0, 8191.0))];
                };
                const std::uint32_t got = canvas.at(x, y);
                ASSERT_TRUE(got == entry(8192 * t - 0.05) || got == entry(8192 * t + 0.05))
                    << round << ": " << x << ' ' << y;
            }
    }
}

TEST(FillAlgorithm, DegeneratePointsAndFarPlaces) {
    const GradientStops stops = blackToWhite();
    const float wild[] = {5.0f,
                          -1e30f,
                          1e30f,
                          1e-30f,
                          std::numeric_limits<float>::infinity(),
                          std::numeric_limits<float>::quiet_NaN()};
    for (const bool dither : {false, true}) {
        // No distance: not a number everywhere, so the first colour.
        Canvas canvas(16, 16);
        auto parameters = gradient(FillKind::Linear, stops, 16, 16);
        parameters.startX = parameters.endX = parameters.startY = parameters.endY = 5.0f;
        parameters.dither = dither;
        ASSERT_TRUE(canvas.fill(parameters));
        for (const std::uint32_t word : canvas.words) ASSERT_EQ(word, 0xFF000000u);
        // Infinite but for 0 times infinity.
        parameters.kind = FillKind::Radial;
        ASSERT_TRUE(canvas.fill(parameters));
        for (std::int32_t y = 0; y < 16; ++y)
            for (std::int32_t x = 0; x < 16; ++x)
                ASSERT_EQ(canvas.at(x, y), x == 5 || y == 5 ? 0xFF000000u : 0xFFFFFFFFu);

        // Any points at all lead to entries of the table; the sanitizers watch.
        for (const float a : wild)
            for (const float b : wild)
                for (const auto kind : {FillKind::Linear, FillKind::Radial}) {
                    parameters.kind = kind;
                    parameters.startX = a;
                    parameters.endX = b;
                    parameters.startY = b;
                    parameters.endY = -a;
                    ASSERT_TRUE(canvas.fill(parameters));
                    for (const std::uint32_t word : canvas.words) ASSERT_EQ(word >> 24, 255u);
                }
    }
    // Before the start and behind the end.
    Canvas canvas(100, 1);
    auto parameters = gradient(FillKind::Linear, stops, 100, 1);
    parameters.startX = 20.0f;
    parameters.endX = 80.0f;
    ASSERT_TRUE(canvas.fill(parameters));
    EXPECT_EQ(canvas.at(0, 0), 0xFF000000u);
    EXPECT_EQ(canvas.at(19, 0), 0xFF000000u);
    EXPECT_EQ(canvas.at(50, 0), 0xFF808080u);
    EXPECT_EQ(canvas.at(80, 0), 0xFFFFFFFFu);
    EXPECT_EQ(canvas.at(99, 0), 0xFFFFFFFFu);
}

TEST(FillAlgorithm, RectanglesAreCutToTheImage) {
    const GradientStops stops = blackToWhite();
    Canvas canvas(10, 10);
    auto parameters = gradient(FillKind::Linear, stops, 2147483647, 2147483647);
    parameters.left = parameters.top = -2147483647 - 1;
    parameters.endX = 9.0f;
    EXPECT_TRUE(canvas.fill(parameters));
    for (const std::uint32_t word : canvas.words) EXPECT_NE(word, untouched);

    Canvas other(10, 10);
    parameters.left = 4;
    parameters.right = 4;
    EXPECT_TRUE(other.fill(parameters));
    parameters.right = -5;
    EXPECT_TRUE(other.fill(parameters));
    for (const std::uint32_t word : other.words) EXPECT_EQ(word, untouched);
}

TEST(FillAlgorithm, RefusesWhatItCannotPaint) {
    const GradientStops stops = blackToWhite();
    Canvas canvas(4, 4);
    auto parameters = gradient(FillKind::Linear, stops, 4, 4);
    parameters.stops = nullptr;
    EXPECT_FALSE(canvas.fill(parameters));
    parameters.kind = static_cast<FillKind>(3);
    parameters.stops = &stops;
    EXPECT_FALSE(canvas.fill(parameters));
    EXPECT_FALSE(FillAlgorithm().run());
    FillAlgorithm algorithm;
    parameters.kind = FillKind::Linear;
    algorithm.setup(&parameters, Ref<ilMemoryImg>(new ilMemoryImg(canvas.words.data(), 4, 4, 1, 1,
                                                                  TypeUChar, OrderInterleaved)));
    EXPECT_FALSE(algorithm.run());
    for (const std::uint32_t word : canvas.words) EXPECT_EQ(word, untouched);
}

TEST(FillDither, OnePixel) {
    EXPECT_EQ(ditheredPixel({65535, 65535, 65408, 0}, 0x00FF0000), 0xFF00FFFFu);
    EXPECT_EQ(ditheredPixel({300, 300, 129, 128}, 0xFF00FFFF), 0x01000001u);
    EXPECT_EQ(ditheredPixel({0, 128, 0, 0}, 0x00FF7F80), 0u);
    EXPECT_EQ(ditheredPixel({0, 128, 129, 129}, 0x00FE0000), 0x00010100u);
}

// The noise goes on from pixel to pixel and from fill to fill; end colours draw none.
TEST(FillDither, FollowsTheNoise) {
    const GradientStops stops = blackToWhite();
    std::vector<DeepColor> table(8192);
    const GradientEnds ends = fillGradientTable(stops, std::span(table));
    FillNoise noise = FillNoise::current();
    auto parameters = gradient(FillKind::Linear, stops, 300, 2);
    parameters.startX = 30.5f;
    parameters.endX = 250.0f;
    parameters.dither = true;
    for (int round = 0; round < 3; ++round) {
        Canvas canvas(300, 2);
        ASSERT_TRUE(canvas.fill(parameters));
        const float step = 219.5f / (219.5f * 219.5f);
        for (std::int32_t y = 0; y < 2; ++y) {
            float t = -30.5f * step;
            for (std::int32_t x = 0; x < 300; ++x, t += step) {
                const float place = 8192.0f * t;
                std::uint32_t expected = ends.first;
                if (place >= 8191.0f)
                    expected = ends.last;
                else if (place >= 1.0f)
                    expected = ditheredPixel(table[static_cast<std::size_t>(place)], noise.next());
                ASSERT_EQ(canvas.at(x, y), expected) << round << ": " << x << ' ' << y;
            }
        }
    }
}

// A ramp so slow that plain steps are many pixels wide: with noise, the mean of every small piece
// is the gradient's to a fraction of a step, and pieces inside a step aren't flat.
TEST(FillDither, HasNoBands) {
    GradientStops stops;
    stops.add(0.0f, {0.20f, 0.20f, 0.20f, 1.0f});
    stops.add(1.0f, {0.28f, 0.28f, 0.28f, 1.0f});
    auto parameters = gradient(FillKind::Linear, stops, 2048, 64);
    parameters.endX = 2048.0f;
    double worst[2] = {};
    std::size_t flat[2] = {};
    for (const bool dither : {false, true}) {
        Canvas canvas(2048, 64);
        parameters.dither = dither;
        ASSERT_TRUE(canvas.fill(parameters));
        for (std::int32_t x0 = 16; x0 < 2032; x0 += 16) {
            double sum = 0.0, ideal = 0.0;
            std::set<std::uint32_t> seen;
            for (std::int32_t y = 0; y < 64; ++y)
                for (std::int32_t x = x0; x < x0 + 16; ++x) {
                    sum += canvas.at(x, y) & 0xFF;
                    const double share = 0.20 + 0.08 * x / 2048.0;
                    // With noise 16 bits are cut to their high byte, half a step less in the mean.
                    ideal += dither ? share * 65535.0 / 256.0 - 0.5 : share * 255.0;
                    seen.insert(canvas.at(x, y) & 0xFF);
                }
            worst[dither] = std::max(worst[dither], std::fabs(sum - ideal) / 1024.0);
            flat[dither] += seen.size() == 1;
        }
    }
    EXPECT_GT(worst[0], 0.4);
    EXPECT_LT(worst[1], 0.08);
    EXPECT_GT(flat[0], 60u);
    EXPECT_EQ(flat[1], 0u);
}

}  // namespace
}  // namespace brushwork
