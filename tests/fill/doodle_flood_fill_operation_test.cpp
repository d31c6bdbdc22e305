#include "fill/doodle_flood_fill_operation.h"

#include <gtest/gtest.h>

#include "fill/doodle_quality.h"
#include "fill/naive_climb.h"

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

// Dark dots in a light field. Answers whether the mask was taken for noise.
bool checkQuality(int dots, bool force) {
    const ilTile box = flatTile(0, 0, 200, 60);
    Picture picture(box, 4, greyWord(255));
    for (int i = 0; i < dots; ++i) picture.set(4 + i * 37 % 190, 2 + i * 23 % 56, greyWord(0));
    return climbsAsModel(picture, 199, 59, 26, force);
}

TEST(DoodleFloodFill, TakesBackAMaskOfNoise) {
    int reverted = 0;
    for (int dots = 0; dots < 40; ++dots) reverted += checkQuality(dots, false) ? 1 : 0;
    EXPECT_GT(reverted, 5);
    EXPECT_LT(reverted, 35);
    EXPECT_FALSE(checkQuality(2, false));
    EXPECT_TRUE(checkQuality(2, true));
}

// Soft lines that cross, with gaps in them.
TEST(DoodleFloodFill, FollowsItsModelOnDrawings) {
    Random random(5);
    for (const std::int32_t channels : {4, 1})
        for (const int tolerance : {0, 20, 60}) {
            const Picture picture =
                makePicture(Motif::Drawing, flatTile(-70, 45, 340, 250), channels, random);
            for (int i = 0; i < 6; ++i)
                climbsAsModel(picture,
                              picture.box.x + static_cast<std::int32_t>(between(random, 0, 339)),
                              picture.box.y + static_cast<std::int32_t>(between(random, 0, 249)),
                              tolerance, false);
        }
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
