#include <gtest/gtest.h>

#include <cmath>

#include "document/layer/layer_recipe.h"

namespace brushwork::test {
namespace {

// What the stencil layers above let through of the base, in the base's pixels, from their colours
// alone.
std::vector<std::uint8_t> clipModel(Layer& base) {
    std::vector<int> sum(static_cast<std::size_t>(frame.nx * frame.ny));
    struct Part {
        std::vector<std::uint8_t> bytes;
        int byte;
    };
    std::vector<Part> parts;
    for (Layer* layer = base.next.get(); layer && layer->role() != LayerRole::Paint;
         layer = layer->next.get()) {
        if (!layer->isStencil() || !layer->visible() || !layer->stencilActive() ||
            !(layer->opacity() > 0.002f))
            continue;
        const std::int32_t dx = layer->offsetXInt() - base.offsetXInt();
        const std::int32_t dy = layer->offsetYInt() - base.offsetYInt();
        const ilTile there = flatTile(frame.x - dx, frame.y - dy, frame.nx, frame.ny);
        const float opacity = layer->opacity();
        parts.push_back({bytesOf(layer->colorImageRef(), there),
                         opacity < 0.998f ? static_cast<int>(std::lround(opacity * 255.0f)) : 255});
    }
    std::vector<std::uint8_t> clip;
    for (int y = frame.y; y < frame.endY(); ++y)
        for (int x = frame.x; x < frame.endX(); ++x) {
            const auto place = static_cast<std::size_t>((y - frame.y) * frame.nx + x - frame.x);
            int held = 0;
            for (const Part& part : parts) {
                const int s = partOf(part.bytes[place], part.byte);
                held = s + partOf(held, 255 - s);
            }
            clip.push_back(static_cast<std::uint8_t>(255 - held));
        }
    return clip;
}

::testing::AssertionResult clipsAsTheModel(Layer& base) {
    base.refreshClip();
    const std::vector<std::uint8_t> wanted = clipModel(base);
    const std::vector<std::uint8_t> open(wanted.size(), 255);
    const std::string differs =
        difference(base.clipImage() ? bytesOf(base.clipImage()) : open, wanted, 1);
    if (!differs.empty()) return ::testing::AssertionFailure() << differs;
    if (wanted == open && base.clipImage())
        return ::testing::AssertionFailure() << "a clip image that lets all through";
    return ::testing::AssertionSuccess();
}

TEST(LayerClip, FollowsChainsThroughAnyChanges) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        std::vector<Ref<Layer>> layers;
        layers.push_back(makeLayer(LayerRole::Paint, noise(4, anyBox(dice), dice), 3.7f, -2.2f));
        const int count = pick(dice, 0, 4);
        for (int n = 0; n < count; ++n) {
            const auto role = static_cast<LayerRole>(pick(dice, 0, 5) == 0   ? 0
                                                     : pick(dice, 0, 3) == 0 ? 1
                                                                             : 2);
            const Ref<ilSmartImage> image =
                noise(role == LayerRole::Paint ? 4 : 1, anyBox(dice), dice,
                      pick(dice, 0, 7) == 0 && role == LayerRole::Stencil ? anyByte(dice)
                                                                          : std::uint8_t{0});
            layers.push_back(makeLayer(role, image, static_cast<float>(pick(dice, -20, 20)),
                                       static_cast<float>(pick(dice, -20, 20)) + 0.6f));
        }
        link(layers);
        Layer& base = *layers[0];
        ASSERT_TRUE(clipsAsTheModel(base));
        for (int step = 0; step < 8 && count > 0; ++step) {
            Layer& layer = *layers[static_cast<std::size_t>(pick(dice, 1, count))];
            switch (pick(dice, 0, 4)) {
                case 0: layer.setVisible(!layer.visible()); break;
                case 1: layer.setStencilActive(!layer.stencilActive()); break;
                case 2:
                    layer.setOpacity(std::array{1.0f, 0.4f, 0.002f, 0.0021f}[dice() % 4]);
                    break;
                case 3:
                    layer.setOffset(static_cast<float>(pick(dice, -30, 30)),
                                    layer.inheritedOpacity());
                    break;
                case 4:
                    paintNoise(*layer.colorImageRef(), anyBox(dice, 40), dice);
                    layer.markClipDirty();
                    break;
            }
            ASSERT_TRUE(clipsAsTheModel(base)) << "step " << step;
        }
    }
}

TEST(LayerClip, IsKeptUntilMarked) {
    const Ref<Layer> base = makeLayer(LayerRole::Paint, blank(4));
    const Ref<Layer> stencil = makeLayer(LayerRole::Stencil, blank(1));
    const Ref<Layer> mask = makeLayer(LayerRole::Mask, blank(1));
    link({base, mask, stencil});
    paintSolid(*stencil->colorImageRef(), flatTile(5, 5, 10, 10), {200});
    // Asked on any layer of the chain the base's is refreshed.
    stencil->refreshClip();
    ASSERT_NE(base->clipImage(), nullptr);
    EXPECT_EQ(stencil->clipImage(), nullptr);
    EXPECT_EQ(boxOf(base->clipImage()), flatTile(5, 5, 10, 10));
    const Ref<ilImage> kept(base->clipImage());
    mask->setOpacity(0.5f);
    base->refreshClip();
    EXPECT_EQ(base->clipImage(), kept.get());
    stencil->markClipDirty();
    base->refreshClip();
    EXPECT_NE(base->clipImage(), kept.get());
}

TEST(LayerClip, AStencilThatCoversAllHoldsBackWhatIsPaintedLater) {
    const Ref<Layer> base = makeLayer(LayerRole::Paint, blank(4));
    const Ref<Layer> stencil = makeLayer(LayerRole::Stencil, blank(1, 255));
    link({base, stencil});
    base->refreshClip();
    for (const int place : {10, 200}) {
        const ilTile box = flatTile(place, place, 30, 30);
        paintSolid(*base->smartColor(), box, {90, 60, 30, 255});
        const auto shown = bytesOf(base->wetComposite(box, nullptr, nullptr).get(), box);
        EXPECT_EQ(std::count(shown.begin(), shown.end(), 0), std::ssize(shown)) << place;
    }
}

TEST(LayerClip, AStencilThatCoversAllClipsABaseThatCoversAll) {
    const Ref<Layer> base = makeLayer(LayerRole::Paint, blank(4, 200), 5.0f, 7.0f);
    paintSolid(*base->smartColor(), flatTile(0, 0, 30, 30), {90, 60, 30, 255});
    const Ref<Layer> stencil = makeLayer(LayerRole::Stencil, blank(1, 155));
    paintSolid(*stencil->smartColor(), flatTile(300, 20, 40, 40), {0});
    link({base, stencil});
    const ilTile wide = flatTile(-400, -400, 1600, 1200);
    const auto shown = bytesOf(base->wetComposite(wide, nullptr, nullptr).get(), wide);
    const auto at = [&](int x, int y) {
        return shown[static_cast<std::size_t>(4 * ((y - wide.y) * wide.nx + x - wide.x))];
    };
    EXPECT_EQ(at(10, 10), partOf(90, 100));
    EXPECT_EQ(at(1000, 700), partOf(200, 100));
    EXPECT_EQ(at(300 - 5, 20 - 7), 200);
    EXPECT_FALSE(base->isEmptyMask());
    base->bakeClip();
    EXPECT_EQ(difference(bytesOf(base->colorImageRef(), wide), shown, 4, wide), "");
    EXPECT_EQ(base->smartColor()->getPixel(5000, 5000) & 255, partOf(200, 100));
}

}  // namespace
}  // namespace brushwork::test
