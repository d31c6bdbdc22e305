#include "fill/flood_fill.h"

#include <gtest/gtest.h>

#include "fill/fill_pictures.h"
#include "fill/flood_fill_operation.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork::test {
namespace {

// Open places of a grid; counts how often one is asked for.
class GridFlood : public FloodFill {
  public:
    explicit GridFlood(const Picture& open) : picture(open) {}
    [[nodiscard]] bool inside(std::int32_t x, std::int32_t y) override {
        ++asked;
        return picture.at(x, y) == 1;
    }
    void setPixel(std::int32_t x, std::int32_t y) override {
        EXPECT_EQ(picture.at(x, y), 1U) << x << ", " << y;
        picture.set(x, y, 2);
    }
    Picture picture;
    std::uint64_t asked = 0;
};

// Every 1 that connects with the seed within the clip becomes 2.
Picture modelFlood(Picture picture, std::int32_t x, std::int32_t y, const FloodBox& clip) {
    std::vector<std::pair<std::int32_t, std::int32_t>> open{{x, y}};
    while (!open.empty()) {
        const auto [px, py] = open.back();
        open.pop_back();
        if (!clip.holds(px, py) || picture.at(px, py) != 1) continue;
        picture.set(px, py, 2);
        open.insert(open.end(), {{px + 1, py}, {px - 1, py}, {px, py + 1}, {px, py - 1}});
    }
    return picture;
}

TEST(FloodFill, FillsWhatConnectsWithinTheClip) {
    for (std::uint32_t seed = 0; seed < 600; ++seed) {
        Random random(seed);
        const auto size = static_cast<std::int32_t>(between(random, 1, 60));
        Picture picture(flatTile(-5, -7, size, static_cast<std::int32_t>(between(random, 1, 60))),
                        1, 0);
        const std::uint32_t density = between(random, 30, 100);
        for (auto& pixel : picture.pixels) pixel = between(random, 0, 99) < density ? 1 : 0;
        const ilTile& box = picture.box;
        const auto inBox = [&](std::int32_t start, std::int32_t extent) {
            return start + static_cast<std::int32_t>(
                               between(random, 0, static_cast<std::uint32_t>(extent - 1)));
        };
        FloodBox clip{box.x, box.y, box.endX() - 1, box.endY() - 1};
        if (seed % 3 == 0) {
            clip.left = inBox(box.x, box.nx);
            clip.bottom = inBox(box.y, box.ny);
        }
        const std::int32_t x = inBox(box.x, box.nx);
        const std::int32_t y = inBox(box.y, box.ny);
        GridFlood flood(picture);
        flood.fill(x, y, clip.left, clip.top, clip.right, clip.bottom, false);
        const Picture wanted = modelFlood(picture, x, y, clip);
        ASSERT_EQ(flood.picture.pixels, wanted.pixels) << "seed " << seed;
        EXPECT_LE(flood.asked, 4 * picture.pixels.size() + 8) << "seed " << seed;
        FloodBox dirty;
        for (std::int32_t py = box.y; py < box.endY(); ++py)
            for (std::int32_t px = box.x; px < box.endX(); ++px)
                if (wanted.at(px, py) == 2) dirty.grow(px, px, py);
        EXPECT_EQ(flood.dirty().left, dirty.left);
        EXPECT_EQ(flood.dirty().top, dirty.top);
        EXPECT_EQ(flood.dirty().right, dirty.right);
        EXPECT_EQ(flood.dirty().bottom, dirty.bottom);
    }
}

constexpr FloodFillOperation::Color white{1.0f, 1.0f, 1.0f, 1.0f};

// A wand: colours into a selection that lies elsewhere and holds something already.
TEST(FloodFillOperation, SelectsWhatConnectsWithinTheTolerance) {
    for (std::uint32_t seed = 0; seed < 24; ++seed) {
        Random random(seed);
        const std::int32_t channels = seed % 4 == 0 ? 1 : 4;
        const ilTile box = flatTile(-100, 20, 300, 200);
        const Picture picture = makePicture(static_cast<Motif>(seed % 4), box, channels, random);
        const auto x = box.x + static_cast<std::int32_t>(between(random, 0, 299));
        const auto y = box.y + static_cast<std::int32_t>(between(random, 0, 199));
        const int tolerance = static_cast<int>(between(random, 0, 60));
        Picture open(box, 1, 0);
        for (std::int32_t py = box.y; py < box.endY(); ++py)
            for (std::int32_t px = box.x; px < box.endX(); ++px) {
                bool within = true;
                for (int c = 0; c < channels; ++c)
                    within =
                        within &&
                        std::abs(static_cast<int>(picture.at(px, py) >> 8 * c & 0xFF) -
                                 static_cast<int>(picture.at(x, y) >> 8 * c & 0xFF)) <= tolerance;
                open.set(px, py, within ? 1 : 0);
            }
        const FloodBox clip{box.x + 3, box.y, box.endX() - 1, box.endY() - 2};
        const Picture wanted = modelFlood(open, x, y, clip);

        const Ref<ilSmartImage> image = smartOf(picture);
        const Ref<ilSmartImage> selection = newMask();
        const auto source = makeFillSurface(*image);
        const auto target = makeFillSurface(*selection);
        FloodFillOperation wand(x, y, 1000, -77, static_cast<float>(tolerance) / 255.0f, white,
                                *source, *target, channels == 1, true);
        wand.fill(x, y, clip.left, clip.top, clip.right, clip.bottom, false);
        const auto got = bytesOf(*selection, flatTile(box.x + 1000, box.y - 77, box.nx, box.ny));
        for (std::size_t i = 0; i < got.size(); ++i)
            ASSERT_EQ(got[i], wanted.pixels[i] == 2 ? 255 : 0) << "seed " << seed << " at " << i;
        EXPECT_FALSE(wand.reachedEdge());
    }
}

// A colour within the tolerance of the target ends; one equal to it leaves nothing to do.
TEST(FloodFillOperation, FillsAnImageInPlace) {
    Picture picture(flatTile(0, 0, 300, 200), 4, greyWord(200));
    picture.fill(flatTile(150, 0, 1, 200), greyWord(90));
    for (const std::uint32_t level : {190U, 200U}) {
        const Ref<ilSmartImage> image = smartOf(picture);
        const auto surface = makeFillSurface(*image);
        const float value = static_cast<float>(level) / 255.0f;
        FloodFillOperation fill(10, 10, 0.1f, {value, value, value, 1.0f}, *surface, false);
        fill.fill(10, 10, 0, 0, 299, 199, false);
        EXPECT_EQ(image->getPixel(149, 199), greyWord(level));
        EXPECT_EQ(image->getPixel(150, 100), greyWord(90));
        EXPECT_EQ(image->getPixel(151, 100), greyWord(200));
        fill.fill(10, 400, 0, 0, 299, 199, false);  // outside the clip
        EXPECT_TRUE(fill.dirty().isEmpty());
    }
}

// The outside of a ring is filled without end; what the ring holds stays, unwritten places too.
TEST(FloodFillOperation, GoesOnOutsideTheClip) {
    const Ref<ilSmartImage> image(new ilSmartImage(ilPixel(TypeUChar, 4)));
    Picture ring(flatTile(-200, -200, 900, 900), 4, 0);
    ring.fill(ring.box, greyWord(0));
    const ilTile hole = flatTile(-190, -190, 880, 880);
    ring.fill(hole, 0);
    image->writeRegion(ring.box, ring.bytes().data(), ring.box);
    image->fillRegion(flatTile(128, 128, 256, 256), ilPixel(TypeUChar, 4));
    const auto surface = makeFillSurface(*image);
    FloodFillOperation fill(-230, -230, 0.0f, {1.0f, 0.0f, 0.0f, 1.0f}, *surface, false);
    fill.fill(-230, -230, -250, -250, 750, 750, false);
    EXPECT_FALSE(fill.reachedEdge());
    EXPECT_EQ(image->getPixel(-260, 0), 0U);

    FloodFillOperation endless(-230, -230, 0.0f, {0.0f, 1.0f, 0.0f, 1.0f}, *surface, false);
    endless.fill(-230, -230, -250, -250, 750, 750, true);
    EXPECT_TRUE(endless.reachedEdge());
    constexpr std::uint32_t green = 0xFF00FF00;
    EXPECT_EQ(image->getPixel(-230, -230), green);
    EXPECT_EQ(image->getPixel(-256, -256), green);
    EXPECT_EQ(image->getPixel(50000, -9000), green);
    EXPECT_EQ(image->getPixel(-200, 0), greyWord(0));
    EXPECT_EQ(image->getPixel(-180, 0), 0U);
    EXPECT_EQ(image->getPixel(200, 200), 0U);
}

// A surface over other images does the same, slower.
TEST(FillSurface, WorksOverAnyImage) {
    const Ref<ilSmartImage> smart = smartOf(Picture(flatTile(0, 0, 200, 200), 4, greyWord(9)));
    const auto a = makeFillSurface(*smart);
    const Ref<ilSPMemoryImg> memory(new ilSPMemoryImg(200, 200, 4));
    const auto b = makeFillSurface(*memory);
    ASSERT_TRUE(a && b);
    Random random(3);
    for (int i = 0; i < 3000; ++i) {
        const auto x = static_cast<std::int32_t>(between(random, 0, 199));
        const auto y = static_cast<std::int32_t>(between(random, 0, 199));
        const auto value = static_cast<std::uint32_t>(random());
        for (FillSurface* surface : {a.get(), b.get()}) {
            switch (value % 3) {
                case 0: surface->put(x, y, value); break;
                case 1: surface->putSpan(x, std::min(x + i % 60, 199), y, value); break;
                default: surface->put(199 - x, y, value ^ surface->get(x, y)); break;
            }
            EXPECT_FALSE(surface->isGrey());
        }
        if (i == 0)
            for (FillSurface* surface : {a.get(), b.get()})
                for (std::int32_t row = 0; row < 200; ++row) surface->putSpan(0, 199, row, 77);
        ASSERT_EQ(a->get(x, y), b->get(x, y)) << i;
    }
    for (std::int32_t y = 0; y < 200; ++y)
        for (std::int32_t x = 0; x < 200; ++x) ASSERT_EQ(a->get(x, y), b->get(x, y));
    EXPECT_EQ(packColor(0.5f, -1.0f, 2.0f, 1.0f), 0xFFFF0080U);
}

}  // namespace
}  // namespace brushwork::test
