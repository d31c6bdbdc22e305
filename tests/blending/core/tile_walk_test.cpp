#include "blending/core/tile_walk.h"

#include <gtest/gtest.h>

#include <limits>

#include "blending/core/blend_layout.h"

namespace brushwork {
namespace {

using test::BlendLayout;
using test::PageImage;
using test::RecordingBlender;

// Random images at odd offsets against a plain loop: every pixel once, from its own inputs.
TEST(TileWalk, AnyLayoutIsAPlainLoop) {
    std::uint64_t blended = 0;
    for (std::uint32_t seed = 1; seed <= 150; ++seed) {
        BlendLayout layout(seed);
        RecordingBlender blender;
        blender.setThreaded(layout.draw(0, 1));
        layout.bind(blender);
        const ilTile box = layout.box();
        layout.expect(box);
        blender.run(box);
        layout.check();
        ASSERT_EQ(blender.pixelCount(), layout.blended()) << layout.text();
        if (::testing::Test::HasFatalFailure()) return;
        blended += layout.blended();
    }
    EXPECT_GT(blended, 500000u);  // the layouts do meet
}

TEST(TileWalk, ASetOfBoxesIsOneRun) {
    for (std::uint32_t seed = 1000; seed < 1025; ++seed) {
        BlendLayout layout(seed);
        RecordingBlender blender;
        blender.setThreaded(seed % 2);
        layout.bind(blender);
        const ilTile all = flatTile(-200, -150, 440, 360);
        npc::TileSet boxes;
        std::vector<bool> covered(static_cast<std::size_t>(all.nx * all.ny));
        // Up to some 750 boxes in cells of 14 x 15, some of them empty.
        for (std::int32_t y = 0; y + 15 <= all.ny; y += 15)
            for (std::int32_t x = 0; x + 14 <= all.nx; x += 14) {
                if (layout.draw(0, 3) == 0) continue;
                const ilTile box = flatTile(all.x + x, all.y + y, layout.draw(0, 14), 15);
                boxes.insert(box);
                for (std::int32_t py = y; py < y + 15; ++py)
                    for (std::int32_t px = x; px < x + box.nx; ++px)
                        covered[static_cast<std::size_t>(py * all.nx + px)] = true;
            }
        ASSERT_GT(boxes.size(), 256u);
        layout.expect(all, [&](std::int32_t x, std::int32_t y) {
            return covered[static_cast<std::size_t>((y - all.y) * all.nx + x - all.x)];
        });
        blender.run(boxes);
        layout.check();
        ASSERT_EQ(blender.pixelCount(), layout.blended()) << layout.text();
        if (::testing::Test::HasFatalFailure()) return;
    }
}

std::uint8_t zero(std::int32_t, std::int32_t, std::int32_t) {
    return 0;
}

TEST(TileWalk, ATargetThatSharesPagesWithASourceGetsItsCopy) {
    const auto source =
        makeRef<PageImage>(4, [](auto x, auto y, auto c) { return test::contentOf(5, x, y, c); });
    RecordingBlender blender;
    blender.setDestination(source.get(), 0, 0);
    blender.run(flatTile(0, 0, 256, 128));  // makes two pages
    const std::uint8_t before = source->at(100, 100, 2);
    const auto target = source->clone();
    blender.setDestination(target.get(), 0, 0);
    blender.setSource(source.get(), 64, 0, false);
    const std::uint8_t shifted = source->at(100 - 64, 100, 2);
    source->writeLocks = 0;
    blender.run(flatTile(64, 0, 128, 128));
    EXPECT_EQ(source->at(100, 100, 2), before);
    EXPECT_EQ(target->at(100, 100, 2),
              test::recorded(before, shifted, test::noSource2, test::noMask));
    EXPECT_EQ(target->copies, 2);
    EXPECT_EQ(source->copies, 0);
    EXPECT_EQ(source->writeLocks, 0);
    EXPECT_EQ(source->openLocks, 0);
    EXPECT_EQ(target->openLocks, 0);
}

// An image in several slots is locked for writing in all of them, whatever came first.
TEST(TileWalk, SlotsOfOneImageAgreeOnWriting) {
    const auto image = makeRef<PageImage>(4, zero);
    const auto other = makeRef<PageImage>(4, zero);
    RecordingBlender blender;
    blender.setSource(image.get(), 0, 0, false);
    EXPECT_FALSE(blender.input(npc::InputSource).writable);
    blender.setDestination(image.get(), 0, 0);
    EXPECT_TRUE(blender.input(npc::InputSource).writable);
    blender.setSecondSource(image.get(), 0, 0, false);
    EXPECT_TRUE(blender.input(npc::InputSecondSource).writable);

    // A page that somebody else holds is copied once, and both slots see the copy.
    blender.setSecondSource(nullptr, 0, 0, false);
    const auto holder = [&] {
        blender.run(flatTile(0, 0, 1, 1));
        return image->clone();
    }();
    const std::uint8_t before = image->at(3, 3, 0);
    blender.run(flatTile(0, 0, 128, 128));
    EXPECT_EQ(image->at(3, 3, 0), test::recorded(before, before, 0, test::noMask));
    EXPECT_EQ(holder->at(3, 3, 0), before);
    EXPECT_EQ(image->copies, 1);

    blender.setSource(other.get(), 0, 0, false);
    EXPECT_FALSE(blender.input(npc::InputSource).writable);
    blender.setMask(other.get(), 0, 0, true);
    EXPECT_TRUE(blender.input(npc::InputSource).writable);
}

// A mask whose pages lie askew asks for each page of the target several times.
TEST(TileWalk, APageIsLockedOnceInARow) {
    const auto target = makeRef<PageImage>(4, zero);
    const auto mask = makeRef<PageImage>(1, zero);
    RecordingBlender blender;
    blender.setDestination(target.get(), 0, 0);
    blender.setMask(mask.get(), 64, 64, false);
    blender.run(flatTile(0, 0, 512, 128));
    EXPECT_EQ(mask->locks, 10);
    EXPECT_LE(target->locks, 8);  // 16 rectangles
    EXPECT_EQ(target->openLocks, 0);
}

// A batch gives its pages back before the next one takes its own.
TEST(TileWalk, NoMoreThanABatchIsLocked) {
    const auto target = makeRef<PageImage>(1, zero);
    RecordingBlender blender;
    blender.setDestination(target.get(), 0, 0);
    npc::TileSet boxes;
    for (std::int32_t n = 0; n < 600; ++n) boxes.insert(flatTile(n * 128, 0, 1, 1));
    for (const bool threaded : {false, true}) {
        blender.setThreaded(threaded);
        blender.run(flatTile(0, 0, 600 * 128, 1));
        EXPECT_EQ(target->mostOpenLocks, 256);
        target->mostOpenLocks = 0;
        blender.run(boxes);
        EXPECT_EQ(target->mostOpenLocks, 256);
    }
}

TEST(TileWalk, ImagesThatArentBytesChangeNothing) {
    const auto target = makeRef<ilSPMemoryImg>(8, 8, 4);
    std::fill_n(target->data(), 256, std::uint8_t{9});
    RecordingBlender blender;
    blender.setDestination(target.get(), 0, 0);
    const auto run = [&](ilImage* source) {
        blender.setSource(source, 0, 0, false);
        blender.run(flatTile(0, 0, 8, 8));
        return target->data()[0];
    };
    EXPECT_EQ(run(makeRef<ilMemoryImg>(8, 8, 1, 4, TypeFloat, OrderInterleaved).get()), 9);
    EXPECT_EQ(run(makeRef<ilMemoryImg>(8, 8, 1, 4, TypeUChar, OrderSeparate).get()), 9);
    EXPECT_EQ(run(makeRef<ilMemoryImg>().get()), 9);  // without pixels
    EXPECT_EQ(run(makeRef<ilPatternImg>().get()), 9);
    EXPECT_EQ(blender.pixelCount(), 0u);
    EXPECT_NE(run(nullptr), 9);
}

TEST(TileWalk, PlacesAtTheEndOfTheRange) {
    constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    const auto target = makeRef<ilSPMemoryImg>(200, 3, 4);
    std::fill_n(target->data(), 2400, std::uint8_t{0});
    const auto pages = makeRef<PageImage>(4, zero);
    RecordingBlender blender;
    for (const std::int32_t place : {least, least + 5, most - 300, most - 100, most}) {
        blender.setDestination(target.get(), place, place);
        blender.setSource(pages.get(), place, place, false);
        blender.run({place, place, 0, most, most, 1});
        blender.setSource(pages.get(), place / 2, least, false);
        blender.run({least, least, 0, most, most, 1});
        blender.run({0, 0, 0, most, most, 1});
    }
    EXPECT_GT(blender.pixelCount(), 600u);
    // The box lies beyond all pixels.
    const std::uint64_t count = blender.pixelCount();
    blender.setDestination(pages.get(), most, most);
    blender.setSource(pages.get(), least, least, false);
    blender.run({least, least, 0, most, most, 1});
    EXPECT_EQ(blender.pixelCount(), count);
    // A target without bounds ends where nothing can be kept.
    RecordingBlender wide;
    wide.setDestination(pages.get(), 0, 0);
    wide.run({102399, -50, 0, most - 102399, 200, 1});
    EXPECT_EQ(wide.pixelCount(), 200u);
    blender.run(ilTile{});
    RecordingBlender().run(flatTile(least, least, most, most));  // without an image
}

}  // namespace
}  // namespace brushwork
