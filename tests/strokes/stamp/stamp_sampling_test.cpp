#include "strokes/stamp/stamp_sampling.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "image/filter/kernel_recipe.h"
#include "image/work/il_sp_memory_img.h"
#include "support/test_seed.h"

namespace brushwork::npc {
namespace {

using test::GuardedBytes;
using test::Random;

Ref<ilSPMemoryImg> picture(Random& random, int width, int height, int channels) {
    const auto image = makeRef<ilSPMemoryImg>(width, height, channels);
    for (std::size_t n = 0; n < image->byteSize(); ++n) image->data()[n] = test::edgyByte(random);
    return image;
}

// A pixel's channel by its place, 0 outside.
int pixelAt(ilSPMemoryImg& image, int x, int y, int channel) {
    if (x < 0 || y < 0 || x >= image.sizeX() || y >= image.sizeY()) return 0;
    return image.data()[(y * image.sizeX() + x) * image.channels() + channel];
}

// Straight from the picture, at a coordinate of the table, in integers.
int sampled(ilSPMemoryImg& image, float u, float v, int channel) {
    const bool inside =
        u > 0 && v > 0 && u < float(image.sizeX() + 1) && v < float(image.sizeY() + 1);
    if (!inside) return 0;
    const int x = int(std::floor(double{u})), y = int(std::floor(double{v}));
    const int a = int(256.0 * (double{u} - x)), b = int(256.0 * (double{v} - y));
    const int low =
        pixelAt(image, x - 1, y - 1, channel) * (256 - a) + pixelAt(image, x, y - 1, channel) * a;
    const int high =
        pixelAt(image, x - 1, y, channel) * (256 - a) + pixelAt(image, x, y, channel) * a;
    return (low * (256 - b) + high * b) >> 16;
}

TEST(PaddedTable, HoldsFourCornersAndAnEmptyRim) {
    Random random(5);
    for (const int channels : {1, 4}) {
        const auto image = picture(random, 5, 3, channels);
        PaddedTable table;
        ASSERT_TRUE(table.build(image));
        const std::uint8_t* cell = table.view().cells;
        for (int y = 0; y <= 3; ++y)
            for (int x = 0; x <= 5; ++x)
                for (int corner = 0; corner < 4; ++corner)
                    for (int c = 0; c < channels; ++c)
                        ASSERT_EQ(*cell++,
                                  pixelAt(*image, x - 1 + corner % 2, y - 1 + corner / 2, c));
    }
    PaddedTable table;
    EXPECT_FALSE(table.build(makeRef<ilSPMemoryImg>(4, 4, 3)));
    EXPECT_EQ(table.view().cells, nullptr);
    // A smaller image takes the room of a larger one; equal sizes don't make two images one.
    const auto large = picture(random, 9, 9, 4), small = picture(random, 2, 2, 1),
               other = picture(random, 2, 2, 1);
    ASSERT_TRUE(table.build(large) && table.build(small));
    EXPECT_EQ(table.view().cells[3], small->data()[0]);
    ASSERT_TRUE(table.build(other));
    EXPECT_EQ(table.view().cells[3], other->data()[0]);
}

TEST(StampSampling, AllFormsReadWhatThePictureHolds) {
    const unsigned seed = brushwork::test::testSeed();
    SCOPED_TRACE("seed " + std::to_string(seed));
    Random random(seed);
    const auto between = [&random](float low, float high) {
        return std::uniform_real_distribution<float>(low, high)(random);
    };
    for (int width = 1; width <= 40; ++width)
        for (int rows = 1; rows <= 10; ++rows) {
            const int imageWidth = 1 + int(random() % 30), imageHeight = 1 + int(random() % 30);
            const bool colors = random() % 2 == 0;
            const auto image = picture(random, imageWidth, imageHeight, colors ? 4 : 1);
            PaddedTable table;
            ASSERT_TRUE(table.build(image));
            SamplingJob job;
            job.table = table.view();
            job.map = {between(-2, 2), between(-2, 2), between(-5, 35),
                       between(-2, 2), between(-2, 2), between(-5, 35)};
            if (random() % 4 == 0) job.map = {1, 0, 0.5f, 0, 1, 0.5f};
            if (random() % 20 == 0) job.map.yy = NAN;
            job.firstRow = int(random() % 9);
            job.rows = rows;
            job.width = width;
            job.rowBytes = ((width + 15) & ~15) * (colors ? 4 : 1);
            std::vector<std::uint8_t> before(static_cast<std::size_t>(job.rowBytes * rows), 0);
            for (int row = 0; row < rows && !colors; ++row)
                for (int i = 0; i < width; ++i)
                    before[static_cast<std::size_t>(row * job.rowBytes + i)] =
                        test::edgyByte(random);
            auto expected = before;
            for (int row = 0; row < rows; ++row) {
                const float j = static_cast<float>(job.firstRow + row);
                float u = job.map.xy * j + job.map.x0, v = job.map.yy * j + job.map.y0;
                for (int i = 0; i < width; ++i, u += job.map.xx, v += job.map.yx) {
                    auto* out = &expected[static_cast<std::size_t>(row * job.rowBytes)];
                    if (colors)
                        for (int c = 0; c < 4; ++c)
                            out[i * 4 + c] = static_cast<std::uint8_t>(sampled(*image, u, v, c));
                    else
                        out[i] = static_cast<std::uint8_t>(
                            ((sampled(*image, u, v, 0) + 1) * out[i]) >> 8);
                }
            }
            auto levels = test::vectorLevels();
            levels.push_back(VectorLevel::Scalar);
            for (const VectorLevel level : levels) {
                GuardedBytes out(before.size(), random() % 64);
                if (!colors) std::copy(before.begin(), before.end(), out.data());
                job.pixels = out.data();
                colors ? sampleColors(job, level) : multiplyShape(job, level);
                ASSERT_EQ(lastKernelForm(), level);
                ASSERT_EQ(out.bytes(), expected)
                    << vectorLevelName(level) << (colors ? " colours " : " shape ") << width
                    << " x " << rows << " of " << imageWidth << " x " << imageHeight;
                ASSERT_TRUE(out.guardsIntact());
            }
        }
}

}  // namespace
}  // namespace brushwork::npc
