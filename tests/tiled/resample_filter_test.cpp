// Filters beside formulas written out in long hand, over pixels that are looked up one by one.
#include "tiled/resample_filter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "support/test_seed.h"
#include "tiled/bicubic_filter.h"
#include "tiled/filter_factory.h"
#include "tiled/lanczos_filter.h"
#include "tiled/solid_filter.h"
#include "tiled/tile_regions.h"
#include "tiled/tiled_model.h"

namespace brushwork {
namespace {

using test::Random;
using znTiledImage::Image;
using znTiledImage::PixelRect;

constexpr PixelRect area{-140, -10, 300, 170};

// The source, and its pixels as an edge mode sees them: 0 where it refuses.
struct Source {
    Ref<Image> image;
    std::vector<std::uint8_t> pixels;
    std::int32_t channels;

    Source(Random& random, std::int32_t count)
        : image(znTiledImage::makeImage(count)), channels(count) {
        pixels.resize(static_cast<std::size_t>(area.w * area.h * count));
        for (std::uint8_t& byte : pixels) {
            const std::uint32_t draw = random();
            byte = draw % 4 == 0 ? (draw & 16 ? 255 : 0) : static_cast<std::uint8_t>(draw >> 8);
        }
        EXPECT_TRUE(image->setRect(area));
        EXPECT_TRUE(
            writeRect(*image, area, pixels.data(), static_cast<std::size_t>(area.w * count)));
    }
    [[nodiscard]] double at(std::int32_t mode, std::int32_t x, std::int32_t y,
                            std::int32_t c) const {
        std::int32_t px = x - area.x;
        std::int32_t py = y - area.y;
        if (mode == EdgeOutside && (px < 0 || py < 0 || px >= area.w || py >= area.h)) return 0;
        if (mode == EdgeClamp) {
            px = px < 0 ? 0 : px >= area.w ? area.w - 1 : px;
            py = py < 0 ? 0 : py >= area.h ? area.h - 1 : py;
        }
        while (px < 0) px += area.w;
        while (py < 0) py += area.h;
        px %= area.w;
        py %= area.h;
        return pixels[static_cast<std::size_t>((py * area.w + px) * channels + c)];
    }
};

double kernel(double t) {
    const double a = -0.75;
    const double d = std::abs(t);
    if (d <= 1) return (a + 2) * std::pow(d, 3) - (a + 3) * d * d + 1;
    if (d <= 2) return a * std::pow(d, 3) - 5 * a * d * d + 8 * a * d - 4 * a;
    return 0;
}

// The exact value of a kernel sum, before it is rounded.
double kernelSum(const Source& source, std::int32_t mode, double x, double y, std::int32_t c,
                 int side, double scale) {
    const int ix = static_cast<int>(std::floor(x - 0.5));
    const int iy = static_cast<int>(std::floor(y - 0.5));
    const int first = 1 - (side + 1) / 2;
    double sum = 0;
    for (int j = 0; j < side; ++j)
        for (int i = 0; i < side; ++i)
            sum += source.at(mode, ix + first + i, iy + first + j, c) *
                   kernel((ix + first + i + 0.5 - x) * scale) *
                   kernel((iy + first + j + 0.5 - y) * scale);
    return sum;
}

int bilinear(const Source& source, std::int32_t mode, double x, double y, std::int32_t c) {
    const int ix = static_cast<int>(std::floor(x + 0.5));
    const int iy = static_cast<int>(std::floor(y + 0.5));
    const int fx = static_cast<int>((x - ix) * 255) & 255;
    const int fy = static_cast<int>((y - iy) * 255) & 255;
    const auto p = [&](int dx, int dy) {
        return static_cast<int>(source.at(mode, ix + dx, iy + dy, c));
    };
    return ((p(-1, -1) * (256 - fx) + p(0, -1) * fx) * (256 - fy) +
            (p(-1, 0) * (256 - fx) + p(0, 0) * fx) * fy) >>
           16;
}

double drawPlace(Random& random, std::int32_t start, std::int32_t size) {
    const double place = start - 8 + (size + 16) * (static_cast<double>(random()) / 4294967295.0);
    switch (random() % 4) {
        case 0: return std::floor(place) + 0.5;
        case 1: return std::floor(place * 4) / 4;
        default: return place;
    }
}

TEST(ResampleFilters, AgreeWithTheirFormulas) {
    const std::uint32_t seed = brushwork::test::testSeed();
    std::printf("seed %u\n", seed);
    Random random(seed);
    for (const std::int32_t channels : {1, 4}) {
        const Source source(random, channels);
        const auto reader = makePixelReader(*source.image, area);
        for (std::int32_t mode = 0; mode < 3; ++mode) {
            for (std::int32_t type = 0; type < 4; ++type) {
                for (const int side : {4, 5, 8, 11}) {
                    if (side > 4 && type != FilterLanczos) continue;
                    const Ref<ResampleFilter> filter = makeFilter(type, mode);
                    filter->setFootprint(side, side);
                    ASSERT_TRUE(filter->begin(reader.get(), area.x, area.y, area.x + area.w - 1,
                                              area.y + area.h - 1));
                    const double scale = type == FilterLanczos ? 5.0 / (side | 1) : 1.0;
                    for (int n = 0; n < 400; ++n) {
                        const double x = drawPlace(random, area.x, area.w);
                        const double y = drawPlace(random, area.y, area.h);
                        SCOPED_TRACE(testing::Message()
                                     << "seed " << seed << " type " << type << " mode " << mode
                                     << " channels " << channels << " side " << side << " at " << x
                                     << ", " << y);
                        std::uint8_t out[4] = {};
                        if (channels == 1)
                            filter->sample1(out, x, y);
                        else
                            filter->sample4(out, x, y);
                        for (std::int32_t c = 0; c < channels; ++c) {
                            if (type == FilterNearest) {
                                const double expected =
                                    source.at(mode, static_cast<int>(std::floor(x)),
                                              static_cast<int>(std::floor(y)), c);
                                ASSERT_EQ(out[c], static_cast<int>(expected));
                            } else if (type == FilterBilinear) {
                                ASSERT_EQ(out[c], bilinear(source, mode, x, y, c));
                            } else {
                                double sum = kernelSum(source, mode, x, y, c, side, scale);
                                if (channels == 4) sum = sum * scale * scale + 1e-8;
                                const double held = sum < 0 ? 0 : sum > 255 ? 255 : sum;
                                // Rounded, by however the last bits of the sum fell.
                                ASSERT_LE(std::abs(out[c] - held), 0.5 + 1e-9);
                            }
                        }
                    }
                }
            }
        }
    }
}

// One by one, exactly as a row, and half to even.
TEST(ResampleFilters, BicubicRoundsHalfToEven) {
    const Ref<Image> image = znTiledImage::makeImage(1);
    ASSERT_TRUE(image->setRect({0, 0, 8, 8}));
    // At (4, y + 0.5) the weights are -3/32, 19/32, 19/32, -3/32 along x: all exact.
    const auto valueOf = [&](std::uint8_t outer, std::uint8_t inner) {
        std::vector<std::uint8_t> pixels(64, 0);
        for (std::size_t y = 0; y < 8; ++y) {
            pixels[y * 8 + 2] = pixels[y * 8 + 5] = outer;
            pixels[y * 8 + 3] = pixels[y * 8 + 4] = inner;
        }
        EXPECT_TRUE(writeRect(*image, {0, 0, 8, 8}, pixels.data(), 8));
        const auto reader = makePixelReader(*image, {0, 0, 8, 8});
        const Ref<ResampleFilter> filter = makeFilter(FilterBicubic, EdgeClamp);
        EXPECT_TRUE(filter->begin(reader.get(), 0, 0, 7, 7));
        std::uint8_t out = 0;
        filter->sample1(&out, 4, 4.5);
        return out;
    };
    EXPECT_EQ(valueOf(0, 8), 10);   // 9.5
    EXPECT_EQ(valueOf(8, 0), 0);    // -1.5
    EXPECT_EQ(valueOf(8, 16), 18);  // 17.5
    EXPECT_EQ(valueOf(8, 8), 8);
    EXPECT_EQ(valueOf(0, 24), 28);  // 28.5
}

TEST(ResampleFilters, EdgesAndPlacesThatAreNone) {
    std::uint8_t pixels[12] = {10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 110, 120};
    const Ref<Image> image = znTiledImage::makeImage(1);
    ASSERT_TRUE(image->setRect({0, 0, 4, 3}));
    ASSERT_TRUE(writeRect(*image, {0, 0, 4, 3}, pixels, 4));
    const auto reader = makePixelReader(*image, {0, 0, 4, 3});
    const auto sampled = [&](std::int32_t type, std::int32_t mode, double x, double y) {
        const Ref<ResampleFilter> filter = makeFilter(type, mode);
        EXPECT_TRUE(filter->begin(reader.get(), 0, 0, 3, 2));
        std::uint8_t out = 77;
        filter->sample1(&out, x, y);
        return static_cast<int>(out);
    };
    EXPECT_EQ(sampled(FilterNearest, EdgeWrap, 4.5, 0.5), 10);
    EXPECT_EQ(sampled(FilterNearest, EdgeWrap, -0.5, 1.5), 80);
    EXPECT_EQ(sampled(FilterNearest, EdgeClamp, 1e300, 1e300), 120);
    EXPECT_EQ(sampled(FilterNearest, EdgeOutside, -0.001, 0), 0);
    EXPECT_EQ(sampled(FilterBilinear, EdgeOutside, 0, 1), 0);  // all of the left neighbour
    EXPECT_EQ(sampled(FilterBilinear, EdgeOutside, -0.25, 0.99), 37);
    const double odd[] = {std::numeric_limits<double>::quiet_NaN(),
                          std::numeric_limits<double>::infinity(), -1e308};
    for (std::int32_t type = 0; type < 5; ++type)
        for (std::int32_t mode = 0; mode < 3; ++mode)
            for (const double place : odd) sampled(type, mode, place, -place);
}

TEST(ResampleFilters, BeginOnceAndClone) {
    const Ref<Image> image = znTiledImage::makeImage(4);
    ASSERT_TRUE(image->setRect({0, 0, 20, 20}));
    const auto reader = makePixelReader(*image, {0, 0, 20, 20});
    const Ref<ResampleFilter> filter = makeFilter(FilterLanczos, EdgeWrap);
    EXPECT_EQ(filter->footprintW(), 4);
    EXPECT_FALSE(filter->begin(reader.get(), 0, 0, 20, 19));  // one column too many
    EXPECT_FALSE(filter->begin(reader.get(), 5, 0, 4, 19));
    EXPECT_TRUE(filter->begin(reader.get(), 2, 3, 9, 5));
    EXPECT_EQ(filter->rect().width, 8);
    EXPECT_EQ(filter->rect().height, 3);
    EXPECT_FALSE(filter->begin(reader.get(), 0, 0, 19, 19));
    EXPECT_EQ(filter->rect().maxX, 9);
    filter->setFootprint(1, 1);
    EXPECT_EQ(filter->footprintW(), 4);
    EXPECT_EQ(filter->footprintH(), 4);
    filter->setFootprint(9, 6);
    const Ref<ResampleFilter> copy = filter->clone();
    EXPECT_FALSE(copy->isStarted());
    EXPECT_EQ(copy->footprintW(), 9);
    EXPECT_EQ(copy->footprintH(), 6);
    EXPECT_EQ(copy->edgeMode(), &edgeWrap);
    const auto& lanczos = static_cast<LanczosFilter&>(*copy);
    EXPECT_DOUBLE_EQ(lanczos.scaleX(), 5.0 / 9);
    EXPECT_DOUBLE_EQ(lanczos.scaleY(), 5.0 / 7);
    EXPECT_DOUBLE_EQ(lanczos.normaliser(), 25.0 / 63);
    filter->end();
    EXPECT_TRUE(filter->begin(nullptr, 0, 0, 1, 1));
    std::uint8_t out[4] = {9, 9, 9, 9};
    filter->sample4(out, 0.5, 0.5);
    EXPECT_EQ(out[0] | out[1] | out[2] | out[3], 0);
    for (std::int32_t type = 0; type < 5; ++type) EXPECT_EQ(makeFilter(type, 0)->type(), type);
    EXPECT_FALSE(makeFilter(5, 0));
    EXPECT_FALSE(makeFilter(6, 0));
    EXPECT_FALSE(makeFilter(-1, 0));
    EXPECT_FALSE(makeFilter(0, 3));
    makeFilter(FilterSolid, 0)->sample4(out, 0, 0);
    EXPECT_EQ((std::vector<int>{out[0], out[1], out[2], out[3]}),
              (std::vector<int>{0, 255, 0, 255}));
}

}  // namespace
}  // namespace brushwork
