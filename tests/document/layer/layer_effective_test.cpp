#include <gtest/gtest.h>

#include <cmath>
#include <optional>

#include "blending/paint/soft_paint_ops.h"
#include "document/layer/layer_recipe.h"

namespace brushwork::test {
namespace {

std::uint8_t rounded(float opacity) {
    return static_cast<std::uint8_t>(std::lround(opacity * 255.0f));
}

// One pixel through the steps, and through nothing else.
struct StepModel {
    Layer::Drawing drawing;
    ilTile stencilBox;
    std::vector<std::uint8_t> color, stencil, clip;

    std::array<int, 4> pixel(int x, int y) const {
        const auto place = static_cast<std::size_t>((y - frame.y) * frame.nx + (x - frame.x));
        std::array<int, 4> p{};
        const LayerColor tint = drawing.role == LayerRole::Mask
                                    ? drawing.overlayColor
                                    : LayerColor{1.0f, 1.0f, 0.0f, 1.0f};
        const bool tinted = drawing.role != LayerRole::Paint;
        for (std::size_t c = 0; c < 4; ++c)
            p[c] = tinted ? partOf(static_cast<int>(tint[c] * 255.0f + 0.5f), color[place])
                          : color[4 * place + c];
        const float strength = tinted ? 0.5f : drawing.opacity;
        for (const float opacity : {strength, drawing.overlayOpacity})
            if (opacity < 0.998f)
                for (int& c : p) c = partOf(c, rounded(opacity));
        for (int& c : p) {
            if (holds(stencilBox, x, y)) c = partOf(c, stencil[place]);
            if (!clip.empty()) c = partOf(c, clip[place]);
        }
        return p;
    }

