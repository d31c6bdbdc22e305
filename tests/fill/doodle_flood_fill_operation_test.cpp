#include "fill/doodle_flood_fill_operation.h"

#include <gtest/gtest.h>

#include <string>

#include "fill/doodle_quality.h"
#include "fill/doodle_walk.h"
#include "fill/naive_flood.h"
#include "foundation/services/log.h"
#include "image/filter/il_convolution_img.h"

namespace brushwork::test {
namespace {

constexpr ilTile everywhere = flatTile(-10000, -10000, 20000, 20000);

Ref<ilSmartImage> rowsOf(const std::vector<std::vector<std::uint32_t>>& rows) {
    Picture picture(flatTile(0, 0, static_cast<std::int32_t>(rows[0].size()),
                             static_cast<std::int32_t>(rows.size())),
                    4, 0);
    for (std::size_t y = 0; y < rows.size(); ++y)
        for (std::size_t x = 0; x < rows[y].size(); ++x)
            picture.set(static_cast<std::int32_t>(x), static_cast<std::int32_t>(y),
                        greyWord(255 - rows[y][x]));
    return smartOf(picture);
}

std::vector<std::uint32_t> maskRow(const DoodleFloodFillOperation& doodle, std::int32_t y,
                                   std::int32_t count) {
    std::vector<std::uint32_t> row;
    for (std::int32_t x = 0; x < count; ++x) row.push_back(doodle.mask()->getPixel(x, y));
    return row;
}

std::uint32_t share(int distance) {
    return static_cast<std::uint32_t>(std::max((1.0 - distance * 0.003921569) * 255.0, 1.0));
}

// Up the ramp to the crest and not down the other side; equal steps of a plateau stop it too.
TEST(DoodleFloodFill, ClimbsARampToItsCrest) {
    const auto image =
        rowsOf({{0, 0, 10, 20, 40, 40, 30, 0, 0}});  // darkness; distances are 3 times
    DoodleFloodFillOperation doodle(flatTile(0, 0, 9, 1), flatTile(0, 0, 9, 1));
    doodle.run(0, 0, 0.0f, *image);
    EXPECT_EQ(maskRow(doodle, 0, 9),
              (std::vector<std::uint32_t>{255, 255, share(30), share(60), share(120), 0, 0, 0, 0}));
    EXPECT_EQ(doodle.dirty().left, 0);
    EXPECT_EQ(doodle.dirty().right, 4);
    // Within the tolerance distances count as 0, so that a dip there doesn't end the walk.
    const auto wavy = rowsOf({{0, 4, 1, 3, 20, 60, 85, 85}});
    DoodleFloodFillOperation other(flatTile(0, 0, 8, 1), everywhere);
    other.run(0, 0, 12.0f / 255.0f, *wavy);
    EXPECT_EQ(maskRow(other, 0, 8),
              (std::vector<std::uint32_t>{255, 255, 255, 255, share(60), share(180), 1, 0}));
}

// Each run over which it can step has a seed at its end, and a run ends where a ramp begins.
TEST(DoodleFloodFill, StepsToOtherRowsAsItClimbs) {
    const auto image =
        rowsOf({{0, 50, 0, 0, 0}, {0, 40, 0, 9, 0}, {0, 30, 0, 0, 0}, {0, 0, 0, 0, 0}});
    DoodleFloodFillOperation doodle(flatTile(0, 0, 5, 4), flatTile(0, 0, 5, 4));
    doodle.run(4, 3, 0.0f, *image);
    EXPECT_EQ(maskRow(doodle, 0, 5), (std::vector<std::uint32_t>{255, share(150), 255, 255, 255}));
    EXPECT_EQ(maskRow(doodle, 1, 5),
              (std::vector<std::uint32_t>{255, share(120), 255, share(27), 255}));
    EXPECT_EQ(doodle.dirty().bottom, 3);
}

// A seed in the margin is moved into the rectangle; beyond it nothing happens. The fill goes 2 past
// low edges, 4 past high ones.
TEST(DoodleFloodFill, KeepsToItsMargins) {
    const Picture picture(flatTile(0, 0, 300, 300), 4, greyWord(255));
    const auto image = smartOf(picture);
    DoodleFloodFillOperation doodle(flatTile(100, 110, 50, 40), everywhere);
    doodle.run(98, 108, 0.1f, *image);
    EXPECT_EQ(doodle.dirty().left, 98);
    EXPECT_EQ(doodle.dirty().top, 108);
    EXPECT_EQ(doodle.dirty().right, 153);
    EXPECT_EQ(doodle.dirty().bottom, 153);
    doodle.run(97, 120, 0.1f, *image);
    EXPECT_TRUE(doodle.dirty().isEmpty());
    DoodleFloodFillOperation cut(flatTile(100, 110, 50, 40), flatTile(90, 90, 61, 63));
    cut.run(150, 152, 0.1f, *image);
    EXPECT_EQ(cut.dirty().right, 150);
    EXPECT_EQ(cut.dirty().bottom, 152);
}

TEST(DoodleFloodFill, CountsSpikesAgainstBothNeighboursInTheBox) {
    const auto mask = newMask();
    const auto surface = makeFillSurface(*mask);
    const FloodBox box{0, 0, 9, 4};
    surface->put(0, 2, 255);  // at the edge of its row: a spike of its column alone
    surface->put(4, 2, 129);  // both
    surface->put(7, 2, 128);  // not by more than 128
    surface->put(6, 0, 255);  // a spike of its row alone
    surface->put(7, 4, 255);
    surface->put(8, 4, 255);  // each has a neighbour that is like it
    EXPECT_EQ(countSpikes(*surface, box), 1 + 2 + 1);
}

struct LogCatcher {
    LogCatcher() {
        setLogSink([this](std::string_view text) { lines += text; });
    }
    ~LogCatcher() { setLogSink({}); }
    std::string lines;
};

int naiveSpikes(const Picture& mask) {
    int count = 0;
    const auto at = [&](std::int32_t x, std::int32_t y) { return static_cast<int>(mask.at(x, y)); };
    const auto apart = [](int a, int b) { return std::abs(a - b) > 128; };
    for (std::int32_t y = 0; y < mask.box.ny; ++y)
        for (std::int32_t x = 0; x < mask.box.nx; ++x) {
            const int value = at(x, y);
            const bool inRow = x > 0 && x < mask.box.nx - 1;
            const bool inColumn = y > 0 && y < mask.box.ny - 1;
            count += inRow && apart(value, at(x - 1, y)) && apart(value, at(x + 1, y)) ? 1 : 0;
            count += inColumn && apart(value, at(x, y - 1)) && apart(value, at(x, y + 1)) ? 1 : 0;
        }
    return count;
}

// Dark dots in a light field. Answers whether the mask was taken for noise.
bool checkQuality(int dots, bool force) {
    const ilTile box = flatTile(0, 0, 200, 60);
    Picture picture(box, 4, greyWord(255));
    for (int i = 0; i < dots; ++i) picture.set(4 + i * 37 % 190, 2 + i * 23 % 56, greyWord(0));
    const auto image = smartOf(picture);
    const auto marks = newMask();
    const auto source = makeFillSurface(*image);
    const auto surface = makeFillSurface(*marks);
    const ColorTarget target(greyWord(255), 4);
    DoodleWalk walk(*source, *surface, {0, 0, 199, 59}, target, 26);
    walk.run(199, 59);
    Picture mask(box, 1, 0);
    for (std::int32_t y = 0; y < 60; ++y)
        for (std::int32_t x = 0; x < 200; ++x) mask.set(x, y, marks->getPixel(x, y));
    const bool reverts = force || naiveSpikes(mask) > 40;

    LogCatcher log;
    DoodleFloodFillOperation doodle(box, box);
    doodle.setForceFallback(force);
    doodle.run(199, 59, 0.1f, *image);
    EXPECT_EQ(log.lines, reverts ? "Reverting to BasicFill!\n" : "") << dots;
    // What is too far off is taken back, and the mask smoothed over its box.
    for (std::size_t i = 0; i < mask.pixels.size(); ++i)
        if (reverts && colorDistance(picture.pixels[i], target) > 26) mask.pixels[i] = 0;
    std::vector<std::uint8_t> bytes = mask.bytes();
    if (reverts) {
        const Ref<ilConvolutionImg> smooth(new ilConvolutionImg(box.nx, box.ny, 1));
        smooth->writeRegion(box, bytes.data(), box);
        smooth->convolve(ConvolutionKernel(-1.0f, 1.5f, 0.33333334f));
        smooth->readRegion(box, bytes.data(), box);
    }
    EXPECT_TRUE(bytesOf(*doodle.mask(), box) == bytes) << dots;
    return reverts;
}

TEST(DoodleFloodFill, TakesBackAMaskOfNoise) {
    int reverted = 0;
    for (int dots = 0; dots < 40; ++dots) reverted += checkQuality(dots, false) ? 1 : 0;
    EXPECT_GT(reverted, 5);
    EXPECT_LT(reverted, 35);
    EXPECT_FALSE(checkQuality(2, false));
    EXPECT_TRUE(checkQuality(2, true));
}

TEST(DoodleFloodFill, MixesTheColourByTheMask) {
    const auto image = rowsOf({{0, 0, 20, 40, 60, 0}});
    DoodleFloodFillOperation doodle(flatTile(0, 0, 6, 1), flatTile(0, 0, 6, 1));
    doodle.run(0, 0, 0.0f, *image);
    constexpr std::uint32_t colour = 0xFF2080FFU;
    std::vector<std::uint32_t> wanted;
    for (std::int32_t x = 0; x < 6; ++x) {
        const std::uint32_t old = image->getPixel(x, 0);
        const std::uint32_t mask = doodle.mask()->getPixel(x, 0);
        std::uint32_t value = 0;
        for (int c = 0; c < 4; ++c) {
            const double k = mask * 0.003921569;
            const double mixed = byteAt(old, c) - byteAt(old, c) * k + byteAt(colour, c) * k;
            value |= static_cast<std::uint32_t>(std::clamp(mixed, 0.0, 255.0)) << 8 * c;
        }
        wanted.push_back(mask == 0 ? old : mask == 255 ? colour : value);
    }
    doodle.applyColour(colour, *image);
    for (std::int32_t x = 0; x < 6; ++x)
        EXPECT_EQ(image->getPixel(x, 0), wanted[static_cast<std::size_t>(x)]) << x;
    EXPECT_EQ(image->getPixel(5, 0), greyWord(255));
    EXPECT_EQ(image->getPixel(1, 0), colour);
}

}  // namespace
}  // namespace brushwork::test
