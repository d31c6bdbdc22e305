// Which records the families file, and what switches, notes and prints them.
#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "document/layer/layer.h"
#include "facade/document_state.h"
#include "facade/facade_state.h"
#include "facade/session_host.h"
#include "foundation/services/log.h"
#include "foundation/services/settings.h"
#include "image/smart/il_smart_image.h"
#include "platform/environment.h"
#include "undo/pnt_undo_combo.h"

namespace brushwork::test {
namespace {

class FiledRecords : public testing::Test {
  protected:
    FiledRecords() {
        host_.manager = &manager_;
        manager_.newCanvas(120, 90);
        layer_ = manager_.newLayer();
        manager_.strokeLine(20, 20, 90, 70);
        manager_.clearUndo();
    }
    // The names of what the edit filed: one of a combination in brackets.
    template <class Edit>
    std::string filed(const Edit& edit) {
        const std::uint32_t before = host_.undo.count();
        edit();
        std::string names;
        std::uint32_t place = 0;
        for (const Ref<PntUndoOper>& record : host_.records())
            if (place++ >= before) names += (names.empty() ? "" : " ") + nameOf(*record);
        return names;
    }
    static std::string nameOf(PntUndoOper& record) {
        const auto* const combo = dynamic_cast<PntUndoCombo*>(&record);
        if (!combo) return record.primaryName();
        std::string names;
        for (const auto& child : combo->children())
            names += (names.empty() ? "" : " ") + nameOf(*child);
        return "[" + names + "]";
    }
    std::int32_t addShape(std::int32_t kind = 0) {
        return manager_.addShape(kind, &curve_, makeRef<ShapeImageParms>());
    }
    // Undone, done again and undone, it comes to the state from before each time.
    template <class Edit>
    void expectExact(const Edit& edit) {
        const DocumentState before = stateOf(manager_);
        edit();
        const DocumentState after = stateOf(manager_);
        const Ref<PntUndoOper> record = host_.records().back();
        for (int n = 0; n < 2; ++n) {
            record->undo(nullptr);
            EXPECT_EQ(differences(before, stateOf(manager_)), "");
            record->redo(nullptr);
            EXPECT_EQ(differences(after, stateOf(manager_)), "");
        }
        record->undo(nullptr);
    }

