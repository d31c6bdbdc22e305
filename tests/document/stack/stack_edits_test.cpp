// Single edits of a stack where something else than the order could go wrong.
#include <gtest/gtest.h>

#include "document/layer/layer_numbers.h"
#include "document/layer/layer_recipe.h"
#include "document/layer/shape_layer.h"
#include "document/stack/layer_stack.h"
#include "foundation/services/log.h"

namespace brushwork::test {
namespace {

constexpr std::int32_t side = 64;
constexpr ilTile canvas = flatTile(0, 0, side, side);
constexpr std::uint32_t white = 0xFFFFFFFF, red = 0xFF0000FF, blue = 0xFFFF0000;

class StackEdits : public testing::Test {
  protected:
    StackEdits() : stack_(new LayerStack(0, 0, side, side)) {}

    std::int32_t add(std::uint32_t pixel, const ilTile& box = canvas,
                     LayerRole role = LayerRole::Paint) {
        const Ref<ilSmartImage> image = blank(role == LayerRole::Paint ? 4 : 1);
        image->fillRegion(box, ilPixel(TypeUChar, image->channels(), &pixel));
        stack::NewLayer layer;
        layer.color = image.get();
        layer.role = role;
        // An active stencil shows as its tint.
        layer.makeActive = role == LayerRole::Paint;
        return stack_->addLayer(layer);
    }
    std::uint32_t shown(std::int32_t x, std::int32_t y) {
        std::uint32_t pixel = 0;
        const ilTile place = flatTile(x, y, 1, 1);
        stack_->flatImage()->readRegion(place, &pixel, place);
        return pixel;
    }
    std::string nameOf(std::int32_t id) { return stack_->layerName(id).toUtf8(); }

