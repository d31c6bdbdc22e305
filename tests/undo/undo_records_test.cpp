#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "brushwork/host_call_table.h"
#include "brushwork/pnt_undo_database.h"
#include "foundation/services/log.h"
#include "image/smart/il_smart_image.h"
#include "image/work/il_memory_img.h"
#include "undo/pnt_undo_combo.h"
#include "undo/pnt_undo_layer_stack.h"
#include "undo/pnt_undo_stroke.h"

namespace brushwork::test {
namespace {

// Tells what was run.
class Told final : public PntUndoOper {
  public:
    Told(std::vector<std::string>& story, const char* name, const char* primary = "SidTold")
        : PntUndoOper(primary), story_(story), name_(name) {
        addKind(primary);
    }
    void undo(bool* defer) override {
        story_.push_back("undo " + name_);
        if (defer) *defer = true;
    }
    void redo(bool*) override { story_.push_back("redo " + name_); }
    void archive(PntUndoDatabase&) override { story_.push_back("archive " + name_); }

  private:
    std::vector<std::string>& story_;
    std::string name_;
};

using Story = std::vector<std::string>;

TEST(IdListTest, NamesAreCutAndNullIsNone) {
    IdList list("Primary");
    EXPECT_FALSE(list.isKind("Primary"));
    EXPECT_FALSE(list.isKind(nullptr));
    const std::string longName(200, 'n');
    list.addKind(longName.c_str());
    EXPECT_TRUE(list.isKind(longName.substr(0, 127).c_str()));
    EXPECT_FALSE(list.isKind(longName.c_str()));
    EXPECT_EQ(IdList(longName.c_str()).primaryName().size(), 127u);
}

TEST(UndoDatabase, HandlesSizesKindsAndClearing) {
    Story story;
    PntUndoDatabase database;
    const Ref<Told> a(new Told(story, "a"));
    const Ref<Told> unfiled(new Told(story, "-"));
    const Ref<Told> b(new Told(story, "b"));
    EXPECT_EQ(b->undoHandle(), a->undoHandle() + 2);
    EXPECT_TRUE(database.add(a.get()));
    EXPECT_TRUE(database.add(nullptr));
    EXPECT_TRUE(database.add(b.get()));
    EXPECT_EQ(database.count(), 3u);
    EXPECT_EQ(database.find(b->undoHandle()).get(), b.get());
    EXPECT_FALSE(database.find(unfiled->undoHandle()));
    EXPECT_EQ(database.sizeOf(unfiled->undoHandle()), 0u);
    EXPECT_GT(database.sizeOf(a->undoHandle()), 0u);
    EXPECT_TRUE(database.hasKind(a->undoHandle(), "SidOper"));
    EXPECT_FALSE(database.hasKind(unfiled->undoHandle(), "SidOper"));
    database.commitClear();
    EXPECT_EQ(database.count(), 3u);
    database.requestClear();
    database.commitClear();
    EXPECT_EQ(database.count(), 0u);
    EXPECT_EQ(story, (Story{"archive a", "archive b"}));
    database.add(a.get());
    database.commitClear();
    EXPECT_EQ(database.count(), 1u);
}

TEST(UndoDatabase, MatchingNeedsThePrimaryNameAmongTheKinds) {
    Story story;
    const Ref<Told> one(new Told(story, "one", "SidA"));
    const Ref<Told> two(new Told(story, "two", "SidA"));
    const Ref<Told> other(new Told(story, "other", "SidB"));
    EXPECT_EQ(one->matchKind(*two).get(), two.get());
    EXPECT_FALSE(one->matchKind(*other));
    other->addKinds(one->kindNames());
    EXPECT_EQ(one->matchKind(*other).get(), other.get());
}

TEST(UndoCombo, RunsInOrderAndBackAndDoesNotNest) {
    Story story;
    const auto combo = [](PntUndoOper* a, PntUndoOper* b, PntUndoOper* c) {
        return Ref<PntUndoCombo>(
            new PntUndoCombo(a, b, c, nullptr, nullptr, true, false, "SidCombo"));
    };
    const Ref<Told> a(new Told(story, "a", "SidA"));
    const Ref<Told> b(new Told(story, "b", "SidB"));
    const Ref<PntUndoCombo> inner = combo(b.get(), nullptr, nullptr);
    const Ref<PntUndoCombo> outer = combo(a.get(), inner.get(), b.get());
    EXPECT_TRUE(outer->flagA());
    EXPECT_EQ(outer->children().size(), 2u);
    EXPECT_EQ(outer->kindNames(), (Story{"SidOper", "SidCombo", "SidA", "SidB"}));
    bool deferred = false;
    outer->undo(&deferred);
    outer->redo(nullptr);
    PntUndoDatabase database;
    outer->archive(database);
    EXPECT_TRUE(deferred);
    EXPECT_EQ(story, (Story{"undo a", "undo b", "redo b", "redo a", "archive a", "archive b"}));
    EXPECT_EQ(outer->extraSize(), a->objectSize() + b->objectSize());
    // By the child that is meant.
    const Ref<Told> asking(new Told(story, "asking", "SidB"));
    EXPECT_EQ(asking->matchKind(*outer).get(), b.get());

    const Ref<PntUndoCombo> empty = combo(nullptr, nullptr, nullptr);
    story.clear();
    empty->undo(nullptr);
    EXPECT_TRUE(story.empty());
}

// One canvas with one layer, for strokes and their chain.
class StrokeRecords : public testing::Test, protected UndoCanvases {
  protected:
    StrokeRecords() : stack_(new LayerStack(0, 0, 64, 64)) {
        stack_->addLayer({});
        setLogSink([this](std::string_view text) { logged_.emplace_back(text); });
    }
    ~StrokeRecords() override { setLogSink({}); }