    std::vector<std::uint8_t> picture() const {
        std::vector<std::uint8_t> bytes;
        for (int y = frame.y; y < frame.endY(); ++y)
            for (int x = frame.x; x < frame.endX(); ++x)
                for (const int c : holds(drawing.box, x, y) ? pixel(x, y) : std::array<int, 4>{})
                    bytes.push_back(static_cast<std::uint8_t>(c));
        return bytes;
    }
};

float anyOpacity(Dice& dice) {
    static constexpr float some[] = {0.0f, 0.001f, 0.3f, 0.5f, 0.9979f, 0.998f, 1.0f, 1.0f};
    return some[pick(dice, 0, 7)];
}

TEST(LayerEffective, DrawsTheStepsOfAPlainModel) {
    for (unsigned seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        const auto role = static_cast<LayerRole>(pick(dice, 0, 2));
        const int channels = role == LayerRole::Paint ? 4 : 1;
        const Ref<Layer> layer = makeLayer(role, noise(channels, anyBox(dice), dice));
        const Ref<ilSmartImage> stencil = noise(1, anyBox(dice), dice, anyByte(dice));
        if (pick(dice, 0, 2) > 0) layer->setStencilImage(stencil.get());
        const Ref<Layer> above = makeLayer(LayerRole::Stencil, noise(1, anyBox(dice), dice));
        if (pick(dice, 0, 1) == 0) link({layer, above});
        layer->setOpacity(anyOpacity(dice));
        layer->setOverlayOpacity(anyOpacity(dice));
        layer->setOverlayColor({0.2f, anyOpacity(dice), 1.0f, 0.7f});
        const Ref<ilSmartImage> instead = noise(1, anyBox(dice), dice);
        ilImage* const override = pick(dice, 0, 3) == 0 ? instead.get() : nullptr;
        const std::optional<ilTile> box =
            pick(dice, 0, 3) == 0 ? std::nullopt : std::optional<ilTile>(anyBox(dice, 128));

        layer->refreshClip();
        StepModel model;
        model.drawing =
            layer->drawing(box ? *box : boxOf(layer->colorImageRef()), layer->opacity());
        if (override) model.drawing.stencil = override;
        model.stencilBox = boxOf(model.drawing.stencil);
        model.color = bytesOf(layer->colorImageRef());
        model.stencil = bytesOf(model.drawing.stencil);
        if (layer->clipImage() && role == LayerRole::Paint)
            model.clip = bytesOf(layer->clipImage());
        const auto before = bytesOf(layer->colorImageRef());
        const Ref<ilImage> drawn =
            layer->renderEffective(box ? &*box : nullptr, override, pick(dice, 0, 1) == 0);
        ASSERT_EQ(difference(bytesOf(drawn.get()), model.picture(), 4), "");
        ASSERT_EQ(bytesOf(layer->colorImageRef()), before);
    }
}

// Without a box nothing that a box would show is left out, wherever it lies.
TEST(LayerEffective, CoversWhatItsColourCovers) {
    for (unsigned seed = 0; seed < 100; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        const auto role = static_cast<LayerRole>(pick(dice, 0, 2));
        const Ref<ilSmartImage> color = blank(role == LayerRole::Paint ? 4 : 1, 90);
        if (pick(dice, 0, 2) > 0) paintNoise(*color, anyBox(dice), dice);
        const Ref<Layer> layer = makeLayer(role, color, 3.0f, -4.0f);
        if (pick(dice, 0, 1) == 0) paintNoise(*layer->stencilImage(), anyBox(dice), dice);
        const Ref<Layer> above = makeLayer(
            LayerRole::Stencil, noise(1, anyBox(dice), dice, pick(dice, 0, 1) == 0 ? 60 : 0));
        if (pick(dice, 0, 1) == 0) link({layer, above});
        layer->setOpacity(pick(dice, 0, 1) == 0 ? 0.6f : 1.0f);
        const auto wanted = bytesOf(layer->renderEffective(&frame, nullptr, true).get());
        const Ref<ilImage> all = layer->renderEffective(nullptr, nullptr, true);
        ASSERT_EQ(difference(bytesOf(all.get()), wanted, 4), "");
        // Placed copies leave the opacity to who shows them.
        layer->setOpacity(1.0f);
        const auto opaque = bytesOf(layer->renderEffective(&frame, nullptr, true).get());
        std::int32_t x = 0;
        std::int32_t y = 0;
        const Ref<ilImage> placed = layer->renderTransformed(TransformRecord(), &x, &y);
        if (role == LayerRole::Paint || boxOf(placed.get()).nx > 0) {
            ASSERT_EQ(difference(bytesOf(placed.get()), opaque, 4), "");
        }
        ASSERT_EQ(std::pair(x, y), std::pair(3, -4));
    }
}

TEST(LayerEffective, IsTheColourItselfWhereNothingAttenuates) {
    Dice dice(1);
    const ilTile box = flatTile(0, 0, 60, 60);
    const Ref<Layer> layer = makeLayer(LayerRole::Paint, noise(4, box, dice));
    const auto isItself = [&](const ilTile* part) {
        return layer->effectiveImage(part, nullptr, true, true).get() == layer->colorImageRef();
    };
    EXPECT_TRUE(isItself(nullptr));
    layer->setOpacity(0.998f);
    EXPECT_TRUE(isItself(nullptr));
    layer->setOpacity(0.9979f);
    EXPECT_FALSE(isItself(nullptr));
    layer->setOpacity(1.0f);
    paintSolid(*layer->stencilImage(), flatTile(20, 20, 5, 5), {0});
    EXPECT_FALSE(isItself(nullptr));
    const ilTile besides = flatTile(30, 30, 10, 10);
    EXPECT_TRUE(isItself(&besides));
    // A cleared stencil is no attenuation, though it once had pixels.
    layer->clearStencil();
    EXPECT_TRUE(isItself(nullptr));
    EXPECT_TRUE(layer->isEmptyMask());
    layer->stencilOutAll();
    const Ref<ilImage> hidden = layer->effectiveImage(nullptr, nullptr, true, true);
    EXPECT_EQ(bytesOf(hidden.get()), bytesOf(blank(4).get()));
}

TEST(LayerEffective, TakesTheOpacityOfPassThroughGroupsAround) {
    Dice dice(2);
    const Ref<Layer> layer = makeLayer(LayerRole::Paint, noise(4, flatTile(0, 0, 40, 40), dice));
    const Ref<FakeGroup> group(new FakeGroup(true));
    group->setOpacity(0.5f);
    layer->parent = group.get();
    const auto drawn = bytesOf(layer->effectiveImage(nullptr, nullptr, true, true).get());
    EXPECT_EQ(layer->effectiveImage(nullptr, nullptr, true, false).get(), layer->colorImageRef());
    layer->parent = nullptr;
    layer->setOpacity(0.5f);
    EXPECT_EQ(drawn, bytesOf(layer->effectiveImage(nullptr, nullptr, true, false).get()));
}

}  // namespace
}  // namespace brushwork::test
