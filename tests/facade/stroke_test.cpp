#include <gtest/gtest.h>

#include <limits>

#include "facade/document_state.h"
#include "facade/facade_state.h"
#include "facade/session_host.h"
#include "strokes/stroke/symmetry_stroke_renderer.h"

namespace brushwork::test {
namespace {

class StrokeFacade : public testing::Test {
  protected:
    StrokeFacade() {
        host_.manager = &manager_;
        manager_.newCanvas(200, 150);
        layer_ = manager_.newLayer();
        manager_.setBrush(brush(), StrokeParameters());
        manager_.clearUndo();
    }
    static BrushParameters brush() {
        BrushParameters brush = BrushParameters::defaults();
        brush.radiusLow = 2.0f;
        brush.radiusHigh = 10.0f;
        brush.opacityLow = brush.opacityHigh = 1.0f;
        return brush;
    }
    std::uint32_t pixel(std::int32_t x, std::int32_t y) {
        std::uint32_t value = 0;
        manager_.layerPixel(layer_, x, y, &value);
        return value;
    }
    void drag(float x0, float y0, float x1, float y1, float pressure = 1.0f) {
        for (int n = 0; n <= 8; ++n) {
            const float t = static_cast<float>(n) / 8.0f;
            manager_.addPoint({x0 + (x1 - x0) * t, y0 + (y1 - y0) * t, pressure});
        }
    }