    Layer& layer() { return *stack_->activeLayer(); }
    Ref<PntUndoStroke> record() {
        return Ref<PntUndoStroke>(new PntUndoStroke(*this, -2, -2, stack_.get(), &layer(),
                                                    layer().colorImageRef(), layer().stencilImage(),
                                                    "SidStroke"));
    }
    // Files a record and paints behind it.
    Ref<PntUndoStroke> edit(std::int32_t x, std::uint32_t pixel) {
        Ref<PntUndoStroke> made = record();
        layer().smartColor()->setPixel(x, 0, pixel);
        database_.add(made.get());
        return made;
    }
    std::uint32_t pixel(std::int32_t x) { return layer().smartColor()->getPixel(x, 0); }

    std::int32_t currentIndex() const override { return 0; }
    void makeCurrent(std::int32_t) override {}
    LayerStack* stackAt(std::int32_t canvas) const override {
        return canvas == 0 || canvas == -2 ? stack_.get() : nullptr;
    }
    void replaceStack(LayerStack& stack, std::int32_t) override {
        stack_ = Ref<LayerStack>(&stack);
    }
    std::int32_t slotCount() const override { return 1; }
    bool paintsOnStencil() const override { return false; }
    bool locateShape(std::int32_t, ShapePlace&) const override { return false; }
    void scheduleIdle() override { ++scheduled_; }

