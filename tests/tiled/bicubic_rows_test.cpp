// The eight-at-a-time form gives the bytes of single samples.
#include "tiled/bicubic_rows.h"

#include <gtest/gtest.h>

#include <limits>

#include "image/filter/kernel_recipe.h"
#include "support/test_seed.h"
#include "tiled/filter_factory.h"
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
    static constexpr double steps[] = {0, 1, -1, 0.5, 0.25, 2.0 / 3, 0.125, 3.75, -0.0001};
    const auto any = [&] { return static_cast<double>(random() % 65536) / 65536; };
    SampleRow row{area.x - 5 + static_cast<double>(random() % 410),
                  area.y - 5 + static_cast<double>(random() % 310), steps[random() % 9],
                  steps[random() % 9], count};
    if (random() % 2) row.x += any();
    if (random() % 2) row.y += any();
    if (random() % 2) row.dx = any() * 2 - 1;
    if (random() % 4 == 0) row.y += 0.5;
    if (random() % 40 == 0) row.x = 1e12;
    if (random() % 40 == 0) row.dy = std::numeric_limits<double>::quiet_NaN();
    if (random() % 40 == 0) row.dx = std::numeric_limits<double>::infinity();
    return row;
}

TEST(BicubicRows, GiveTheBytesOfSingleSamples) {
    const std::uint32_t seed = brushwork::test::testSeed();
    std::printf("seed %u\n", seed);
    test::Random random(seed);
    const auto image = edgyPicture(random);
    const auto reader = makePixelReader(*image, area);
    for (const VectorLevel level : test::vectorLevels()) {
        const test::AtLevel at(level);
        for (std::int32_t mode = 0; mode < 3; ++mode) {
            const Ref<ResampleFilter> filter = makeFilter(FilterBicubic, mode);
            ASSERT_TRUE(filter->begin(reader.get(), area.x + 3, area.y, area.x + area.w - 4,
                                      area.y + area.h - 1));
            for (int step = 0; step < 700; ++step) {
                const SampleRow row = drawRow(
                    random, static_cast<std::int32_t>(random() % (step % 10 == 0 ? 300 : 40)));
                const auto size = static_cast<std::size_t>(row.count) * 4;
                test::GuardedBytes got(size, random() % 16);
                noteKernelForm(VectorLevel::Sse2);
                filter->sampleRow4(got.data(), row);
                ASSERT_EQ(lastKernelForm(), bicubicRows(level) ? level : VectorLevel::Scalar);
                ASSERT_TRUE(got.guardsIntact());
                std::vector<std::uint8_t> expected(size);
                filter->ResampleFilter::sampleRow4(expected.data(), row);
                ASSERT_EQ(got.bytes(), expected)
                    << "seed " << seed << " step " << step << " mode " << mode << " level "
                    << vectorLevelName(level) << " from " << row.x << ", " << row.y << " by "
                    << row.dx << ", " << row.dy << " count " << row.count;
            }
        }
    }
}

}  // namespace
}  // namespace brushwork
