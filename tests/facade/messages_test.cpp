#include <gtest/gtest.h>

#include "facade/session_host.h"

namespace brushwork::test {
namespace {

const std::string fillText =
    "No image layer present. Please create a new Image Layer before using Floodfill.";

TEST(FacadeMessages, FillsAndWandWithoutACanvas) {
    SessionHost host;
    PaintManager manager;
    std::uint32_t pixel = 0;
    EXPECT_FALSE(manager.floodFill(1, 1, {}, 0.1f, -2, 7));
    EXPECT_FALSE(manager.continueFill(0.1f));
    EXPECT_FALSE(manager.sampleFill(1, 1, &pixel));
    EXPECT_EQ(host.messages, std::vector<std::string>(3, fillText));
    host.messages.clear();
    EXPECT_FALSE(manager.magicWand(1, 1, 0.1f));
    EXPECT_EQ(host.messages, std::vector<std::string>{
                                 "There is no image layer in the window. This happens when magic "
                                 "wand is done before an image layer has been created."});
    manager.newCanvas(50, 50);
    manager.newLayer();
    EXPECT_TRUE(manager.floodFill(1, 1, {1, 0, 0, 1}, 0.1f));
    manager.deleteLayer(77);
    EXPECT_EQ(host.messages.size(), 1u);
    EXPECT_TRUE(host.errors.empty());
}

TEST(FacadeMessages, ShapesThatCannotGoIntoALayer) {
    struct Case {
        std::int32_t layerKind;  // of the shape layer that is active
        std::int32_t kind;
        const char* text;
    };
    const Case cases[] = {
        {0, 1, "Cannot create shape mask into a shape layer.\n"},
        {2, 1, "Cannot create shape mask into a shape stencil layer.\n"},
        {3, 1, "Cannot create shape mask into a warp layer.\n"},
        {0, 2, "Cannot create shape stencil into a shape layer.\n"},
        {1, 2, "Cannot create shape stencil into a shape mask layer.\n"},
        {3, 2, "Cannot create shape stencil into a warp layer.\n"},
        {0, 3, "Cannot warp a shape or mask layer.\n"},
        {1, 3, "Cannot warp a shape or mask layer.\n"},
        {2, 3, "Cannot warp a shape or mask layer.\n"},
    };
    for (const Case& one : cases) {
        SessionHost host;
        PolylineCurve curve({{5, 5}, {40, 5}, {20, 40}}, PolylineCurve::Ends::Joined);
        PaintManager manager;
        host.manager = &manager;
        manager.newCanvas(60, 60);
        manager.newLayer();
        manager.newShapeLayer(-2, one.layerKind);
        const std::uint32_t records = host.undo.count();
        const std::int32_t layers = manager.layerCount();
        EXPECT_EQ(manager.addShape(one.kind, &curve, makeRef<ShapeImageParms>()), -1);
        EXPECT_EQ(host.errors, (std::vector<SessionHost::Error>{{-1, -1, 0x10, one.text}}));
        EXPECT_TRUE(host.messages.empty());
        EXPECT_EQ(host.undo.count(), records);
        EXPECT_EQ(manager.layerCount(), layers);
    }
}

TEST(FacadeSlots, GrowFrom512To768) {
    SessionHost host;
    PaintManager manager;
    EXPECT_EQ(manager.canvasCapacity(), 512);
    for (int n = 0; n < 512; ++n) ASSERT_EQ(manager.newCanvas(1, 1), n);
    EXPECT_EQ(manager.canvasCapacity(), 512);
    EXPECT_EQ(manager.newCanvas(1, 1), 512);
    EXPECT_EQ(manager.canvasCapacity(), 768);
    EXPECT_EQ(manager.canvasCount(), 513);
    EXPECT_TRUE(manager.closeCanvas(5));
    EXPECT_EQ(manager.newCanvas(1, 1), 5);
}

}  // namespace
}  // namespace brushwork::test
