#include "shapes/shape.h"

#include <gtest/gtest.h>

#include <string>

#include "foundation/services/log.h"
#include "shapes/shape_rig.h"

namespace brushwork {
namespace {

using test::circle;
using test::ShapeHost;
using test::TestOwner;
using test::TestShape;

TEST(Shape, BoundsFollowWhatIsSwitchedOn) {
    const ShapeHost host;
    TestShape disc;
    disc.ring({{10, 20}, {50, 20}, {50, 60}, {10, 60}});
    const auto parms = makeRef<ShapeImageParms>();
    const Ref<Shape> shape = makeRef<Shape>(nullptr, &disc, nullptr, parms);
    ilTile box;
    EXPECT_TRUE(shape->bounds(box));
    EXPECT_EQ(box, flatTile(8, 18, 46, 46));
    parms->fillActive = false;
    EXPECT_FALSE(shape->bounds(box));
    EXPECT_TRUE(box.isEmpty());
    parms->strokeActive = true;
    parms->stroke.width = 20.0f;
    EXPECT_TRUE(shape->bounds(box));
    EXPECT_TRUE(box.contains(flatTile(0, 10, 60, 60)));
    // A warp's box is its grid's, whatever the switches.
    disc.line({{20, 30}, {40, 30}}).line({{20, 34}, {40, 30}});
    parms->strokeActive = false;
    parms->kind = ShapeKind::Warp;
    EXPECT_TRUE(shape->bounds(box));
    parms->kind = ShapeKind::Paint;
    EXPECT_FALSE(shape->bounds(box));
}

TEST(Shape, TheOwnerHearsOfChangesAndHiddenShapesDrawNothing) {
    const ShapeHost host;
    TestOwner owner;
    TestShape disc;
    disc.ring(circle(20, 20, 9, 30));
    const Ref<Shape> shape = makeRef<Shape>(&owner, &disc, nullptr, nullptr);
    const Ref<ilSmartImage> target = makeRef<ilSmartImage>(ilPixel(TypeUChar, 4));
    shape->setVisible(false);
    shape->setVisible(false);
    EXPECT_EQ(owner.changes, 1);
    shape->draw(target.get());
    EXPECT_EQ(target->getPixel(20, 20), 0u);
    shape->setVisible(true);
    shape->draw(target.get());
    EXPECT_EQ(target->getPixel(20, 20), 0xFF000000u);
    EXPECT_EQ(target->getPixel(60, 20), 0u);
    // An outline that moved shows where it is after it was told of.
    disc.curves.clear();
    disc.ring(circle(60, 20, 9, 30));
    shape->draw(target.get());
    EXPECT_EQ(target->getPixel(60, 20), 0u);
    shape->changed();
    EXPECT_EQ(owner.changes, 3);
    shape->draw(target.get());
    EXPECT_EQ(target->getPixel(60, 20), 0xFF000000u);
    shape->setOwner(nullptr);
    shape->changed();
    EXPECT_EQ(owner.changes, 3);
}

TEST(Shape, IdsHostValuesAndClones) {
    const ShapeHost host;
    static int asked = 0;
    hostCallTable().shapeDataCreated = [](void* data, std::int32_t value) -> void* {
        ++asked;
        return value == 0 ? static_cast<char*>(data) + 1 : nullptr;
    };
    char data[2];
    const Ref<Shape> plain = makeRef<Shape>(nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(asked, 0);
    EXPECT_EQ(plain->hostResult(), nullptr);
    const Ref<Shape> shape = makeRef<Shape>(nullptr, nullptr, data, nullptr);
    EXPECT_EQ(shape->hostResult(), data + 1);
    EXPECT_EQ(shape->id(), plain->id() + 1);
    shape->parms().opacity = 0.25f;
    shape->setVisible(false);
    const Ref<Shape> kept = shape->clone(Shape::Identity::Kept);
    const Ref<Shape> fresh = shape->clone(Shape::Identity::Fresh);
    EXPECT_EQ(kept->id(), shape->id());
    EXPECT_GT(fresh->id(), shape->id());
    EXPECT_EQ(fresh->parms().opacity, 0.25f);
    EXPECT_NE(&fresh->parms(), &shape->parms());
    EXPECT_FALSE(fresh->isVisible());
}

TEST(Shape, LongListsGoWithoutDeepRecursion) {
    const std::int32_t before = ShapeRenderer::liveCount();
    Ref<Shape> first;
    for (int n = 0; n < 20000; ++n) {
        Ref<Shape> shape = makeRef<Shape>(nullptr, nullptr, nullptr, nullptr);
        shape->setNext(std::move(first));
        first = std::move(shape);
    }
    EXPECT_EQ(ShapeRenderer::liveCount(), before + 60000);
    first.reset();
    EXPECT_EQ(ShapeRenderer::liveCount(), before);
}

TEST(Shape, LogsWhatItDrawsWhileTheHostAsks) {
    const ShapeHost host;
    hostCallTable().debugLevel = [] { return std::int32_t{0x2016}; };
    std::string all;
    setLogSink([&all](std::string_view text) { all += text; });
    {
        TestShape disc;
        disc.ring(circle(20, 20, 9, 30));
        const auto parms = makeRef<ShapeImageParms>();
        parms->strokeActive = true;
        const Ref<Shape> shape = makeRef<Shape>(nullptr, &disc, nullptr, parms);
        shape->draw(makeRef<ilSmartImage>(ilPixel(TypeUChar, 4)).get());
    }
    setLogSink({});
    for (const char* part : {"Creating shape Renderer - count = ", "Rendering Shape ",
                             " -- MaskDirty=1\n", "SID: Applying Fill Performance -- rect = ",
                             "SID: Rendering Stroke mask Performance -- Pts = 31, NumSplines = 1 ",
                             "Destroying shape Renderer - count = 0\n"})
        EXPECT_NE(all.find(part), std::string::npos) << part << "\n" << all;
}

}  // namespace
}  // namespace brushwork
