#include "tiled/resample_run.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

#include "support/test_seed.h"
#include "tiled/cell_shares.h"
#include "tiled/filter_factory.h"
#include "tiled/tile_regions.h"
#include "tiled/tiled_model.h"

namespace brushwork {
namespace {

using test::Random;
using znTiledImage::Image;
using znTiledImage::makeImage;
using znTiledImage::PixelRect;

std::vector<std::size_t> countsOf(std::size_t cells, int processors, std::size_t least) {
    std::vector<std::size_t> counts;
    std::size_t next = 0;
    for (const CellShare& share : cellShares(cells, processors, least)) {
        EXPECT_EQ(share.first, next);
        next += share.count;
        counts.push_back(share.count);
    }
    EXPECT_EQ(next, cells);
    return counts;
}

TEST(CellShares, ByTable) {
    using Counts = std::vector<std::size_t>;
    EXPECT_EQ(countsOf(0, 4, 5), Counts());
    EXPECT_EQ(countsOf(1, 4, 5), (Counts{1}));
    EXPECT_EQ(countsOf(2, 4, 5), (Counts{1, 1}));
    EXPECT_EQ(countsOf(3, 4, 5), (Counts{1, 2}));
    EXPECT_EQ(countsOf(10, 4, 5), (Counts{1, 5, 4}));
    EXPECT_EQ(countsOf(10, 4, 2), (Counts{1, 2, 2, 2, 2, 1}));
    EXPECT_EQ(countsOf(64, 4, 5), (Counts{8, 8, 8, 8, 8, 8, 8, 8}));
    EXPECT_EQ(countsOf(100, 2, 5), (Counts{25, 25, 25, 25}));
    EXPECT_EQ(countsOf(101, 2, 5), (Counts{25, 25, 25, 26}));
    EXPECT_EQ(countsOf(7, 1, 5), (Counts{3, 4}));
    EXPECT_EQ(countsOf(9, 1, 5), (Counts{4, 5}));
    EXPECT_EQ(countsOf(9, 0, 5), (Counts{4, 5}));
}

TriangleVertex vertex(double x, double y) {
    return {x, y, x, y, 0};
}

// Every pixel whose centre lies in the polygon is drawn by just one of its triangles.
TEST(TriangleWalker, NeighboursNeitherOverlapNorLeaveGaps) {
    const std::uint32_t seed = brushwork::test::testSeed();
    std::printf("seed %u\n", seed);
    Random random(seed);
    constexpr PixelRect grid{-128, -128, 384, 384};
    for (int step = 0; step < 60; ++step) {
        // A fan around a point, its spokes to the corners of a square; some on pixel centres.
        const auto place = [&](int low, int high) {
            const double drawn = test::draw(random, low * 8, high * 8) / 8.0;
            return random() % 2 ? drawn : drawn + 0.013;
        };
        const TriangleVertex middle = vertex(place(10, 90), place(10, 90));
        const double low = place(-50, 5);
        const double high = place(100, 200);
        const TriangleVertex corners[4] = {vertex(low, low), vertex(high, low), vertex(high, high),
                                           vertex(low, high)};
        std::vector<int> drawn(384 * 384, 0);
        for (std::size_t n = 0; n < 4; ++n) {
            const TriangleVertex three[3] = {middle, corners[n], corners[(n + 1) % 4]};
            const std::size_t turn = random() % 3;
            const TriangleSetup setup(three[turn], three[(turn + 1) % 3], three[(turn + 2) % 3]);
            const PixelRect bounds = setup.bounds();
            for (std::int32_t y = setup.firstRow(); y < setup.endRow(); ++y) {
                const TriangleSetup::Row row = setup.row(y, grid.x, grid.x + grid.w);
                for (std::int32_t i = 0; i < row.samples.count; ++i) {
                    ++drawn[static_cast<std::size_t>((y - grid.y) * 384 + row.x + i - grid.x)];
                    ASSERT_EQ(znTiledImage::common(bounds, {row.x + i, y, 1, 1}).w, 1);
                    // The map is the identity: each pixel samples its own centre.
                    ASSERT_NEAR(row.samples.x + i * row.samples.dx, row.x + i + 0.5, 1e-9);
                    ASSERT_NEAR(row.samples.y + i * row.samples.dy, y + 0.5, 1e-9);
                }
            }
        }
        for (std::int32_t y = 0; y < 384; ++y)
            for (std::int32_t x = 0; x < 384; ++x) {
                const double cx = x + grid.x + 0.5;
                const double cy = y + grid.y + 0.5;
                const bool inside = cx >= low && cx < high && cy >= low && cy < high;
                ASSERT_EQ(drawn[static_cast<std::size_t>(y * 384 + x)], inside ? 1 : 0)
                    << "seed " << seed << " step " << step << " at " << cx << ", " << cy;
            }
    }
    const double none = std::nan("");
    EXPECT_TRUE(
        znTiledImage::isEmpty(TriangleSetup(vertex(0, 0), vertex(5, 5), vertex(9, 9)).bounds()));
    EXPECT_TRUE(
        znTiledImage::isEmpty(TriangleSetup(vertex(0, none), vertex(5, 0), vertex(9, 9)).bounds()));
    EXPECT_LE(TriangleSetup(vertex(-1e300, 0), vertex(1e300, 0), vertex(0, 1e-300)).bounds().h, 1);
}

struct Picture {
    Ref<Image> image;
    Ref<znTiledImage::PixelReader> reader;