    Ref<LayerStack> stack_;
    PntUndoDatabase database_;
    Story logged_;
    int scheduled_ = 0;
};

TEST_F(StrokeRecords, ABranchHangsAsideAndTheOldestFoldsAway) {
    const auto a = edit(1, 0xff0000ff);
    const auto b = edit(2, 0xff00ff00);
    const auto c = edit(3, 0xffff0000);
    EXPECT_EQ(c->newColor()->source(), b->newColor());
    EXPECT_EQ(b->newColor()->source(), a->newColor());
    c->undo(nullptr);
    b->undo(nullptr);
    EXPECT_EQ(pixel(1), 0xff0000ffu);
    EXPECT_EQ(pixel(2), 0u);
    const auto d = edit(4, 0xffffffff);
    EXPECT_EQ(d->newColor()->source(), a->newColor());
    database_.drop(b->undoHandle());
    database_.drop(c->undoHandle());
    EXPECT_TRUE(database_.retireOldest());
    EXPECT_TRUE(logged_.empty());
    EXPECT_EQ(pixel(1), 0xff0000ffu);
    EXPECT_EQ(pixel(4), 0xffffffffu);
    d->undo(nullptr);
    EXPECT_EQ(pixel(1), 0xff0000ffu);
    EXPECT_EQ(pixel(4), 0u);
    d->redo(nullptr);
    EXPECT_EQ(pixel(4), 0xffffffffu);
}

TEST_F(StrokeRecords, AnUndoneRecordAndALonelyOneFoldNothing) {
    const auto a = edit(1, 0xff0000ff);
    a->archive(database_);
    EXPECT_EQ(pixel(1), 0xff0000ffu);
    const auto b = edit(2, 0xff00ff00);
    b->undo(nullptr);
    a->undo(nullptr);
    a->archive(database_);
    EXPECT_EQ(b->newColor()->source(), a->newColor());
    EXPECT_TRUE(logged_.empty());
}

TEST_F(StrokeRecords, ABrokenChainIsToldAndRepaired) {
    const auto a = edit(1, 0xff0000ff);
    layer().setColorImage(Ref<ilSmartImage>(new ilSmartImage(ilPixel(TypeUChar, 4))).get());
    layer().setStencilImage(Ref<ilSmartImage>(new ilSmartImage(ilPixel(TypeUChar, 1))).get());
    const auto b = edit(2, 0xff00ff00);
    a->archive(database_);
    EXPECT_EQ(logged_, (Story{"Brushwork:Undo:Broken ilImage Chain\n", "Broken ilImage Chain\n"}));
    // Redo shows what stood on the layer, not the child that a tool had set aside.
    b->undo(nullptr);
    a->undo(nullptr);
    EXPECT_EQ(pixel(1), 0u);
    a->redo(nullptr);
    EXPECT_EQ(pixel(1), 0u);
}

// Wherever the combination stands, only what is behind it counts.
TEST_F(StrokeRecords, AStrokeInACombinationFoldsIntoTheNextOne) {
    const auto a = edit(1, 0xff0000ff);
    const auto combine = [this](std::int32_t x, std::uint32_t pixel) {
        const Ref<PntUndoStroke> made = record();
        layer().smartColor()->setPixel(x, 0, pixel);
        database_.add(Ref<PntUndoCombo>(new PntUndoCombo(made.get(), nullptr, nullptr, nullptr,
                                                         nullptr, false, false, "SidCombo"))
                          .get());
        return made;
    };
    const auto b = combine(2, 0xff00ff00);
    const auto c = combine(3, 0xffff0000);
    const auto d = edit(4, 0xffffffff);
    database_.clear();
    EXPECT_EQ(logged_, Story{});
    EXPECT_EQ(pixel(1), 0xff0000ffu);
    EXPECT_EQ(pixel(3), 0xffff0000u);
    // A host may also archive one from the middle.
    const auto e = edit(5, 0xff0000ff);
    const auto f = combine(6, 0xff00ff00);
    const auto g = edit(7, 0xffff0000);
    f->archive(database_);
    EXPECT_EQ(logged_, Story{});
    EXPECT_EQ(g->newColor()->source(), e->newColor());
}

// An image that isn't smart leaves a child over nothing, which can't be folded.
TEST_F(StrokeRecords, AMissingGroundIsTold) {
    layer().setColorImage(
        Ref<ilMemoryImg>(new ilMemoryImg(64, 64, 1, 4, TypeUChar, OrderInterleaved)).get());
    const auto a = edit(1, 0xff0000ff);
    EXPECT_EQ(a->refColor(), nullptr);
    const auto b = edit(2, 0xff00ff00);
    EXPECT_EQ(b->newColor()->source(), a->newColor());
    a->archive(database_);
    EXPECT_EQ(logged_, (Story{"Invalid ilImage (missing seed image)\n",
                              "Brushwork:Undo:Can't collapse seed image!\n"}));
    // Of a stencil other words for the same.
    stack_->addLayer({});
    logged_.clear();
    layer().setStencilImage(
        Ref<ilMemoryImg>(new ilMemoryImg(64, 64, 1, 1, TypeUChar, OrderInterleaved)).get());
    logged_.clear();
    const auto c = edit(1, 0xff0000ff);
    const auto d = edit(2, 0xff00ff00);
    c->archive(database_);
    EXPECT_EQ(logged_, (Story{"Brushwork:Undo: Invalid ilImage\n",
                              "Brushwork:Undo:Can't collapse seed image\n"}));
}

// A host's developer sees records come, fold and go, by their handles.
TEST_F(StrokeRecords, LogsTellOfThemAtTheirLevel) {
    hostCallTable().debugLevel = [] { return std::int32_t{0x2016}; };
    std::string handles[2];
    {
        const auto a = edit(1, 0xff0000ff);
        const auto b = edit(2, 0xff00ff00);
        handles[0] = std::to_string(a->undoHandle());
        handles[1] = std::to_string(b->undoHandle());
    }
    database_.retireOldest();
    clearHostCallTable();
    const auto starts = [&](std::size_t line, const std::string& text) {
        ASSERT_LT(line, logged_.size());
        EXPECT_EQ(logged_[line].substr(0, text.size()), text);
    };
    const std::string rule = "\n ================================== \nnew PntUndoStroke[";
    ASSERT_EQ(logged_.size(), 5u);
    starts(0, rule + handles[0] + "] refImage[");
    starts(1, rule + handles[1] + "] refImage[");
    starts(2, "Brushwork:Undo:   Archiving undoHandle[" + handles[0] + "] nextUH[" + handles[1] +
                  "], child[");
    starts(3, "Archive[" + handles[0] + "] newImage[");
    starts(4, "~PntUndoStroke[" + handles[0] + "] newImage[");
}

TEST_F(StrokeRecords, OffsetsComeBackWhole) {
    layer().setOffset(10.75f, -3.5f);
    const auto a = edit(1, 0xff0000ff);
    float x = 0.0f;
    float y = 0.0f;
    layer().offset(&x, &y);
    EXPECT_EQ(x, 10.75f);
    a->undo(nullptr);
    layer().offset(&x, &y);
    EXPECT_EQ(x, 10.0f);
    EXPECT_EQ(y, -3.0f);
    a->redo(nullptr);
    layer().setOffset(20.0f, 5.0f);
    a->undo(nullptr);
    a->redo(nullptr);
    layer().offset(&x, &y);
    EXPECT_EQ(x, 20.0f);
    EXPECT_EQ(y, 5.0f);
}

TEST_F(StrokeRecords, AStackRecordMovesStrokesAside) {
    const auto a = edit(1, 0xff0000ff);
    LayerStack* const before = stack_.get();
    const Ref<PntUndoLayerStack> saved(new PntUndoLayerStack(
        *this, -2, stack_->activeId(), stack_.get(), stack_->activeLayer(), "SidLayerStack"));
    EXPECT_NE(stack_.get(), before);
    EXPECT_EQ(stack_->activeId(), before->activeId());
    EXPECT_EQ(pixel(1), 0xff0000ffu);
    a->undo(nullptr);
    EXPECT_TRUE(a->undone());
    EXPECT_EQ(pixel(1), 0xff0000ffu);
    a->redo(nullptr);
    bool deferred = false;
    saved->undo(&deferred);
    EXPECT_TRUE(deferred);
    EXPECT_EQ(stack_.get(), before);
    a->undo(nullptr);
    EXPECT_EQ(pixel(1), 0u);
}

// Objects, not pixels.
TEST_F(StrokeRecords, ARecordTakesNoPages) {
    const std::uint32_t someRed = 0xff000080;
    layer().smartColor()->fillRegion(flatTile(0, 0, 16384, 16384), ilPixel(TypeUChar, 4, &someRed));
    const auto made = record();
    EXPECT_EQ(made->newColor()->pages().heldPages(), 0u);
    EXPECT_EQ(made->objectSize(), sizeof(PntUndoStroke) + sizeof(LayerStack) + sizeof(Layer));
}

}  // namespace
}  // namespace brushwork::test
