#include <gtest/gtest.h>

#include "blending/modes/blender_registry.h"
#include "document/layer/layer_recipe.h"
#include "image/cache/smart_image_cache.h"

namespace brushwork::test {
namespace {

constexpr std::int32_t modes[] = {0, 0, 1, 2, 3, 4, 8, 13, 15, 21, 22, 24, 33};

// A layer in the midst of a random stroke.
Ref<Layer> strokedLayer(Dice& dice) {
    const bool isMask = pick(dice, 0, 4) == 0;
    const int channels = isMask ? 1 : 4;
    Ref<Layer> layer =
        makeLayer(isMask ? LayerRole::Mask : LayerRole::Paint, noise(channels, anyBox(dice), dice),
                  static_cast<float>(pick(dice, -40, 40)), 7.9f);
    if (pick(dice, 0, 1) == 0) paintNoise(*layer->stencilImage(), anyBox(dice), dice);
    const bool onStencil = pick(dice, 0, 4) == 0;
    layer->setWet(noise(onStencil ? 1 : channels, anyBox(dice), dice).get(), pick(dice, -60, 60),
                  pick(dice, -60, 60));
    if (pick(dice, 0, 1) == 0)
        layer->setWetMask(noise(1, anyBox(dice), dice, anyByte(dice)).get(), pick(dice, -30, 30),
                          pick(dice, -30, 30));
    if (pick(dice, 0, 2) == 0)
        layer->setWetTexture(noise(1, anyBox(dice), dice, anyByte(dice)).get(), pick(dice, -9, 9),
                             pick(dice, -9, 9));
    layer->setWetBlend(modes[dice() % std::size(modes)]);
    layer->setWetOpacity(pick(dice, 0, 1) == 0 ? 1.0f : 0.37f);
    layer->setBlendFlags(dice() % 2);
    return layer;
}

TEST(LayerWet, TheCompositeShowsWhatTheCommitMakes) {
    for (unsigned seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        const Ref<Layer> layer = strokedLayer(dice);
        layer->setOpacity(0.3f);  // is left to whoever blends the composite
        // Blenders widen what they read to pages, once and for all.
        for (const Ref<ilImage>& image : {layer->wet().image, layer->wet().mask})
            if (ilSmartImage* const smart = ilSmartImage::from(image.get())) smart->growToPages(0);
        const auto colorBefore = bytesOf(layer->colorImageRef());
        const auto stencilBefore = bytesOf(layer->stencilImage());

        const Ref<Layer> committed = layer->clone();
        committed->commitWet();
        committed->clearWet();
        committed->setOpacity(1.0f);
        for (int n = 0; n < 4; ++n) {
            const ilTile box = n == 0 ? flatTile(0, -128, 128, 128) : anyBox(dice, 150);
            std::int32_t x = 0, y = 0;
            const Ref<ilImage> live = layer->wetComposite(box, &x, &y);
            const auto shown = bytesOf(live.get(), box);
            EXPECT_EQ(x, layer->offsetXInt());
            EXPECT_EQ(y, 7);
            const Ref<ilImage> after = committed->effectiveImage(&box, nullptr, true, true);
            ASSERT_EQ(difference(shown, bytesOf(after.get(), box), after->channels(), box), "");
        }
        ASSERT_EQ(bytesOf(layer->colorImageRef()), colorBefore);
        ASSERT_EQ(bytesOf(layer->stencilImage()), stencilBefore);
    }
}

TEST(LayerWet, MaskAndTextureLieWhereTheyWerePut) {
    const Ref<Layer> layer = makeLayer(LayerRole::Paint, blank(4));
    const Ref<ilSmartImage> wet = blank(4), mask = blank(1), texture = blank(1);
    paintSolid(*wet, flatTile(0, 0, 50, 50), {10, 20, 30, 255});
    paintSolid(*mask, flatTile(0, 0, 50, 50), {255});
    paintSolid(*texture, flatTile(0, 0, 50, 50), {255});
    layer->setWet(wet.get(), 100, 0);             // 100 to 149
    layer->setWetMask(mask.get(), 110, 5);        // 110 to 159, 5 to 54
    layer->setWetTexture(texture.get(), 90, -8);  // 90 to 139, -8 to 41
    layer->commitWet();
    for (const auto& [x, y, painted] : {std::tuple{110, 5, true},
                                        {139, 41, true},
                                        {109, 5, false},
                                        {110, 4, false},
                                        {140, 41, false},
                                        {139, 42, false}})
        EXPECT_EQ(layer->smartColor()->getPixel(x, y) != 0, painted) << x << ", " << y;
    EXPECT_EQ(layer->wet().image.get(), wet.get());
}

// A medium that works on the canvas paints a child of it. What the stroke only looked at, or only
// passed in its bounds, is neither copied nor walked.
TEST(LayerWet, ACommitCostsWhatTheStrokeTouched) {
    Dice dice(1);
    const Ref<Layer> layer =
        makeLayer(LayerRole::Paint, noise(4, flatTile(0, 0, 512, 512), dice), 0.0f, 0.0f);
    const auto before = bytesOf(layer->colorImageRef());
    const Ref<ilSmartImage> child(new ilSmartImage(layer->colorImageRef()));
    child->setPixel(200, 200, 0xFF0000FF);
    child->setPixel(-90000, 90000, 0xFF00FF00);
    static_cast<void>(child->getPixel(400, 400));
    layer->setWet(child.get(), 0, 0);
    layer->setWetBlend(static_cast<std::int32_t>(BlendModeId::Replace));
    const auto cloned = SmartImageCache::instance().counts().cloned;
    const Ref<ilSmartImage> kept = layer->smartColor()->clone();
    layer->commitWet();
    // The page of (200, 200), and far out a copy of the shared page of the fill.
    EXPECT_EQ(SmartImageCache::instance().counts().cloned - cloned, 2U);
    EXPECT_EQ(layer->smartColor()->getPixel(200, 200), 0xFF0000FFU);
    EXPECT_EQ(layer->smartColor()->getPixel(-90000, 90000), 0xFF00FF00U);
    EXPECT_EQ(layer->smartColor()->getPixel(400, 400), kept->getPixel(400, 400));
    EXPECT_EQ(bytesOf(kept.get()), before);
}

TEST(LayerWet, WithoutPaintInTheBoxTheColourIsShownAsItIs) {
    Dice dice(5);
    const Ref<Layer> layer = makeLayer(LayerRole::Paint, noise(4, flatTile(0, 0, 99, 99), dice));
    const ilTile tile = flatTile(0, 0, 128, 128);
    EXPECT_EQ(layer->wetComposite(tile, nullptr, nullptr).get(), layer->colorImageRef());
    const Ref<ilSmartImage> wet = blank(4);
    paintSolid(*wet, flatTile(300, 300, 9, 9), {9, 9, 9, 9});
    paintSolid(*wet, flatTile(-300, -300, 9, 9), {9, 9, 9, 9});
    layer->setWet(wet.get(), 0, 0);
    EXPECT_EQ(layer->wetComposite(tile, nullptr, nullptr).get(), layer->colorImageRef());
    // Pages between that hold no paint take no memory.
    const Ref<Layer> open = makeLayer(LayerRole::Paint, blank(4));
    open->setWet(wet.get(), 0, 0);
    open->commitWet();
    std::uint32_t value = 1;
    EXPECT_TRUE(open->smartColor()->isSolid(flatTile(-128, -128, 256, 256), value, false));
    EXPECT_NE(open->smartColor()->getPixel(301, 301), 0u);
    // A mode that is none draws nothing.
    open->setWetBlend(7);
    const auto before = bytesOf(open->colorImageRef());
    open->commitWet();
    EXPECT_EQ(bytesOf(open->colorImageRef()), before);
    EXPECT_EQ(open->wetComposite(tile, nullptr, nullptr).get(), open->colorImageRef());
}

}  // namespace
}  // namespace brushwork::test
