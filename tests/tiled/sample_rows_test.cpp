// Rows sampled by vector forms give the bytes of single samples.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "image/filter/kernel_recipe.h"
#include "support/test_seed.h"
#include "tiled/bilinear_rows.h"
#include "tiled/filter_factory.h"
#include "tiled/resample_filter.h"
#include "tiled/tile_regions.h"

namespace brushwork {
namespace {

using znTiledImage::PixelRect;

constexpr PixelRect area{-150, -20, 400, 300};

Ref<znTiledImage::Image> edgyPicture(test::Random& random) {
    auto image = znTiledImage::makeImage(4);
    EXPECT_TRUE(image->setRect(area));
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(area.w * area.h * 4));
    for (std::uint8_t& byte : pixels) byte = test::edgyByte(random);
    EXPECT_TRUE(writeRect(*image, area, pixels.data(), static_cast<std::size_t>(area.w) * 4));
    const std::uint8_t solid[4] = {128, 0, 255, 1};
    EXPECT_TRUE(fillRect(*image, {0, 0, 128, 128}, solid));
    return image;
}

// Steps whose places fall on exact halves and quarters as well as any.
SampleRow drawRow(test::Random& random, std::int32_t count) {
    static constexpr double steps[] = {0,     1,    -1,      0.5, 0.25, 2.0 / 3,
                                       0.125, 3.75, -0.0001, 9.5, -0.0};
    const auto any = [&] { return static_cast<double>(random() % 65536) / 65536; };
    SampleRow row{area.x - 5 + static_cast<double>(random() % 410),
                  area.y - 5 + static_cast<double>(random() % 310), steps[random() % 11],
                  steps[random() % 11], count};
    if (random() % 2) row.x += any();
    if (random() % 2) row.y += any();
    if (random() % 2) row.dx = any() * 2 - 1;
    if (random() % 4 == 0) row.y += 0.5;
    if (random() % 8 == 0) row.y = area.y + area.h - 1.5;
    // Close to a pixel's centre, where the outer weights are about to be rounded to 0.
    if (random() % 8 == 0) {
        row.y = std::floor(row.y) + 0.5 + 2e-5 + any() * 1e-6;
        row.dy = any() * 1e-8;
    }
    if (random() % 40 == 0) row.x = 1e12;
    if (random() % 40 == 0) row.dy = std::numeric_limits<double>::quiet_NaN();
    if (random() % 40 == 0) row.dx = std::numeric_limits<double>::infinity();
    return row;
}

struct Kind {
    std::int32_t type;
    std::int32_t footprintX, footprintY;
    int rows;
};

TEST(SampleRows, GiveTheBytesOfSingleSamples) {
    const std::uint32_t seed = brushwork::test::testSeed();
    std::printf("seed %u\n", seed);
    test::Random random(seed);
    const auto image = edgyPicture(random);
    const auto reader = makePixelReader(*image, area);
    for (const VectorLevel level : test::vectorLevels()) {
        const test::AtLevel at(level);
        for (std::int32_t mode = 0; mode < 3; ++mode) {
            for (const Kind& kind :
                 {Kind{FilterBilinear, 2, 2, 700}, Kind{FilterBicubic, 4, 4, 700},
                  Kind{FilterLanczos, 4, 4, 60}, Kind{FilterLanczos, 7, 10, 60}}) {
                const Ref<ResampleFilter> filter = makeFilter(kind.type, mode);
                filter->setFootprint(kind.footprintX, kind.footprintY);
                ASSERT_TRUE(filter->begin(reader.get(), area.x + 3, area.y, area.x + area.w - 4,
                                          area.y + area.h - 1));
                int reached = 0;
                for (int step = 0; step < kind.rows; ++step) {
                    const SampleRow row = drawRow(
                        random, static_cast<std::int32_t>(random() % (step % 10 == 0 ? 300 : 40)));
                    const auto size = static_cast<std::size_t>(row.count) * 4;
                    test::GuardedBytes got(size, random() % 16);
                    noteKernelForm(VectorLevel::Scalar);
                    filter->sampleRow4(got.data(), row);
                    reached += lastKernelForm() == level;
                    ASSERT_TRUE(got.guardsIntact());
                    std::vector<std::uint8_t> expected(size);
                    filter->ResampleFilter::sampleRow4(expected.data(), row);
                    ASSERT_EQ(got.bytes(), expected)
                        << "seed " << seed << " filter " << kind.type << " step " << step
                        << " mode " << mode << " level " << vectorLevelName(level) << " from "
                        << row.x << ", " << row.y << " by " << row.dx << ", " << row.dy << " count "
                        << row.count;
                }
                EXPECT_GT(reached, kind.rows / 2);
            }
        }
    }
}

// A turned picture of several tiles: every border is crossed by many rows, so that its pixels come
// from copies. Once more after the picture has changed and the filter has begun anew.
TEST(SampleRows, CrossBordersOfTilesManyTimes) {
    const std::uint32_t seed = brushwork::test::testSeed();
    test::Random random(seed);
    const PixelRect wide{-140, -270, 700, 690};
    auto image = znTiledImage::makeImage(4);
    ASSERT_TRUE(image->setRect(wide));
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(wide.w * wide.h * 4));
    for (const VectorLevel level : test::vectorLevels()) {
        const test::AtLevel at(level);
        for (const std::int32_t type : {FilterBilinear, FilterBicubic}) {
            const Ref<ResampleFilter> filter = makeFilter(type, EdgeClamp);
            for (const double turn : {0.5, 2.2, 0.01}) {
                for (std::uint8_t& byte : pixels) byte = test::edgyByte(random);
                ASSERT_TRUE(
                    writeRect(*image, wide, pixels.data(), static_cast<std::size_t>(wide.w) * 4));
                const auto reader = makePixelReader(*image, wide);
                // Some borders have few pixels on one side.
                ASSERT_TRUE(filter->begin(reader.get(), -129, -258, 514, wide.y + wide.h - 1));
                const double dx = std::cos(turn);
                const double dy = std::sin(turn);
                std::vector<std::uint8_t> got(1000 * 4);
                std::vector<std::uint8_t> expected(got.size());
                for (double down = -500; down < 500; down += 7) {
                    const SampleRow row{200 - 500 * dx - down * dy, 80 - 500 * dy + down * dx, dx,
                                        dy, 1000};
                    filter->sampleRow4(got.data(), row);
                    ASSERT_EQ(lastKernelForm(), level);
                    filter->ResampleFilter::sampleRow4(expected.data(), row);
                    ASSERT_EQ(got, expected) << "seed " << seed << " filter " << type << " level "
                                             << vectorLevelName(level) << " from " << row.x << ", "
                                             << row.y << " turned by " << turn;
                }
                filter->end();
            }
        }
    }
}