    SessionHost host_;
    PaintManager manager_;
    std::int32_t layer_ = -1;
};

TEST_F(StrokeFacade, PointsAndEndsOutsideAStrokeDoNothing) {
    const DocumentState before = stateOf(manager_);
    manager_.addPoint({50.0f, 50.0f, 1.0f});
    manager_.endStroke();
    manager_.cancelStroke();
    EXPECT_EQ(differences(before, stateOf(manager_)), "");
    EXPECT_EQ(host_.undo.count(), 0u);
}

TEST_F(StrokeFacade, ASecondBeginChangesNothing) {
    ASSERT_TRUE(manager_.beginStroke());
    drag(20, 20, 80, 20);
    EXPECT_FALSE(manager_.beginStroke());
    drag(80, 20, 80, 80);
    manager_.endStroke();
    EXPECT_EQ(host_.undo.count(), 1u);
    EXPECT_NE(pixel(50, 20), 0u);
    EXPECT_NE(pixel(80, 60), 0u);
}

TEST_F(StrokeFacade, NoPressureCountsAsAHundredth) {
    const auto stroke = [&](float pressure) {
        manager_.beginStroke();
        drag(20, 20, 80, 60, pressure);
        manager_.endStroke();
        const std::string text = imageText(manager_.layerImage(layer_));
        host_.records().back()->undo(nullptr);
        host_.undo.drop(host_.records().back()->undoHandle());
        return text;
    };
    const std::string least = stroke(0.01f);
    EXPECT_EQ(stroke(0.0f), least);
    EXPECT_EQ(stroke(-5.0f), least);
    EXPECT_EQ(stroke(std::numeric_limits<float>::quiet_NaN()), least);
    EXPECT_NE(stroke(0.5f), least);
}

TEST_F(StrokeFacade, ATapIsADotAndUndoTakesItBack) {
    manager_.beginStroke();
    manager_.addPoint({60.0f, 70.0f, 1.0f});
    manager_.endStroke();
    EXPECT_NE(pixel(60, 70), 0u);
    ASSERT_EQ(host_.undo.count(), 1u);
    host_.records()[0]->undo(nullptr);
    EXPECT_EQ(pixel(60, 70), 0u);
    host_.records()[0]->redo(nullptr);
    EXPECT_NE(pixel(60, 70), 0u);
}

TEST_F(StrokeFacade, HiddenLockedGroupAndShapeLayersRefuse) {
    manager_.setVisible(layer_, false);
    EXPECT_FALSE(manager_.beginStroke());
    manager_.setVisible(layer_, true);
    manager_.newShapeLayer(-2, 0);
    EXPECT_FALSE(manager_.beginStroke());
    manager_.newGroup(u"G");
    EXPECT_FALSE(manager_.beginStroke());
    EXPECT_FALSE(manager_.inStroke());
}

// With and without a record, straight and through a wet image.
TEST_F(StrokeFacade, CancelLeavesTheDocumentAsItWas) {
    manager_.strokeLine(20, 20, 150, 120);
    manager_.clearUndo();
    for (const bool undo : {true, false})
        for (const int blend : {0, 1})
            for (const int kind : {0, 1, 2, 4, 6, 8, 9}) {
                manager_.setUndoEnabled(undo);
                manager_.setBrushBlend(blend);
                StrokeParameters stroke;
                stroke.brushKind = kind;
                manager_.setBrush(brush(), stroke);
                manager_.setColor({0.9f, 0.2f, 0.1f, 1.0f});
                const DocumentState before = stateOf(manager_);
                ASSERT_TRUE(manager_.beginStroke());
                drag(30, 110, 160, 30);
                manager_.cancelStroke();
                EXPECT_EQ(differences(before, stateOf(manager_)), "")
                    << "undo " << undo << " blend " << blend << " kind " << kind;
                EXPECT_EQ(host_.undo.count(), 0u);
                EXPECT_FALSE(manager_.inStroke());
            }
}

TEST_F(StrokeFacade, TheSelectionRestrictsAndSoftEdgesScale) {
    ImageRef mask = ImageRef::make(1);
    mask.fill(flatTile(0, 0, 100, 150), 255);
    mask.fill(flatTile(60, 0, 40, 150), 128);
    manager_.selectMask(mask, 0.0f, 0.0f);
    manager_.setColor({0.0f, 0.0f, 0.0f, 1.0f});
    manager_.strokeLine(10, 75, 190, 75);
    EXPECT_EQ(pixel(40, 75) >> 24, 255u);
    EXPECT_NEAR(static_cast<double>(pixel(80, 75) >> 24), 128.0, 1.0);
    EXPECT_EQ(pixel(130, 75), 0u);
}

TEST_F(StrokeFacade, TheEraserTakesAwayAndAMaskIsPaintedGray) {
    manager_.fillLayer({1.0f, 0.0f, 0.0f, 1.0f});
    StrokeParameters eraser;
    eraser.brushKind = 8;
    manager_.setBrush(brush(), eraser);
    manager_.strokeLine(20, 75, 180, 75);
    // Paint of 16 bits comes close to full coverage.
    EXPECT_LE(pixel(100, 75) >> 24, 1u);
    EXPECT_EQ(pixel(100, 20) >> 24, 255u);

    manager_.setBrush(brush(), StrokeParameters());
    layer_ = manager_.newMaskLayer();
    manager_.strokeLine(20, 40, 180, 40);
    EXPECT_EQ(pixel(100, 40), 255u);
    EXPECT_EQ(pixel(100, 80), 0u);
    manager_.setBrush(brush(), eraser);
    manager_.strokeLine(60, 40, 180, 40);
    EXPECT_LE(pixel(100, 40), 1u);
    EXPECT_EQ(pixel(30, 40), 255u);
    host_.records().back()->undo(nullptr);
    EXPECT_EQ(pixel(100, 40), 255u);
}

TEST_F(StrokeFacade, HooksRunOnceAndJitterGivesTheColorBack) {
    int begun = 0;
    int ended = 0;
    manager_.setStrokeHooks([&] { ++begun; }, [&] { ++ended; });
    manager_.setColor({0.25f, 0.5f, 0.75f, 1.0f});
    const auto before = manager_.color();
    manager_.setColorJitter(true, 50.0f, 50.0f, 50.0f);
    manager_.beginStroke();
    EXPECT_NE(manager_.color(), before);
    drag(20, 20, 60, 60);
    manager_.endStroke();
    manager_.beginStroke();
    manager_.cancelStroke();
    EXPECT_EQ(manager_.color(), before);
    EXPECT_EQ(begun, 2);
    EXPECT_EQ(ended, 2);
}

// A colour that is chosen while a stroke goes on is the next one's.
TEST_F(StrokeFacade, BrushesMayBeSetWithinAStroke) {
    for (const bool jitter : {false, true}) {
        manager_.setColor({0.25f, 0.5f, 0.75f, 1.0f});
        manager_.setColorJitter(jitter, 50.0f, 50.0f, 50.0f);
        manager_.beginStroke();
        drag(20, 20, 60, 60);
        manager_.setColor({1.0f, 0.0f, 0.0f, 1.0f});
        manager_.setColorJitter(!jitter, 10.0f, 10.0f, 10.0f);
        manager_.endStroke();
        EXPECT_EQ(manager_.color(), (std::array<float, 4>{1.0f, 0.0f, 0.0f, 1.0f}));
    }
}

// The hook of the host may turn to another layer, and to another hook.
TEST_F(StrokeFacade, AHookMayChooseTheLayer) {
    std::int32_t upper = -1;
    manager_.setStrokeHooks(
        [&] {
            upper = manager_.newLayer();
            manager_.setStrokeHooks({}, {});
        },
        {});
    ASSERT_TRUE(manager_.strokeLine(20, 20, 90, 70));
    EXPECT_EQ(pixel(55, 45), 0u);
    layer_ = upper;
    EXPECT_NE(pixel(55, 45), 0u);
    manager_.setStrokeHooks([&] { manager_.setVisible(upper, false); }, {});
    EXPECT_FALSE(manager_.beginStroke());
    EXPECT_FALSE(manager_.inStroke());
}

// Three by three red at each point, until the screen is drawn anew; never in the picture.
TEST_F(StrokeFacade, PointsAreMarkedOnTheScreenAlone) {
    constexpr std::uint32_t red = 0xff0000ffu;
    host_.debugLevel = 0x1f41;
    manager_.setColor({0.0f, 0.0f, 0.0f, 1.0f});
    manager_.beginStroke();
    drag(20, 40, 100, 40);
    const auto shown = [&](std::int32_t x, std::int32_t y) {
        std::uint32_t value = 0;
        manager_.canvasPixel(x, y, &value);
        return value;
    };
    manager_.endStroke();
    for (const std::int32_t x : {20, 30, 100}) {
        EXPECT_EQ(shown(x + 1, 41), red);
        EXPECT_EQ(shown(x - 1, 39), red);
        EXPECT_NE(shown(x + 2, 40), red);
        EXPECT_EQ(pixel(x, 40) & 0xffu, 0u);
    }
    host_.debugLevel = 0;
    manager_.refreshDisplay(-2);
    EXPECT_NE(shown(30, 40), red);
}

// Green over red on the left and blue on the right.
TEST_F(StrokeFacade, SmudgesCarryAndMarkersTintWhatIsThere) {
    ImageRef halves = ImageRef::make(4);
    halves.fill(flatTile(0, 0, 100, 150), 0xff0000ff);
    halves.fill(flatTile(100, 0, 100, 150), 0xffff0000);
    manager_.fillWithImage(halves);
    manager_.setColor({0.0f, 1.0f, 0.0f, 1.0f});
    const std::string before = imageText(manager_.layerImage(layer_));
    struct Color {
        std::uint32_t red, green, blue;
    };
    const auto at = [&](std::int32_t x) {
        const std::uint32_t value = pixel(x, 75);
        return Color{value & 0xff, value >> 8 & 0xff, value >> 16 & 0xff};
    };
    const auto stroke = [&](int kind, const auto& look) {
        StrokeParameters medium;
        medium.brushKind = kind;
        BrushParameters tip = brush();
        tip.markerStrength = 1.0f;
        manager_.setBrush(tip, medium);
        manager_.beginStroke();
        drag(60, 75, 150, 75);
        manager_.endStroke();
        look();
        EXPECT_EQ(pixel(80, 20), 0xff0000ffu);
        host_.records().back()->undo(nullptr);
        EXPECT_EQ(imageText(manager_.layerImage(layer_)), before);
    };
    stroke(1, [&] {
        EXPECT_LT(at(80).red, 128u) << "a marker lets through what both have";
        EXPECT_LT(at(80).green, 8u);
        EXPECT_LT(at(115).blue, 128u);
    });
    stroke(2, [&] {
        EXPECT_GT(at(115).red, 200u) << "a smudge takes along what lies where it began";
        EXPECT_GT(at(140).blue, at(115).blue + 50) << "and runs dry";
        EXPECT_LT(at(80).green + at(115).green, 8u);
    });
    stroke(3, [&] { EXPECT_GT(at(80).green, 200u) << "or begins with the brush's colour"; });
}

// Whatever the medium lays is taken from the clone's source.
TEST_F(StrokeFacade, ACloneTakesItsSourceInEveryPlainMedium) {
    ImageRef blue = ImageRef::make(4);
    blue.fill(flatTile(0, 0, 200, 150), 0xffff0000);
    manager_.fillWithImage(blue);
    const std::int32_t source = layer_;
    manager_.setColor({1.0f, 0.0f, 0.0f, 1.0f});
    for (const float flowJitter : {0.0f, 1.0f}) {
        StrokeParameters stroke;
        stroke.flowJitter = flowJitter;
        manager_.setBrush(brush(), stroke);
        manager_.setCloneSource(source, 0.0f, 0.0f);
        layer_ = manager_.newLayer();
        manager_.strokeLine(40, 70, 150, 70);
        EXPECT_EQ(pixel(90, 70) >> 16 & 0xff, pixel(90, 70) >> 24) << flowJitter;
        EXPECT_GT(pixel(90, 70) >> 24, 128u) << flowJitter;
        EXPECT_EQ(pixel(90, 70) & 0xffff, 0u) << flowJitter;
    }
    StrokeParameters eraser;
    eraser.brushKind = 8;
    manager_.setBrush(brush(), eraser);
    const std::int32_t nothing = manager_.newLayer();
    manager_.setCloneSource(nothing, 0.0f, 0.0f);
    manager_.setActiveLayer(layer_);
    manager_.strokeLine(40, 70, 150, 70);
    EXPECT_LE(pixel(90, 70) >> 24, 1u) << "it takes away, whatever the source";
}

// From where the last stroke stopped to where this one begins.
TEST_F(StrokeFacade, AStrokeMayGoOnFromTheOneBefore) {
    StrokeParameters stroke;
    stroke.interpolationKind = 0;
    manager_.setBrush(brush(), stroke);
    manager_.beginStroke();
    drag(20, 40, 60, 40);
    manager_.endStroke();
    stroke.interpolationKind = 3;
    manager_.setBrush(brush(), stroke);
    manager_.beginStroke();
    drag(120, 40, 150, 40);
    manager_.endStroke();
    EXPECT_NE(pixel(90, 40), 0u);
}

// What the felt took on in one stroke comes off in the next, unless it is wiped between them.
TEST_F(StrokeFacade, FeltStaysWetIfAsked) {
    ImageRef red = ImageRef::make(4);
    red.fill(flatTile(0, 0, 90, 150), 0xff0000ff);
    manager_.fillWithImage(red);
    const auto carried = [&](bool clear) {
        StrokeParameters stroke;
        stroke.brushKind = 4;
        stroke.clearPickupBuffers = clear;
        manager_.setBrush(brush(), stroke);
        for (const float x : {20.0f, 120.0f}) {
            manager_.beginStroke();
            drag(x, 75, x + 50, 75);
            manager_.endStroke();
        }
        const std::uint32_t laid = pixel(125, 75);
        for (int n = 0; n < 2; ++n) {
            host_.records().back()->undo(nullptr);
            host_.undo.drop(host_.records().back()->undoHandle());
        }
        return laid;
    };
    EXPECT_EQ(carried(true), 0u);
    EXPECT_NE(carried(false), 0u);
    manager_.clearUndo();
    EXPECT_EQ(carried(true), 0u);
}

// A host with a window, which writes down what it is told.
class Window {
  public:
    Window() {
        current_ = this;
        HostCallTable& table = hostCallTable();
        table.createCanvas = [](std::intptr_t, std::intptr_t) -> HostCanvas { return current_; };
        table.canvasSurface = [](HostCanvas) -> HostSurface { return current_; };
        table.surfaceSize = [](HostSurface, std::int32_t* width, std::int32_t* height) {
            *width = side;
            *height = side;
        };
        table.surfacePixels = [](HostSurface) -> void* { return current_->pixels_.data(); };
        table.presentSurface = [](HostSurface) { current_->told += "present "; };
        table.flushCanvas = [](HostCanvas) { current_->told += "flush "; };
        setUndoDatabase(&undo_);
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    ~Window() { setUndoDatabase(nullptr); }

    std::string told;

  private:
    class Database final : public PntUndoDatabase {
        bool add(PntUndoOper* record) override {
            current_->told += "filed ";
            return PntUndoDatabase::add(record);
        }
    };

    static constexpr std::int32_t side = 200;
    static inline Window* current_ = nullptr;
    std::vector<std::uint32_t> pixels_ = std::vector<std::uint32_t>(side * side);
    Database undo_;
};

// Every fifth point is shown, and so is the paint of a pen that rests.
TEST(StrokeWindow, TheHostIsToldInOrder) {
    SessionHost host;
    Window window;
    PaintManager manager;
    manager.newCanvas(200, 200);
    manager.newLayer();
    StrokeParameters stroke;
    stroke.airbrush = true;
    stroke.interpolationKind = 0;
    manager.setBrush(BrushParameters::defaults(), stroke);
    manager.setStrokeHooks([&] { window.told += "begin "; }, [&] { window.told += "end "; });
    window.told.clear();
    manager.beginStroke();
    for (int n = 0; n < 5; ++n) manager.addPoint({20.0f + 4.0f * static_cast<float>(n), 30, 1});
    EXPECT_EQ(window.told, "begin present flush ");
    window.told.clear();
    EXPECT_EQ(host.timers.size(), 1u) << "idle work waits for the end";
    host.ring();  // the pen rests
    for (int n = 0; n < 5; ++n) host.ring();
    EXPECT_EQ(window.told, "present flush ");
    window.told.clear();
    manager.endStroke();
    EXPECT_EQ(window.told, "present filed end ");
}

// About a centre of the document, wherever the layer lies; a painter for each copy if asked.
// A host's picture of the paper, wherever it lies, and one that is changed later.
TEST_F(StrokeFacade, TheGrainIsACopyOfTheHostsPicture) {
    const auto stroke = [&](const ImageRef& grain) {
        const auto paper = makeRef<BrushTextureParameters>();
        manager_.setBrushTexture(paper, grain);
        manager_.strokeLine(20, 60, 160, 60);
        const std::string text = imageText(manager_.layerImage(layer_));
        host_.records().back()->undo(nullptr);
        return text;
    };
    BrushParameters grainy = brush();
    grainy.textureEnabled = true;
    manager_.setBrush(grainy, StrokeParameters());
    std::vector<std::uint8_t> pixels(64, 255);
    for (std::size_t n = 0; n < pixels.size(); n += 3) pixels[n] = 40;
    const std::string plain = stroke({});
    const ImageRef wrapped = ImageRef::wrap(pixels.data(), 8, 8, 1);
    const std::string grained = stroke(wrapped);
    EXPECT_NE(grained, plain);
    ImageRef sparse = ImageRef::make(1);
    ASSERT_TRUE(sparse.write(flatTile(-30, 500, 8, 8), pixels.data()));
    EXPECT_EQ(stroke(sparse), grained);
    EXPECT_EQ(stroke(ImageRef::make(1)), plain);
    EXPECT_EQ(stroke(ImageRef::make(4)), plain);
    const auto paper = makeRef<BrushTextureParameters>();
    manager_.setBrushTexture(paper, wrapped);
    pixels.assign(64, 0);
    manager_.strokeLine(20, 60, 160, 60);
    EXPECT_EQ(imageText(manager_.layerImage(layer_)), grained);
}

TEST_F(StrokeFacade, SymmetryIsThatOfTheDocument) {
    constexpr std::uint32_t red = 0xFF0000FF;
    manager_.setColor({1.0f, 0.0f, 0.0f, 1.0f});
    manager_.setPosition(layer_, 20.0f, 10.0f);
    for (const bool separate : {false, true}) {
        manager_.clearLayer();
        const auto symmetry = makeRef<Symmetry>();
        symmetry->setRotateOnly(true);
        symmetry->setSectorCount(4);
        symmetry->setCenter(100.0f, 75.0f);
        symmetry->setSeparateRenderers(separate);
        manager_.setSymmetry(symmetry);
        ASSERT_TRUE(manager_.beginStroke());
        drag(120.0f, 80.0f, 140.0f, 80.0f);
        const auto renderer = std::dynamic_pointer_cast<npc::SymmetryStrokeRenderer>(
            manager_.state().stroke.renderer);
        ASSERT_TRUE(renderer);
        EXPECT_EQ(renderer->children().size(), separate ? 4u : 1u);
        manager_.endStroke();
        // The pen, then what it comes to by quarter turns, in pixels of the layer.
        for (const auto& [x, y] : {std::pair(130, 80), {95, 105}, {70, 70}, {105, 45}})
            EXPECT_EQ(pixel(x - 20, y - 10), red) << x << ", " << y;
        EXPECT_NE(pixel(130 - 20, 60 - 10), red);
    }
}

TEST_F(StrokeFacade, UndoOffMakesNoRecord) {
    manager_.lockUndo(true);
    manager_.strokeLine(10, 10, 90, 90);
    manager_.lockUndo(false);
    manager_.setUndoEnabled(false);
    manager_.newLayer();
    manager_.selectAll();
    EXPECT_EQ(host_.undo.count(), 0u);
    manager_.setUndoEnabled(true);
    manager_.selectNone();
    EXPECT_EQ(host_.undo.count(), 1u);
}

}  // namespace
}  // namespace brushwork::test
