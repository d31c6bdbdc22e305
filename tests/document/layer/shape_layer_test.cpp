#include "document/layer/shape_layer.h"

#include <gtest/gtest.h>

#include "document/layer/layer_group.h"
#include "document/layer/layer_numbers.h"
#include "document/layer/layer_recipe.h"
#include "shapes/shape_rig.h"

namespace brushwork::test {
namespace {

Ref<ShapeLayer> shapeLayer(ShapeLayerKind kind = ShapeLayerKind::Paint) {
    return Ref<ShapeLayer>(new ShapeLayer(kind, nullptr, 0, 0));
}

Ref<Shape> plainShape(TestShape* outline = nullptr) {
    return makeRef<Shape>(nullptr, outline, nullptr, nullptr);
}

// Bottom first.
void expectList(const ShapeLayer& layer, const std::vector<Shape*>& wanted) {
    std::vector<Shape*> upward, downward;
    for (Shape* each = layer.shapeAt(ShapeLayer::bottomShape); each; each = each->next())
        upward.push_back(each);
    for (Shape* each = layer.shapeAt(ShapeLayer::topShape); each; each = each->prev())
        downward.push_back(each);
    std::reverse(downward.begin(), downward.end());
    ASSERT_EQ(upward, wanted);
    ASSERT_EQ(downward, wanted);
    ASSERT_EQ(layer.shapeCount(), static_cast<std::int32_t>(wanted.size()));
    for (std::size_t n = 0; n < wanted.size(); ++n) {
        ASSERT_EQ(layer.shapeAt(static_cast<std::int32_t>(n) + 1), wanted[n]);
        ASSERT_EQ(layer.placeOf(*wanted[n]), static_cast<std::int32_t>(n) + 1);
        ASSERT_EQ(layer.shapeById(wanted[n]->id()), wanted[n]);
    }
}

TEST(ShapeLayer, AnySequenceKeepsTheList) {
    for (unsigned seed = 0; seed < 30; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        std::vector<Ref<Shape>> pool;
        for (int n = 0; n < 8; ++n) pool.push_back(plainShape());
        const Ref<ShapeLayer> layer = shapeLayer(), elsewhere = shapeLayer();
        const Ref<Shape> stranger = plainShape();
        elsewhere->addShape(*stranger, 0);
        std::vector<Shape*> model;
        for (int step = 0; step < 80; ++step) {
            Shape& shape = *pool[dice() % pool.size()];
            const auto at = std::find(model.begin(), model.end(), &shape);
            if (at != model.end()) {
                ASSERT_TRUE(layer->removeShape(shape));
                ASSERT_EQ(shape.owner(), nullptr);
                model.erase(at);
            } else {
                ASSERT_FALSE(layer->removeShape(shape));
                const int place = pick(dice, -1, 9);
                const auto size = static_cast<int>(model.size());
                ASSERT_EQ(layer->addShape(shape, place), shape.id());
                // Above the one asked for, else at the lower end.
                model.insert(model.begin() + (place >= 1 && place <= size ? place : 0), &shape);
                ASSERT_EQ(shape.owner(), layer.get());
            }
            expectList(*layer, model);
            ASSERT_TRUE(layer->shapesDirty());
        }
        ASSERT_FALSE(layer->removeShape(*stranger));
        ASSERT_EQ(elsewhere->shapeCount(), 1);
        const Ref<Layer> twin = layer->duplicate(), fresh = layer->clone();
        ASSERT_EQ(ShapeLayer::from(twin.get())->shapeCount(), layer->shapeCount());
        for (Shape* const shape : model) {
            ASSERT_NE(ShapeLayer::from(twin.get())->shapeById(shape->id()), nullptr);
            ASSERT_EQ(ShapeLayer::from(fresh.get())->shapeById(shape->id()), nullptr);
        }
    }
}

TEST(ShapeLayer, PlacesOfAnEmptyLayerAndKinds) {
    restartLayerNumbers();
    const Ref<ShapeLayer> paint = shapeLayer();
    const Ref<ShapeLayer> mask = shapeLayer(shapeLayerKind(1));
    const Ref<ShapeLayer> stencil = shapeLayer(shapeLayerKind(2));
    const Ref<ShapeLayer> warp = shapeLayer(shapeLayerKind(3));
    EXPECT_EQ(shapeLayerKind(-4), ShapeLayerKind::Paint);
    EXPECT_EQ(shapeLayerKind(4), ShapeLayerKind::Paint);
    EXPECT_STREQ(paint->name().narrow(), "PaintShapeLayer-0");
    EXPECT_STREQ(mask->name().narrow(), "MaskShapeLayer-1");
    EXPECT_STREQ(stencil->name().narrow(), "StencilShapeLayer-2");
    EXPECT_STREQ(warp->name().narrow(), "WarpShapeLayer-3");
    EXPECT_TRUE(mask->isMask());
    EXPECT_TRUE(stencil->isStencil());
    EXPECT_EQ(mask->colorImageRef()->channels(), 1);
    EXPECT_EQ(warp->colorImageRef()->channels(), 4);
    for (const std::int32_t place : {ShapeLayer::bottomShape, ShapeLayer::topShape, 0, 1, -1})
        EXPECT_EQ(paint->shapeAt(place), nullptr);
    EXPECT_EQ(ShapeLayer::from(paint.get()), paint.get());
    const Ref<Layer> plain = makeLayer(LayerRole::Paint, blank(4));
    EXPECT_EQ(ShapeLayer::from(plain.get()), nullptr);
    paint->setOffset(4.0f, 5.0f);
    paint->beginTransform(0, 0, true);
    EXPECT_EQ(paint->offsetXInt(), 0);
    EXPECT_FALSE(paint->inTransform());
}

TEST(ShapeLayer, ContentIsWhatVisibleShapesAndTheBackgroundCover) {
    const ShapeHost host;
    TestShape square, far;
    square.ring({{10, 20}, {50, 20}, {50, 60}, {10, 60}});
    far.ring({{500, 500}, {540, 500}, {540, 540}, {500, 540}});
    const Ref<ilSmartImage> under = blank(4);
    paintSolid(*under, flatTile(0, 0, 8, 8), {1, 2, 3, 255});
    const Ref<ShapeLayer> layer(new ShapeLayer(ShapeLayerKind::Paint, under.get(), -20, 5));
    const Ref<Shape> near = plainShape(&square), hidden = plainShape(&far), off = plainShape(&far);
    layer->addShape(*near, 0);
    layer->addShape(*hidden, 0);
    layer->addShape(*off, 0);
    hidden->setVisible(false);
    off->parms().fillActive = off->parms().strokeActive = false;
    ilTile box, shape;
    ASSERT_TRUE(near->bounds(shape));
    layer->contentBounds(box, true);
    EXPECT_EQ(box, unionOf(flatTile(-20, 5, 8, 8), shape));
    EXPECT_EQ(layer->warpSourcePlace().x, -20);
    EXPECT_EQ(layer->warpSource()->getPixel(0, 0), 0xFF030201u);
}

TEST(ShapeLayer, ShapesAreDrawnWhenAskedForAndStackUp) {
    const ShapeHost host;
    TestShape low, high;
    low.ring({{10, 10}, {60, 10}, {60, 60}, {10, 60}});
    high.ring({{40, 40}, {90, 40}, {90, 90}, {40, 90}});
    const Ref<ShapeLayer> layer = shapeLayer();
    const Ref<Shape> a = plainShape(&low), b = plainShape(&high);
    a->parms().fillColor = {1.0f, 0.0f, 0.0f, 1.0f};
    b->parms().fillColor = {0.0f, 0.0f, 1.0f, 1.0f};
    layer->addShape(*a, 0);
    layer->addShape(*b, ShapeLayer::topShape);
    EXPECT_TRUE(layer->shapesDirty());
    EXPECT_EQ(layer->smartColor()->getPixel(50, 50), 0xFFFF0000u);
    EXPECT_EQ(layer->smartColor()->getPixel(20, 20), 0xFF0000FFu);
    EXPECT_FALSE(layer->shapesDirty());
    layer->insertShape(*a, b.get());  // to the top
    EXPECT_EQ(layer->smartColor()->getPixel(50, 50), 0xFF0000FFu);
    a->setVisible(false);
    EXPECT_EQ(layer->smartColor()->getPixel(20, 20), 0u);
    layer->removeShape(*b);
    EXPECT_TRUE(boxOf(layer->colorImageRef()).isEmpty());
}

TEST(ShapeLayer, AGroupShowsAChangedShape) {
    const ShapeHost host;
    TestShape square;
    square.ring({{10, 10}, {60, 10}, {60, 60}, {10, 60}});
    const Ref<LayerGroup> group(new LayerGroup(znString::IString("g")));
    group->setBlendMode(0);
    const Ref<ShapeLayer> layer = shapeLayer();
    const Ref<Shape> shape = plainShape(&square);
    group->insertChild(*layer, 0);
    layer->addShape(*shape, 0);
    ilSmartImage* const cache = ilSmartImage::from(group->renderGroup({}).get());
    EXPECT_EQ(cache->getPixel(20, 20), 0xFF000000u);
    shape->parms().fillColor = {0.0f, 1.0f, 0.0f, 1.0f};
    shape->changed();
    ASSERT_EQ(group->renderGroup({}).get(), cache);
    EXPECT_EQ(cache->getPixel(20, 20), 0xFF00FF00u);
}

TEST(ShapeLayer, AMaskIsInvertedAsDrawn) {
    const ShapeHost host;
    TestShape square;
    square.ring({{10, 10}, {60, 10}, {60, 60}, {10, 60}});
    const Ref<ShapeLayer> layer = shapeLayer(ShapeLayerKind::Mask);
    const Ref<Shape> shape = plainShape(&square);
    layer->addShape(*shape, 0);
    EXPECT_EQ(layer->smartColor()->getPixel(20, 20), 255u);
    layer->invertMask();
    EXPECT_EQ(layer->smartColor()->getPixel(20, 20), 0u);
    EXPECT_EQ(layer->smartColor()->getPixel(200, 20), 255u);
    shape->changed();
    EXPECT_EQ(layer->smartColor()->getPixel(20, 20), 255u);
    EXPECT_EQ(layer->smartColor()->getPixel(200, 20), 0u);
}

}  // namespace
}  // namespace brushwork::test