// Places that are eighths have sums on the middle between two bytes, and at a distance of 2^-k from
// them sums lie by less and less off it.
TEST(SampleRows, BicubicSumsAtAndBesideMiddles) {
    test::Random random(brushwork::test::testSeed());
    const auto image = edgyPicture(random);
    const auto reader = makePixelReader(*image, area);
    const Ref<ResampleFilter> filter = makeFilter(FilterBicubic, EdgeClamp);
    ASSERT_TRUE(
        filter->begin(reader.get(), area.x, area.y, area.x + area.w - 1, area.y + area.h - 1));
    for (const VectorLevel level : test::vectorLevels()) {
        const test::AtLevel at(level);
        for (int round = 0; round < 3000; ++round) {
            const auto eighths = [&] { return static_cast<double>(random() % 8) / 8; };
            const double beside =
                round % 4 == 0 ? 0.0 : std::ldexp(1.0, -static_cast<int>(8 + random() % 24));
            // Rows through places alike, whose columns or rows add up alike.
            const SampleRow row{area.x + static_cast<double>(random() % 300) + eighths() + beside,
                                area.y + static_cast<double>(random() % 280) + eighths() +
                                    (round % 3 == 0 ? beside : 0.0),
                                round % 2 ? 1.0 : 0.125, round % 5 ? 0.0 : 0.125, 96};
            std::vector<std::uint8_t> got(96 * 4);
            std::vector<std::uint8_t> expected(96 * 4);
            filter->sampleRow4(got.data(), row);
            ASSERT_EQ(lastKernelForm(), level);
            filter->ResampleFilter::sampleRow4(expected.data(), row);
            ASSERT_EQ(got, expected) << "level " << vectorLevelName(level) << " from " << row.x
                                     << ", " << row.y << " by " << row.dx << ", " << row.dy;
        }
    }
}

// Bytes hardly tell a place that is off by its last bit, so places are compared, too.
TEST(SampleRows, PlacesAreSumsRoundedAtEachStep) {
    struct Open : ResampleFilter {
        using ResampleFilter::takePlaces;
    };
    test::Random random(brushwork::test::testSeed());
    BilinearChunk chunk;
    for (int round = 0; round < 100000; ++round) {
        const auto any = [&] {
            const double value = static_cast<double>(random()) / 65536.0 / 4096.0;
            const double fine = value + static_cast<double>(random()) * 0x1p-52;
            const double sized = std::ldexp(fine, static_cast<int>(random() % 24) - 12);
            return random() % 2 ? -sized : sized;
        };
        SampleRow row{any() * 64, random() % 4 ? any() * 64 : 32.0, any(), any(), 0};
        // Steps that end in the middle between two doubles.
        if (random() % 3 == 0) row.dx = (1 + 2 * static_cast<double>(random() % 1000)) * 0x1p-48;
        double x = row.x;
        double y = row.y;
        double atX = x;
        double atY = y;
        const int count = 8 * (1 + static_cast<int>(random() % (chunkPlaces / 8)));
        const BilinearRows& rows = round % 2 ? bilinearRowsSse2 : *bilinearRows();
        for (int part = 0; part < 3; ++part) {
            Open::takePlaces(row, count, atX, atY, chunk);
            rows.locate(chunk, count);
            for (int n = 0; n < count; ++n, x += row.dx, y += row.dy) {
                ASSERT_EQ(chunk.x[n], x) << row.x << " by " << row.dx << " number " << n;
                ASSERT_EQ(chunk.y[n], y) << row.y << " by " << row.dy << " number " << n;
                ASSERT_EQ(chunk.ix[n], std::floor(x + 0.5)) << x;
                ASSERT_EQ(chunk.iy[n], std::floor(y + 0.5)) << y;
            }
            ASSERT_EQ(atX, x);
            ASSERT_EQ(atY, y);
        }
    }
}

}  // namespace
}  // namespace brushwork