    SessionHost host_;
    PolylineCurve curve_{{{15, 15}, {80, 20}, {40, 70}}, PolylineCurve::Ends::Joined};
    PaintManager manager_;
    std::int32_t layer_ = -1;
};

TEST_F(FiledRecords, OfRemovalsHoldTheStackAndThePixels) {
    const std::string both = "[SidLayerStack SidStroke SidStroke]";
    const std::int32_t upper = manager_.newLayer();
    const std::int32_t ids[] = {layer_, upper};
    const auto undo = [&] { host_.records().back()->undo(nullptr); };
    EXPECT_EQ(filed([&] { manager_.mergeDown(upper); }), both);
    undo();
    EXPECT_EQ(filed([&] { manager_.mergeVisible(); }), both);
    undo();
    EXPECT_EQ(filed([&] { manager_.flattenAll(-2, false); }), both);
    undo();
    EXPECT_EQ(filed([&] { manager_.clearLayers(-2); }), both);
    undo();
    EXPECT_EQ(filed([&] { manager_.deleteLayer(upper); }), "[SidLayerStack SidStroke]");
    undo();
    const std::int32_t group = manager_.makeGroupFrom(ids);
    manager_.newLayer(8);
    EXPECT_EQ(filed([&] { manager_.flattenGroup(group); }), both);
    EXPECT_EQ(filed([&] { manager_.mergeVisible(true); }), "") << "a dry run";
    EXPECT_EQ(filed([&] { manager_.loadMaskImage(ImageRef::make(1), 3, 4); }),
              "[SidLayerStack SidStroke]");
}

TEST_F(FiledRecords, OfShapesNameWhereTheyWentInAndOut) {
    EXPECT_EQ(filed([&] { addShape(1); }), "[SidShapeAdd SidLayerStack]");
    EXPECT_EQ(filed([&] { addShape(1); }), "SidShapeAdd");
    EXPECT_EQ(filed([&] { addShape(2); }), "");
    manager_.setActiveLayer(layer_);
    std::int32_t shape = -1;
    EXPECT_EQ(filed([&] { shape = addShape(); }), "[SidShapeAdd SidLayerStack]");
    EXPECT_EQ(filed([&] { manager_.moveShape(shape, 4, 2); }), "[SidShapeAdd SidShapeDelete]");
    EXPECT_EQ(filed([&] { manager_.shapeChanged(shape); }), "");
    EXPECT_EQ(filed([&] { manager_.deleteShape(shape); }), "SidShapeDelete");
}

// The curves are the host's: every copy of the shape shows them.
TEST_F(FiledRecords, AMovedShapeComesBackWithItsCurvesAndCopies) {
    manager_.setActiveLayer(layer_);
    const std::int32_t shape = addShape();
    const std::int32_t copy = manager_.duplicateLayer();
    EXPECT_TRUE(manager_.shapeById(shape)) << "known by its id whatever was recorded since";
    EXPECT_EQ(manager_.shapeCount(copy), 1);
    expectExact([&] { ASSERT_TRUE(manager_.moveShape(shape, 17.5f, -3.25f)); });
    EXPECT_EQ(curve_.bounds().low.x, 15.0);
    manager_.moveShape(shape, 5, 0);
    manager_.deleteShape(shape);
    EXPECT_EQ(curve_.bounds().low.x, 20.0);
    host_.records().back()->undo(nullptr);
    host_.undo.clear();
    EXPECT_EQ(curve_.bounds().low.x, 20.0);
}

TEST_F(FiledRecords, ShapesOfTwoCanvasesLeaveTogether) {
    const std::int32_t first = addShape();
    const std::int32_t second = addShape();
    const std::int32_t layer = manager_.activeLayerId();
    manager_.newCanvas(70, 60);
    manager_.newLayer();
    const std::int32_t third = addShape();
    const std::int32_t ids[] = {second, third, 9999, first, second};
    const auto remove = [&] {
        ASSERT_TRUE(manager_.deleteShapes(ids));
        EXPECT_EQ(manager_.shapeCount(layer), 0);
        EXPECT_EQ(manager_.shapeCount(-2), 0);
    };
    EXPECT_EQ(filed([&] { expectExact(remove); }),
              "[SidLayerStack SidLayerStack SidShapeArrayDelete]");
    EXPECT_TRUE(manager_.shapeById(second));
    // Nothing comes back of shapes whose canvas is gone, but the other canvas does.
    const Ref<PntUndoOper> record = host_.records().back();
    record->redo(nullptr);
    EXPECT_FALSE(manager_.shapeById(first));
    manager_.closeCanvas(1);
    record->undo(nullptr);
    EXPECT_TRUE(manager_.shapeById(first));
    EXPECT_FALSE(manager_.shapeById(third));
    EXPECT_FALSE(manager_.deleteShapes(std::span(&ids[2], 1)));
}

TEST_F(FiledRecords, AFillOfAnotherLayerLeavesTheActiveOne) {
    const std::int32_t upper = manager_.newLayer();
    EXPECT_EQ(filed([&] {
                  expectExact([&] {
                      ASSERT_TRUE(manager_.floodFill(5, 80, {1, 0, 0, 1}, 0.1f, layer_));
                      EXPECT_TRUE(manager_.continueFill(0.2f));
                      EXPECT_EQ(manager_.activeLayerId(), upper);
                      manager_.endFill();
                  });
              }),
              "SidStroke");
}

// Of the current canvas a record is filed as it closes; of others none.
TEST_F(FiledRecords, ClosingAndSwitchingCanvases) {
    EXPECT_FALSE(manager_.noteStackSwitch(1));
    const std::int32_t other = manager_.newCanvas(50, 40);
    manager_.setCurrentCanvas(0);
    EXPECT_EQ(filed([&] { EXPECT_TRUE(manager_.noteStackSwitch(other)); }), "SidLayerStack");
    const Ref<PntUndoOper> record = host_.records().back();
    record->undo(nullptr);
    EXPECT_EQ(manager_.canvasBounds(0).nx, 50) << "the slot's stack stands in the canvas";
    record->redo(nullptr);
    EXPECT_EQ(manager_.canvasBounds(0).nx, 120);
    EXPECT_EQ(manager_.canvasBounds(other).nx, 50) << "the slot still shows its own";
    std::vector<std::uint32_t> pixels(50 * 40);
    EXPECT_TRUE(manager_.readCanvas(other, pixels.data()));
    manager_.closeCanvas(other);
    EXPECT_FALSE(manager_.noteStackSwitch(other));
    manager_.lockUndo(true);
    EXPECT_FALSE(manager_.noteStackSwitch(0));
    manager_.lockUndo(false);
    manager_.newCanvas(30, 30);
    EXPECT_EQ(filed([&] { manager_.closeCanvas(0); }), "");
    EXPECT_EQ(filed([&] { manager_.closeCanvas(-2); }), "SidLayerStack");
}

// For a host to which documents stay valid.
TEST_F(FiledRecords, AClosedCanvasComesBackAsItWas) {
    hostCallTable().documentValid = nullptr;
    manager_.strokeLine(20, 70, 90, 20);
    const DocumentState before = stateOf(manager_);
    manager_.closeCanvas(0);
    EXPECT_EQ(manager_.canvasCount(), 0);
    host_.records().back()->undo(nullptr);
    EXPECT_EQ(manager_.canvasCount(), 1);
    ASSERT_TRUE(manager_.setCurrentCanvas(0));
    EXPECT_EQ(differences(before, stateOf(manager_)), "");
    std::uint32_t shown = 0;
    ASSERT_TRUE(manager_.canvasPixel(55, 45, &shown));
    EXPECT_NE(shown, 0xffffffffu);
    manager_.strokeLine(20, 20, 90, 20);
    ASSERT_TRUE(manager_.closeCanvas(0));
    EXPECT_EQ(manager_.canvasCount(), 0);
}

TEST_F(FiledRecords, WhatCannotBeDoneLeavesNone) {
    constexpr float none = std::numeric_limits<float>::quiet_NaN();
    const std::int32_t mask = manager_.newMaskLayer();
    const std::int32_t group = manager_.newGroup(u"G");
    EXPECT_EQ(filed([&] {
                  EXPECT_FALSE(manager_.scaleCanvas(0, 1e-6f, 1));
                  EXPECT_FALSE(manager_.scaleCanvas(0, 1e6f, 1));
                  manager_.applyConvolve({5.0f, 1.5f, none, false}, layer_);
                  manager_.applyConvolve({none, 1.5f, 3.0f, true}, layer_);
                  manager_.applyConvolve({}, mask);
                  manager_.clearRegion(flatTile(3, 3, 0, 9), layer_);
                  EXPECT_FALSE(manager_.fillGradient({}, mask));
                  EXPECT_EQ(manager_.newTemporaryLayer(), -1);
                  manager_.makeSelectionActive();
                  EXPECT_EQ(manager_.duplicateLayer(), -1);
                  manager_.setActiveLayer(group);
              }),
              "");
    manager_.newCanvas(30, 30);
    manager_.newLayer();
    EXPECT_EQ(filed([&] { EXPECT_FALSE(manager_.resizeToFit(-2)); }), "");
}

// Groups and layers of shapes have no pixels of their own to keep.
TEST_F(FiledRecords, MovesAreRecordedOfWhateverMoved) {
    const std::int32_t shape = addShape();
    ASSERT_NE(shape, -1);
    const std::int32_t shapes = manager_.activeLayerId();
    const std::int32_t ids[] = {layer_};
    const std::int32_t group = manager_.makeGroupFrom(ids);
    for (const std::int32_t id : {layer_, shapes, group})
        expectExact([&] { manager_.setPosition(id, 7.0f, -4.0f, true); });
}

TEST_F(FiledRecords, ClearingThemDropsTheStampsThatWereKept) {
    const auto& cache = manager_.state().stroke.stamps->cache();
    manager_.strokeLine(20, 20, 90, 20);
    EXPECT_GT(cache->itemCount(), 0u);
    manager_.clearUndo();
    EXPECT_EQ(cache->itemCount(), 0u);
}

TEST_F(FiledRecords, SnapshotsAreArchivedAtOnce) {
    const DocumentState before = stateOf(manager_);
    manager_.strokeLine(20, 70, 90, 20);
    host_.records().back()->undo(nullptr);
    manager_.snapshotAndClear(3);
    EXPECT_EQ(host_.undo.count(), 0u);
    EXPECT_EQ(differences(before, stateOf(manager_)), "");
}

// Strokes around new layers fold into each other, and no clearing leaves older pages behind.
TEST_F(FiledRecords, ClearingFoldsChainsWhole) {
    std::string lines;
    setLogSink([&](std::string_view text) { lines += text; });
    std::vector<std::int32_t> ids{layer_};
    for (int round = 0; round < 3; ++round) {
        for (int n = 0; n < 6; ++n) {
            if (n == 3) ids.push_back(manager_.newLayer());
            manager_.strokeLine(20, 20.0f + static_cast<float>(10 * n), 90, 70);
        }
        manager_.setActiveLayer(layer_);
        const DocumentState before = stateOf(manager_);
        manager_.clearUndo();
        EXPECT_EQ(differences(before, stateOf(manager_)), "");
        for (const std::int32_t id : ids) {
            Layer* const layer = manager_.state().current()->layerById(id);
            ilImage* const base = ilSmartImage::from(layer->colorImageRef())->source();
            EXPECT_TRUE(!base || !ilSmartImage::from(base)->source()) << id;
        }
    }
    setLogSink({});
    EXPECT_EQ(lines.find("Chain"), std::string::npos) << lines;
}

// Exactly "1" turns undo off; the variable is read once.
TEST(UndoVariable, TurnsUndoOffForTheProcess) {
    constexpr const char* variable = "SID_UNDO_DISABLE";
    for (const char* const value : {"1", "0", "11", "true", ""}) {
        platform::setEnvironmentVariable(variable, value);
        resetSettings();
        SessionHost host;
        PaintManager manager;
        host.manager = &manager;
        manager.newCanvas(60, 50);
        manager.newLayer();
        const bool off = std::string(value) == "1";
        EXPECT_EQ(manager.undoActive(), !off) << value;
        platform::unsetEnvironmentVariable(variable);
        manager.setUndoEnabled(true);
        manager.strokeLine(5, 5, 50, 40);
        manager.selectAll();
        manager.recordCanvas();
        manager.noteStackSwitch(0);
        manager.closeCanvas(-2);
        EXPECT_EQ(host.undo.count() == 0, off) << value;
    }
    resetSettings();
}

// There is no record that could bring one back.
TEST_F(FiledRecords, TransformsLeaveShapeLayersWhereTheyAre) {
    ASSERT_GE(addShape(), 0);
    const std::int32_t shapes = manager_.activeLayerId();
    ASSERT_TRUE(manager_.isShapeLayer(shapes));
    TransformRecord moves, turns, bends;
    moves.x = 12;
    turns.rotation = 30;
    bends.corners = {-10, 5, 20, 0, 15, 25, 0, -12};
    const std::int32_t ids[] = {shapes};
    for (const TransformRecord& record : {moves, turns, bends}) {
        const DocumentState before = stateOf(manager_);
        EXPECT_EQ(filed([&] {
                      ASSERT_TRUE(manager_.beginTransform(ids, 0, 0));
                      manager_.updateTransform(record);
                      manager_.endTransform(true);
                  }),
                  "");
        EXPECT_EQ(differences(before, stateOf(manager_)), "");
    }
}

TEST_F(FiledRecords, ACanvasWithShapesIsNotScaled) {
    EXPECT_TRUE(manager_.scaleCanvas(-2, 2.0f, 1));
    addShape();
    const DocumentState before = stateOf(manager_);
    EXPECT_EQ(filed([&] { EXPECT_FALSE(manager_.scaleCanvas(-2, 0.5f, 1)); }), "");
    EXPECT_EQ(differences(before, stateOf(manager_)), "");
}

TEST_F(FiledRecords, AreDumpedWithTheirCanvases) {
    std::string text;
    setLogSink([&](std::string_view piece) { text += piece; });
    const auto dumped = [&](std::int32_t level) {
        host_.debugLevel = level;
        text.clear();
        manager_.dump();
        return text;
    };
    EXPECT_EQ(dumped(0), "");
    const std::string all = dumped(0x2016);
    const std::string head =
        "========== PaintManager [begin] ==========\n===== LayerStack [0] =====\n";
    const std::string tail = "========== PaintManager [end] ===========\n";
    EXPECT_EQ(all.substr(0, head.size()), head);
    EXPECT_EQ(all.substr(all.size() - tail.size()), tail);
    host_.debugLevel = 0;
    manager_.selectAll();
    host_.undo.add(nullptr);
    text.clear();
    manager_.dumpHistory();
    EXPECT_EQ(text, "Iter:0\nIter:1\n");
    setLogSink({});
}

}  // namespace
}  // namespace brushwork::test