    Picture(Random& random, std::int32_t channels, const PixelRect& rect)
        : image(makeImage(channels)) {
        EXPECT_TRUE(image->setRect(rect));
        const auto bytes = static_cast<std::size_t>(channels);
        const auto pixels = test::drawPixels(random, rect, bytes);
        EXPECT_TRUE(
            writeRect(*image, rect, pixels.data(), static_cast<std::size_t>(rect.w) * bytes));
        reader = makePixelReader(*image, rect);
    }
};

std::vector<TriangleVertex> turnedQuad(double size, double angle, double scale) {
    std::vector<TriangleVertex> corners;
    for (const auto& [u, v] : {std::pair{0.0, 0.0}, {size, 0.0}, {size, size}, {0.0, size}}) {
        const double x = (u - size / 2) * scale;
        const double y = (v - size / 2) * scale;
        corners.push_back({x * std::cos(angle) - y * std::sin(angle),
                           x * std::sin(angle) + y * std::cos(angle), u, v, 0});
    }
    return corners;
}

constexpr PixelRect canvas{-400, -400, 800, 800};

std::vector<std::uint8_t> pixelsOf(const Image& image, const PixelRect& rect) {
    const std::size_t stride = static_cast<std::size_t>(rect.w) * image.bytesPerPixel();
    std::vector<std::uint8_t> bytes(stride * static_cast<std::size_t>(rect.h));
    readRect(image, rect, bytes.data(), stride);
    return bytes;
}

TEST(ResampleRun, ManyWorkersGiveTheSameBytes) {
    Random random(7);
    constexpr std::int32_t size = 400;
    const Picture source(random, 4, {0, 0, size, size});
    const std::vector<TriangleVertex> quad = turnedQuad(size, 0.3, 1.4);
    const std::uint32_t indexes[] = {0, 1, 2, 0, 2, 3};
    for (std::int32_t type = 0; type < 5; ++type) {
        std::vector<std::uint8_t> expected;
        for (const int processors : {0, 1, 2, 8}) {
            const Ref<Image> target = makeImage(4);
            ASSERT_TRUE(target->setRect(canvas));
            const Ref<Image> before = target->share();
            const Ref<ResampleFilter> filter = makeFilter(type, EdgeOutside);
            ASSERT_TRUE(filter->begin(source.reader.get(), 0, 0, size - 1, size - 1));
            ResampleOptions options;
            options.singleThread = processors == 0;
            options.processors = processors;
            ASSERT_TRUE(resampleTriangles(*target, {quad, indexes}, *filter, options));
            const auto bytes = pixelsOf(*target, canvas);
            if (processors == 0) expected = bytes;
            ASSERT_EQ(bytes, expected) << type << " on " << processors;
            ASSERT_EQ(before->container().nodeAt(0)->kind(), znTiledImage::TileKind::None);
        }
        // Not empty, and not the source's shape.
        EXPECT_NE(std::accumulate(expected.begin(), expected.end(), 0ull), 0ull);
    }
}

// Each pixel of a turned quad beside a sample at the place that the turn gives.
TEST(ResampleRun, SamplesWhereTheMapSays) {
    Random random(8);
    constexpr std::int32_t size = 200;
    for (const std::int32_t channels : {1, 4}) {
        const Picture source(random, channels, {0, 0, size, size});
        const double angle = 0.7;
        const std::vector<TriangleVertex> corners = turnedQuad(size, angle, 2.0);
        const std::vector<TriangleVertex> direct{
            corners[0], corners[1], corners[2], corners[2],
            corners[3], corners[0], corners[0]};  // the last one is left over
        const Ref<Image> target = makeImage(channels);
        ASSERT_TRUE(target->setRect({-300, -300, 600, 600}));
        const Ref<ResampleFilter> filter = makeFilter(FilterNearest, EdgeClamp);
        EXPECT_FALSE(resampleTriangles(*target, {direct, {}}, *filter));
        ASSERT_TRUE(filter->begin(source.reader.get(), 0, 0, size - 1, size - 1));
        ASSERT_TRUE(resampleTriangles(*target, {direct, {}}, *filter));
        int checked = 0;
        for (std::int32_t y = -300; y < 300; ++y)
            for (std::int32_t x = -300; x < 300; ++x) {
                const double cx = x + 0.5;
                const double cy = y + 0.5;
                const double u = (cx * std::cos(angle) + cy * std::sin(angle)) / 2 + size / 2.0;
                const double v = (cy * std::cos(angle) - cx * std::sin(angle)) / 2 + size / 2.0;
                const double far = 1e-6;  // from where a pixel might be another
                const bool clear =
                    std::abs(u - std::round(u)) > far && std::abs(v - std::round(v)) > far;
                if (!clear) continue;
                const bool inside = u > 0 && v > 0 && u < size && v < size;
                const PixelRect at{x, y, 1, 1};
                const PixelRect from{static_cast<std::int32_t>(std::floor(u)),
                                     static_cast<std::int32_t>(std::floor(v)), 1, 1};
                const auto expected =
                    inside ? pixelsOf(*source.image, from)
                           : std::vector<std::uint8_t>(static_cast<std::size_t>(channels), 0);
                ASSERT_EQ(pixelsOf(*target, at), expected) << x << ", " << y;
                checked += inside;
            }
        EXPECT_GT(checked, 150000);
    }
}

TEST(ResampleRun, OutlineAndLists) {
    Random random(9);
    const Picture source(random, 4, {0, 0, 16, 16});
    const Ref<Image> target = makeImage(4);
    ASSERT_TRUE(target->setRect({0, 0, 64, 64}));
    const Ref<ResampleFilter> filter = makeFilter(FilterSolid, EdgeClamp);
    ASSERT_TRUE(filter->begin(source.reader.get(), 0, 0, 15, 15));
    const std::vector<TriangleVertex> corners{vertex(2.5, 2.5), vertex(40, 2.5), vertex(2.5, 40)};
    const std::uint32_t indexes[] = {0, 1, 7, 0, 1, 2};  // the first names no vertex
    ResampleOptions options;
    options.outline = true;
    options.outlineColor = {{1, 2, 3, 4}};
    ASSERT_TRUE(resampleTriangles(*target, {corners, indexes}, *filter, options));
    const auto at = [&](std::int32_t x, std::int32_t y) { return pixelsOf(*target, {x, y, 1, 1}); };
    const std::vector<std::uint8_t> line{1, 2, 3, 4};
    EXPECT_EQ(at(2, 2), line);
    EXPECT_EQ(at(40, 2), line);
    EXPECT_EQ(at(2, 40), line);
    EXPECT_EQ(at(20, 2), line);
    EXPECT_EQ(at(21, 21), line);
    EXPECT_EQ(at(10, 10), (std::vector<std::uint8_t>{0, 255, 0, 255}));
    EXPECT_EQ(at(45, 45), (std::vector<std::uint8_t>{0, 0, 0, 0}));
}

}  // namespace
}  // namespace brushwork
