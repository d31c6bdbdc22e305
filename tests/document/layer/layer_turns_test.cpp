#include <gtest/gtest.h>

#include "document/layer/layer_recipe.h"
#include "foundation/services/log.h"

namespace brushwork::test {
namespace {

// Beyond what a turn in place can reach from the boxes used here.
constexpr ilTile wide = flatTile(-512, -512, 1024, 1024);

// A picture as a plain list of pixels, by place.
class Picture {
  public:
    explicit Picture(ilImage* image) : channels_(image->channels()), bytes_(bytesOf(image, wide)) {}
    Picture(int channels, std::uint8_t fill)
        : channels_(channels),
          bytes_(static_cast<std::size_t>(wide.nx * wide.ny * channels), fill) {}

    [[nodiscard]] std::uint8_t& at(int x, int y, int channel) {
        return bytes_[static_cast<std::size_t>(((y - wide.y) * wide.nx + x - wide.x) * channels_ +
                                               channel)];
    }
    // Every pixel of the box goes to where `place` sends it; all else is `fill`.
    template <class Place>
    [[nodiscard]] Picture moved(const ilTile& box, std::uint8_t fill, const Place& place) {
        Picture result(channels_, fill);
        for (int y = box.y; y < box.endY(); ++y)
            for (int x = box.x; x < box.endX(); ++x) {
                const auto [toX, toY] = place(x, y);
                for (int c = 0; c < channels_; ++c) result.at(toX, toY, c) = at(x, y, c);
            }
        return result;
    }
    [[nodiscard]] std::string differenceFrom(const Picture& other) const {
        return difference(bytes_, other.bytes_, channels_, wide);
    }

