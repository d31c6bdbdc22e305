#include <gtest/gtest.h>

#include "document/layer/layer_recipe.h"

namespace brushwork::test {
namespace {

TEST(LayerBake, KeepsTheLook) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        const Ref<Layer> layer = makeLayer(LayerRole::Paint, noise(4, anyBox(dice), dice));
        paintNoise(*layer->stencilImage(), anyBox(dice), dice);
        const Ref<Layer> above = makeLayer(LayerRole::Stencil, noise(1, anyBox(dice), dice));
        link({layer, above});
        const auto shown = bytesOf(layer->effectiveImage(nullptr, nullptr, true, true).get());
        layer->bakeStencil();
        layer->bakeClip();
        EXPECT_EQ(difference(bytesOf(layer->colorImageRef()), shown, 4), "");
        EXPECT_TRUE(boxOf(layer->stencilImage()).isEmpty());

        link({layer});
        layer->markClipDirty();
        layer->setOpacity(0.43f);
        const auto faded = bytesOf(layer->effectiveImage(nullptr, nullptr, true, true).get());
        layer->bakeOpacity();
        EXPECT_EQ(difference(bytesOf(layer->colorImageRef()), faded, 4), "");
        EXPECT_EQ(layer->opacity(), 1.0f);
    }
}

// A colour that isn't blank beyond its pixels is drawn there, too.
TEST(LayerBake, CountsTheFill) {
    Dice dice(3);
    for (const bool stencils : {false, true}) {
        const Ref<Layer> layer =
            makeLayer(LayerRole::Paint, noise(4, flatTile(10, 10, 50, 70), dice, 200));
        if (stencils) paintNoise(*layer->stencilImage(), flatTile(-100, 0, 130, 40), dice);
        layer->setOpacity(stencils ? 1.0f : 0.5f);
        const auto shown = bytesOf(layer->effectiveImage(&frame, nullptr, true, true).get());
        stencils ? layer->bakeStencil() : layer->bakeOpacity();
        EXPECT_EQ(difference(bytesOf(layer->colorImageRef()), shown, 4), "");
        EXPECT_EQ(layer->smartColor()->getPixel(5000, 5000), stencils ? 0xC8C8C8C8u : 0x64646464u);
    }
}

TEST(LayerBake, InvertsAMaskWithItsFill) {
    Dice dice(4);
    const Ref<ilSmartImage> color = noise(1, flatTile(-5, 3, 150, 60), dice, 40);
    const Ref<Layer> mask = makeLayer(LayerRole::Mask, color);
    const auto before = bytesOf(color.get());
    auto inverse = before;
    for (std::uint8_t& byte : inverse) byte = static_cast<std::uint8_t>(255 - byte);
    mask->invertMask();
    EXPECT_EQ(difference(bytesOf(color.get()), inverse, 1), "");
    mask->invertMask();
    EXPECT_EQ(difference(bytesOf(color.get()), before, 1), "");
    const Ref<Layer> stencil = makeLayer(LayerRole::Stencil, color);
    stencil->invertMask();
    EXPECT_EQ(bytesOf(color.get()), before);
}

}  // namespace
}  // namespace brushwork::test