    Ref<LayerStack> stack_;
};

// A stencil clips the paint layer that is below it at the time.
TEST_F(StackEdits, StencilsChangeTheirBase) {
    const std::int32_t lower = add(red);
    const std::int32_t stencil = add(255, flatTile(0, 0, 32, side), LayerRole::Stencil);
    EXPECT_EQ(shown(10, 10), white);
    const std::int32_t upper = add(blue);
    EXPECT_EQ(shown(10, 10), blue);
    const std::int32_t moved[] = {upper};
    stack::LayerMove move;
    move.toIndex = stack_->indexOfId(lower, true);
    ASSERT_TRUE(stack_->moveLayers(moved, move));
    EXPECT_EQ(shown(10, 10), red);
    EXPECT_EQ(shown(50, 10), blue);
    stack_->deleteLayer(*stack_->layerById(upper));
    EXPECT_EQ(stack_->layerById(stencil), nullptr) << "went with its base";
    EXPECT_EQ(shown(10, 10), red);
    const std::int32_t other = add(255, flatTile(0, 0, 32, side), LayerRole::Stencil);
    EXPECT_EQ(shown(10, 10), white);
    stack_->setVisible(other, false);
    EXPECT_EQ(shown(10, 10), red);
    stack_->setVisible(other, true);
    stack_->setPosition(other, 20.0f, 0.0f, false, true);
    EXPECT_EQ(shown(10, 10), red);
    EXPECT_EQ(shown(40, 10), white);
}

TEST_F(StackEdits, TheOnlyLayerStaysBlank) {
    const std::int32_t id = add(red);
    add(255, canvas, LayerRole::Stencil);
    stack_->deleteLayer(*stack_->layerById(id));
    EXPECT_EQ(stack_->layerCount(), 1);
    EXPECT_EQ(stack_->activeId(), id);
    EXPECT_TRUE(boxOf(stack_->activeLayer()->colorImageRef()).isEmpty());
    stack_->clearLayers();
    EXPECT_EQ(stack_->activeLayer(), nullptr);
    EXPECT_EQ(stack_->paintOps(), nullptr);
    stack::NewLayer shapes;
    shapes.shape = true;
    stack_->deleteLayer(*stack_->layerById(stack_->addLayer(shapes)));
    EXPECT_EQ(stack_->layerCount(), 1);
    ASSERT_NE(stack_->activeLayer(), nullptr);
    EXPECT_FALSE(stack_->activeLayer()->holdsShapes());
}

TEST_F(StackEdits, CopiesHaveNamesOfTheirOwn) {
    restartLayerNumbers();
    stack_ = Ref<LayerStack>(new LayerStack(0, 0, side, side));
    const std::int32_t id = stack_->addLayer({});
    EXPECT_EQ(nameOf(id), "PaintLayer-0");
    EXPECT_EQ(nameOf(stack_->duplicateLayer()), "PaintLayer-0-1");
    stack_->setActiveIndex(1, false, false, true);
    EXPECT_EQ(nameOf(stack_->duplicateLayer()), "PaintLayer-0-2");
    const std::string longName(300, 'x');
    stack_->setName(id, znString::IString(longName.c_str()));
    stack_->setActiveIndex(1, false, false, true);
    EXPECT_EQ(nameOf(stack_->duplicateLayer()), std::string(245, 'x') + "-1");
    // In a group, too.
    const std::int32_t both[] = {stack_->activeId()};
    ASSERT_NE(stack_->makeGroupFrom(both, false), noLayer);
    stack_->setActiveIndex(1, false, false, true);
    EXPECT_EQ(nameOf(stack_->duplicateLayer()), std::string(245, 'x') + "-2");
}

TEST_F(StackEdits, NewLayersGoIntoAGroupByItsNumbers) {
    const std::int32_t first = add(red);
    const std::int32_t second = add(red);
    const std::int32_t both[] = {first, second};
    const std::int32_t id = stack_->makeGroupFrom(both, false);
    stack_->setLabelColor(id, 5);
    stack_->setLocked(id, true);
    stack::NewLayer layer;
    layer.group = stack_->groupById(id);
    layer.at = 1;
    const std::int32_t between = stack_->addLayer(layer);
    layer.at = 0;
    const std::int32_t bottom = stack_->addLayer(layer);
    layer.at = activeOne;
    const std::int32_t aboveActive = stack_->addLayer(layer);
    const std::int32_t wanted[] = {bottom, aboveActive, first, between, second};
    for (std::int32_t n = 0; n < 5; ++n) EXPECT_EQ(stack_->groupChild(id, n + 1), wanted[n]);
    EXPECT_TRUE(stack_->layerById(between)->locked());
    EXPECT_EQ(stack_->layerById(between)->labelColor(), 5u);
    EXPECT_EQ(stack_->maxGroupDepth(id), 0);
    const std::int32_t inner[] = {between};
    stack_->makeGroupFrom(inner, false);
    EXPECT_EQ(stack_->maxGroupDepth(id), 1);
}

TEST_F(StackEdits, RasterMasksAreRefusedOnShapes) {
    stack::NewLayer layer;
    layer.shape = true;
    ASSERT_NE(stack_->addLayer(layer), noLayer);
    layer.shape = false;
    layer.role = LayerRole::Mask;
    EXPECT_EQ(stack_->addLayer(layer), noLayer);
    layer.role = LayerRole::Paint;
    const Ref<ilSmartImage> gray = blank(1, 7);
    layer.color = gray.get();
    EXPECT_EQ(stack_->addLayer(layer), noLayer) << "one channel makes a mask";
    layer.color = nullptr;
    EXPECT_NE(stack_->addLayer(layer), noLayer);
}

TEST_F(StackEdits, PlacesKeepTouchingTheCanvas) {
    const std::int32_t id = add(red, flatTile(5, 5, 10, 20));
    stack_->setPosition(id, 1000.0f, -1000.0f, false, false);
    ilTile box;
    stack_->layerById(id)->contentBounds(box, true);
    EXPECT_EQ(intersection(box, canvas), flatTile(side - 1, 0, 1, 1));
    stack_->setPosition(id, 1000.0f, -1000.0f, false, true);
    EXPECT_EQ(stack_->layerById(id)->offsetXInt(), 1000);
}

TEST_F(StackEdits, HidingOthersFollowsTheActiveLayer) {
    const std::int32_t lower = add(red);
    const std::int32_t upper = add(blue);
    stack_->parts().active.hideOthers = true;
    stack_->setActiveIndex(1, true, false, true);
    EXPECT_TRUE(stack_->layerById(lower)->visible());
    EXPECT_FALSE(stack_->layerById(upper)->visible());
    EXPECT_EQ(shown(1, 1), red);
    stack_->setActiveIndex(2, true, false, true);
    EXPECT_EQ(shown(1, 1), blue);
}

// A copy for undo shows the same, has the same ids, and shares nothing that edits change.
TEST_F(StackEdits, CopiesOfStacksStandAlone) {
    const std::int32_t id = add(red);
    const std::int32_t members[] = {add(blue, flatTile(0, 0, 20, 20))};
    const std::int32_t group = stack_->makeGroupFrom(members, true);
    stack_->selectAll(flatTile(1, 2, 3, 4));
    const Ref<LayerStack> copy(new LayerStack(*stack_));
    EXPECT_EQ(copy->activeId(), group);
    EXPECT_EQ(copy->selectionLayer()->id(), stack_->selectionLayer()->id());
    EXPECT_TRUE(copy->hasSelection());
    EXPECT_NE(copy->layerById(id), stack_->layerById(id));
    stack_->resetSelection();
    stack_->deleteLayer(*stack_->layerById(group));
    stack_->fillLayer({0, 0, 1, 1}, false);
    EXPECT_TRUE(copy->hasSelection());
    EXPECT_EQ(copy->layerCountTotal(true), 3);
    EXPECT_EQ(copy->layerById(id)->smartColor()->getPixel(40, 40), red);
    stack_->copyStackFrom(*copy);
    EXPECT_EQ(shown(10, 10), blue);
    EXPECT_EQ(stack_->activeId(), group);
}

TEST_F(StackEdits, ScaleWithTheirPlaces) {
    const std::int32_t id = add(red, flatTile(0, 0, 10, 10));
    stack_->setPosition(id, 8.0f, 4.0f, false, true);
    const Ref<LayerStack> twice(new LayerStack(0, 0, 2 * side, 2 * side));
    ASSERT_TRUE(twice->scaleFrom(*stack_, 2.0f, SampleMode::Bilinear));
    Layer& layer = *twice->layerById(id);
    EXPECT_EQ(layer.smartColor()->getPixel(30 - layer.offsetXInt(), 20 - layer.offsetYInt()), red);
    ilTile box;
    layer.tighten();
    layer.contentBounds(box, true);
    EXPECT_NEAR(box.x, 16, 1);
    EXPECT_NEAR(box.endX(), 36, 1);
    EXPECT_NEAR(box.y, 8, 1);
    EXPECT_FALSE(twice->scaleFrom(*stack_, 0.0f, SampleMode::Bilinear));
}

// Whatever the layers hold, and whether they may be moved: the picture stays.
TEST_F(StackEdits, TheOriginIsAbsorbedByEveryLayer) {
    Dice dice(1);
    const Ref<ilSmartImage> picture = noise(4, flatTile(10, 12, 30, 20), dice);
    const Ref<ShapeLayer> shapes(new ShapeLayer(ShapeLayerKind::Paint, picture.get(), 5, 6));
    add(blue, flatTile(0, 0, 20, 20));
    stack_->activeLayer()->setFlags(0x80);
    stack_->insertLayer(*shapes, false, activeOne, nullptr, false);
    const std::int32_t members[] = {stack_->activeId(), shapes->id()};
    stack_->setBlendMode(stack_->makeGroupFrom(members, true), 0);
    add(red, flatTile(2, 3, 4, 5));
    stack_->parts().plane.originX = 7;
    stack_->parts().plane.originY = -9;
    stack_->canvasBounds();
    stack_->redrawAll();
    const Ref<ilSPMemoryImg> before = stack_->flatImage();
    stack_->absorbOrigin();
    EXPECT_EQ(stack_->canvasBounds(), canvas);
    EXPECT_EQ(difference(bytesOf(stack_->flatImage().get(), canvas), bytesOf(before.get(), canvas),
                         4, canvas),
              "");
    EXPECT_EQ(shown(9, 1), blue);
}

// What nobody has painted is part of a layer that covers it.
TEST_F(StackEdits, ComposedAloneALayerKeepsItsGround) {
    const Ref<ilSmartImage> color = blank(4, 70);
    paintSolid(*color, flatTile(10, 10, 5, 5), {0, 0, 0, 255});
    stack::NewLayer layer;
    layer.color = color.get();
    layer.x = 20;
    const std::int32_t id = stack_->addLayer(layer);
    std::int32_t x = 1;
    std::int32_t y = 1;
    const Ref<ilSmartImage> image = stack_->composeToImage(id, &x, &y, true, false, false);
    EXPECT_EQ(std::pair(x, y), std::pair(0, 0));
    EXPECT_EQ(image->getPixel(side - 1, side - 1), 0x46464646u);
    EXPECT_EQ(image->getPixel(32, 12), 0xFF000000u);
}

// Nothing drawn is logged; a halo stays outside of what is drawn and closes holes.
TEST_F(StackEdits, ShrinkWrapGoesAroundThePicture) {
    stack_->addLayer({});
    std::string said;
    setLogSink([&](std::string_view text) { said += text; });
    stack_->shrinkWrap({0, 0, 1, 1}, 3.0f, 0.1f);
    setLogSink({});
    EXPECT_EQ(said, "ShrinkWrap -- empty bounds\n");
    const std::int32_t id = add(red, flatTile(20, 20, 20, 20));
    ilSmartImage& image = *stack_->layerById(id)->smartColor();
    image.fillRegion(flatTile(25, 25, 8, 8), ilPixel(TypeUChar, 4));
    stack_->shrinkWrap({0, 0, 1, 1}, 3.0f, 0.1f);
    EXPECT_EQ(image.getPixel(22, 22), red);
    EXPECT_EQ(image.getPixel(28, 28), blue);
    EXPECT_EQ(image.getPixel(19, 30), blue);
    EXPECT_EQ(image.getPixel(5, 30), 0u);
}

}  // namespace
}  // namespace brushwork::test