  private:
    int channels_;
    std::vector<std::uint8_t> bytes_;
};

// Corners that aren't the fill, so that the box is the tight one.
Ref<ilSmartImage> anyPicture(Dice& dice, int channels, std::uint8_t fill) {
    Ref<ilSmartImage> image = blank(channels, fill);
    for (int n = pick(dice, 1, 3); n > 0; --n) paintNoise(*image, anyBox(dice), dice);
    if (pick(dice, 0, 2) == 0) paintSolid(*image, flatTile(-128, 0, 128, 128), {200, 100, 50, 201});
    return image;
}

struct Logged {
    Logged() {
        setLogSink([this](std::string_view text) { lines.emplace_back(text); });
    }
    ~Logged() { setLogSink({}); }
    std::vector<std::string> lines;
};

TEST(LayerTurns, AFlipMirrorsThePictureInItsBox) {
    const Logged logged;
    for (unsigned seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        const int channels = seed % 4 == 0 ? 1 : 4;
        const std::uint8_t fill = seed % 8 == 0 ? 255 : 0;
        const Ref<Layer> layer = makeLayer(channels == 1 ? LayerRole::Mask : LayerRole::Paint,
                                           anyPicture(dice, channels, fill),
                                           static_cast<float>(pick(dice, -60, 60)), -9.5f);
        layer->bakeOffset();
        layer->smartColor()->shrinkBounds(true);
        const ilTile box = boxOf(layer->colorImageRef());
        Picture before(layer->colorImageRef());
        const Ref<ilSmartImage> untouched = layer->smartColor()->clone();
        const bool horizontal = pick(dice, 0, 1) == 0;
        const Picture wanted = before.moved(box, fill, [&](int x, int y) {
            return horizontal ? std::pair(box.x + box.endX() - 1 - x, y)
                              : std::pair(x, box.y + box.endY() - 1 - y);
        });
        layer->flipImage(horizontal, !horizontal);
        ASSERT_EQ(Picture(layer->colorImageRef()).differenceFrom(wanted), "");
        ASSERT_EQ(boxOf(layer->colorImageRef()), box);
        ASSERT_EQ(Picture(untouched.get()).differenceFrom(before), "");
        layer->flipImage(horizontal, !horizontal);
        ASSERT_EQ(Picture(layer->colorImageRef()).differenceFrom(before), "");
    }
    EXPECT_TRUE(logged.lines.empty()) << logged.lines.front();
}

TEST(LayerTurns, ACallForBothAxesLeavesTheLaterOne) {
    Dice dice(5);
    const Ref<Layer> layer = makeLayer(LayerRole::Paint, noise(4, flatTile(-7, 3, 150, 140), dice));
    const Ref<Layer> twin = layer->clone();
    layer->flipImage(true, true);
    twin->flipImage(true, false);
    EXPECT_EQ(Picture(layer->colorImageRef()).differenceFrom(Picture(twin->colorImageRef())), "");
}

TEST(LayerTurns, BakesWhatLiesOverThePixels) {
    Dice dice(11);
    const ilTile box = flatTile(-20, 5, 90, 77);
    const Ref<ilSmartImage> color = noise(4, box, dice);
    const Ref<Layer> layer = makeLayer(LayerRole::Paint, color, 40.7f, -30.2f);
    paintSolid(*layer->stencilImage(), flatTile(0, 20, 30, 30), {0});
    Picture before(color.get());
    for (int y = 20; y < 50; ++y)
        for (int x = 0; x < 30; ++x)
            for (int c = 0; c < 4; ++c) before.at(x, y, c) = 0;
    layer->flipImage(true, false);
    const Picture wanted = before.moved(
        box, 0, [&](int x, int y) { return std::pair(40 + box.x + box.endX() - 1 - x, y - 30); });
    EXPECT_EQ(Picture(layer->colorImageRef()).differenceFrom(wanted), "");
    EXPECT_EQ(layer->offsetXInt(), 0);
    EXPECT_TRUE(boxOf(layer->stencilImage()).isEmpty());
}

// About the lower left corner of the pages that the picture touches.
TEST(LayerTurns, AQuarterTurnsWholePages) {
    const Logged logged;
    for (unsigned seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        const int channels = seed % 4 == 0 ? 1 : 4;
        const Ref<Layer> layer = makeLayer(channels == 1 ? LayerRole::Mask : LayerRole::Paint,
                                           anyPicture(dice, channels, 0), 12.0f, 3.0f);
        layer->tighten();
        Picture before(layer->colorImageRef());
        const ilTile box = boxOf(layer->colorImageRef());
        const int left = box.x & ~127, bottom = box.y & ~127;
        const int width = ((box.endX() + 127) & ~127) - left;
        const int height = ((box.endY() + 127) & ~127) - bottom;
        const bool other = pick(dice, 0, 1) == 0;
        const Picture wanted = before.moved(box, 0, [&](int x, int y) {
            return other ? std::pair(left + y - bottom, bottom + width - 1 - (x - left))
                         : std::pair(left + height - 1 - (y - bottom), bottom + x - left);
        });
        layer->rotateImage(other);
        ASSERT_EQ(Picture(layer->colorImageRef()).differenceFrom(wanted), "");
        const ilTile turned = boxOf(layer->colorImageRef());
        ASSERT_EQ(turned.nx, box.ny);
        ASSERT_EQ(turned.ny, box.nx);
        for (int n = 0; n < 3; ++n) layer->rotateImage(other);
        ASSERT_EQ(Picture(layer->colorImageRef()).differenceFrom(before), "");
        ASSERT_EQ(boxOf(layer->colorImageRef()), box);
        ASSERT_EQ(layer->offsetXInt(), 12);
    }
    EXPECT_TRUE(logged.lines.empty()) << logged.lines.front();
}

TEST(LayerTurns, NothingToTurnIsLeftAlone) {
    const Ref<Layer> layer = makeLayer(LayerRole::Paint, blank(4), 5.0f, 6.0f);
    layer->flipImage(true, true);
    layer->rotateImage(false);
    EXPECT_TRUE(boxOf(layer->colorImageRef()).isEmpty());
    EXPECT_EQ(layer->offsetXInt(), 0);  // baked
}

// Pages are mirrored in place; what may not be moved back stays where that leaves it.
TEST(LayerTurns, ALayerThatMayNotMoveIsTold) {
    Dice dice(6);
    const Ref<ilSmartImage> color = noise(4, flatTile(3, 4, 50, 60), dice);
    constexpr std::uint32_t fixed = 0x80;
    const Ref<Layer> layer(new Layer(color.get(), nullptr, LayerRole::Paint, fixed, 0.0f, 0.0f));
    layer->smartColor()->shrinkBounds(true);
    const ilTile box = boxOf(layer->colorImageRef());
    Picture before(layer->colorImageRef());
    const Logged logged;
    layer->flipImage(true, false);
    const Picture wanted = before.moved(box, 0, [](int x, int y) { return std::pair(127 - x, y); });
    EXPECT_EQ(Picture(layer->colorImageRef()).differenceFrom(wanted), "");
    const auto told = [](const char* which, const ilTile& is) {
        return "LayerFlip -- " + std::string(which) + " bounds are " + std::to_string(is.x) + ", " +
               std::to_string(is.y) + ", " + std::to_string(is.nx) + ", " + std::to_string(is.ny) +
               "\n";
    };
    EXPECT_EQ(logged.lines, (std::vector<std::string>{"\nError!\n", told("Original", box),
                                                      told("New", boxOf(layer->colorImageRef()))}));
}

TEST(LayerTurns, OffsetAndOriginMoveThePixelsAndNotWhatIsSeen) {
    for (unsigned seed = 0; seed < 20; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        const int x = pick(dice, -130, 130), y = pick(dice, -130, 130);
        const Ref<Layer> layer =
            makeLayer(LayerRole::Paint, anyPicture(dice, 4, 0), static_cast<float>(x) + 0.0f,
                      static_cast<float>(y) + 0.0f);
        paintSolid(*layer->stencilImage(), anyBox(dice), {77});
        layer->tighten();
        Picture color(layer->colorImageRef()), stencil(layer->stencilImage());
        const ilTile box = boxOf(layer->colorImageRef());
        layer->normalizeOrigin();
        const ilTile normal = boxOf(layer->colorImageRef());
        EXPECT_EQ(normal, flatTile(0, 0, box.nx, box.ny));
        EXPECT_EQ(layer->offsetXInt(), x + box.x);
        layer->bakeOffset();
        EXPECT_EQ(layer->offsetXInt(), 0);
        EXPECT_EQ(layer->offsetYInt(), 0);
        const auto shift = [&](int px, int py) { return std::pair(px + x, py + y); };
        ASSERT_EQ(Picture(layer->colorImageRef()).differenceFrom(color.moved(box, 0, shift)), "");
        const Picture wanted = stencil.moved(
            boxOf(layer->stencilImage()).isEmpty() ? ilTile{} : flatTile(-300, -300, 600, 600), 255,
            shift);
        ASSERT_EQ(Picture(layer->stencilImage()).differenceFrom(wanted), "");
    }
}

}  // namespace
}  // namespace brushwork::test
