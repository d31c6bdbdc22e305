#include "brushwork/animation_manager.h"

#include <gtest/gtest.h>

#include <memory>
#include <set>

#include "animation/anim_frame_add_undo_oper.h"
#include "animation/animation_host.h"
#include "foundation/services/log.h"
#include "image/cache/smart_image_cache.h"

namespace brushwork {
namespace {

using test::AnimationHost;
using test::NotingListener;

std::vector<std::uint32_t> numbersOf(const AnimationManager& animation) {
    std::vector<std::uint32_t> numbers;
    for (std::size_t n = 0; n < animation.frameCount(); ++n)
        numbers.push_back(animation.frameAt(n)->frameNumber);
    return numbers;
}

using Numbers = std::vector<std::uint32_t>;

TEST(AnimationManager, AddsOnTopOfABaseAloneAndWithinBounds) {
    AnimationHost host;
    AnimationManager animation(host.paint);
    EXPECT_EQ(animation.currentCanvas(), -1);
    EXPECT_FALSE(animation.addFrame(0)) << "nothing to make a canvas after";
    EXPECT_FALSE(animation.addFrame(0, 7)) << "no such canvas";
    EXPECT_FALSE(animation.switchFrame(1));
    EXPECT_FALSE(animation.deleteFrame());
    EXPECT_FALSE(animation.duplicateFrame());
    EXPECT_FALSE(animation.setLastFrame(5));
    EXPECT_EQ(host.undo.count(), 0u);

    const std::int32_t canvas = host.makeCanvas();
    ASSERT_TRUE(animation.addFrame(0, -2));
    EXPECT_EQ(numbersOf(animation), Numbers{1});
    EXPECT_EQ(animation.currentCanvas(), canvas);
    EXPECT_FALSE(animation.addFrame(1001));
    EXPECT_FALSE(animation.switchFrame(1001));
    EXPECT_TRUE(animation.addFrame(1000));
    EXPECT_FALSE(animation.addFrame()) << "behind the last number";
    EXPECT_EQ(animation.lastFrame(), 1000u);
    EXPECT_FALSE(animation.canInsertAt(1000));
    EXPECT_FALSE(animation.canInsertAt(0)) << "0 is the current number";
    EXPECT_EQ(host.paint.canvasCount(), 2);
}

TEST(AnimationManager, NewCanvasIsMadeAfterTheBase) {
    AnimationHost host;
    AnimationManager animation(host.paint);
    const std::int32_t base = host.makeCanvas(50, 40);
    host.paint.setBackground({0.5f, 0.25f, 1.0f, 1.0f});
    host.paint.selectRegion(flatTile(3, 4, 10, 12));
    host.paint.moveSelection(7.0f, 5.0f);
    ilTile selected;
    ASSERT_TRUE(host.paint.selectionBounds(selected));
    TransformRecord view;
    view.x = 12.0f;
    view.scaleX = view.scaleY = 2.0f;
    host.paint.setView(base, view);
    animation.addFrame(1, base);
    const std::uint64_t before = host.digest(base);
    host.undo.clear();

    ASSERT_TRUE(animation.addFrame(4));
    const std::int32_t canvas = host.paint.currentCanvas();
    ASSERT_NE(canvas, base);
    EXPECT_EQ(host.undo.count(), 1u) << "making the canvas files nothing of its own";
    EXPECT_EQ(host.paint.canvasBounds(canvas).nx, 50);
    EXPECT_EQ(host.paint.canvasBounds(canvas).ny, 40);
    ASSERT_EQ(host.paint.layerCount(), 2);
    const std::int32_t lower = host.paint.layerIdAt(1), upper = host.paint.layerIdAt(2);
    EXPECT_EQ(host.paint.layerName(lower).toUtf8(), "Layer 1");
    EXPECT_EQ(host.paint.layerName(upper).toUtf8(), "Foreground");
    EXPECT_EQ(host.paint.activeLayerId(), upper);
    ilTile copied;
    EXPECT_TRUE(host.paint.selectionBounds(copied));
    EXPECT_EQ(copied, selected);
    EXPECT_EQ(host.paint.background(), host.paint.background(base));
    TransformRecord seen;
    EXPECT_TRUE(host.paint.view(canvas, seen));
    EXPECT_EQ(seen, view);
    // The selections go their own ways.
    host.paint.selectAll();
    host.fill(1.0f, 0.0f, 0.0f);
    EXPECT_EQ(host.digest(base), before);
    EXPECT_TRUE(host.paint.undoEnabled());
}

TEST(AnimationManager, DuplicatesAsFarAsTheFirstGap) {
    AnimationHost host;
    AnimationManager animation(host.paint);
    const std::int32_t canvas = host.makeCanvas(8, 8);
    for (std::uint32_t number = 1; number <= 1000; ++number)
        ASSERT_TRUE(animation.addFrame(number, canvas, ImageRef(), false, false));
    EXPECT_EQ(host.paint.canvasCount(), 1) << "frames of one canvas share it";
    EXPECT_FALSE(animation.canDuplicate(1));
    EXPECT_FALSE(animation.duplicateFrame(1));
    ASSERT_TRUE(animation.deleteFrame(500, false));
    ASSERT_EQ(host.paint.canvasCount(), 1);
    EXPECT_FALSE(animation.canDuplicate(501)) << "the gap lies before it";
    EXPECT_FALSE(animation.canDuplicate(1000));
    EXPECT_TRUE(animation.canDuplicate(500)) << "within the hold";
    NotingListener listener;
    animation.addListener(listener);
    ASSERT_TRUE(animation.duplicateFrame(498));
    EXPECT_EQ(listener.changed, (Numbers{500, 499}));
    EXPECT_EQ(animation.frameCount(), 1000u);
    EXPECT_EQ(host.paint.canvasCount(), 2);
    EXPECT_FALSE(animation.canDuplicate(498));
}

TEST(AnimationManager, FramesThatFollowAHoldComeSooner) {
    AnimationHost host;
    AnimationManager animation(host.paint);
    animation.addFrame(1, host.makeCanvas());
    animation.addFrame(3);
    animation.addFrame(8);
    std::size_t place = 9;
    EXPECT_TRUE(animation.findFrame(5, place));
    EXPECT_EQ(place, 1u);
    NotingListener listener;
    animation.addListener(listener);
    ASSERT_TRUE(animation.deleteFrame(5));
    EXPECT_EQ(numbersOf(animation), (Numbers{1, 3, 7}));
    EXPECT_EQ(listener.changed, (Numbers{5, 6, 7, 8}));
    EXPECT_EQ(animation.lastFrame(), 7u);
    EXPECT_EQ(animation.currentFrame(), 7u);
    // The second frame keeps its exposure when the last one goes.
    ASSERT_TRUE(animation.deleteFrame(7));
    EXPECT_EQ(animation.lastFrame(), 6u);
    EXPECT_FALSE(animation.deleteFrame(7));
    host.newest()->undo(nullptr);
    EXPECT_EQ(animation.lastFrame(), 7u);
    EXPECT_EQ(animation.frameCount(), 3u);
}

TEST(AnimationManager, SwitchIsTakenBackToNumberCanvasAndLayer) {
    AnimationHost host;
    AnimationManager animation(host.paint);
    const std::int32_t base = host.makeCanvas();
    const std::int32_t lower = host.paint.activeLayerId();
    host.paint.newLayer(-2, 0, 0, 0, true, false);
    animation.addFrame(1, base);
    animation.addFrame(5);
    const std::int32_t other = host.paint.currentCanvas();
    animation.switchFrame(2, false);
    host.paint.setActiveLayer(lower);
    host.paint.setColor({0.25f, 0.5f, 0.75f, 1.0f});
    TransformRecord view;
    view.rotation = 30.0f;
    host.paint.setView(base, view);
    host.undo.clear();

    ASSERT_TRUE(animation.switchFrame(6));
    ASSERT_EQ(host.undo.count(), 1u);
    EXPECT_EQ(host.paint.currentCanvas(), other);
    EXPECT_EQ(host.paint.color()[2], 0.75f);
    TransformRecord seen;
    EXPECT_TRUE(host.paint.view(other, seen));
    EXPECT_EQ(seen, view);
    host.paint.setActiveLayer(host.paint.layerIdAt(1));
    bool deferred = false;
    host.newest()->undo(&deferred);
    EXPECT_TRUE(deferred);
    EXPECT_EQ(animation.currentFrame(), 2u);
    EXPECT_EQ(host.paint.currentCanvas(), base);
    EXPECT_EQ(host.paint.activeLayerId(), lower);
    host.newest()->redo(nullptr);
    EXPECT_EQ(animation.currentFrame(), 6u);
    EXPECT_EQ(host.paint.currentCanvas(), other);
    EXPECT_EQ(host.paint.layerName(-2).toUtf8(), "Foreground") << "as it was after the switch";
    EXPECT_EQ(host.undo.count(), 1u) << "steps file nothing";

    EXPECT_TRUE(animation.switchFrame(6));
    EXPECT_EQ(host.undo.count(), 1u) << "nor does showing what is shown";
    host.paint.setView(base, TransformRecord());
    animation.switchFrame(1, true, true, false, -1, lower, true, true);
    EXPECT_TRUE(host.paint.view(base, seen));
    EXPECT_EQ(seen, TransformRecord()) << "the view stays behind";
    host.paint.setCurrentCanvas(other);
    animation.switchFrame(1);
    EXPECT_EQ(host.paint.currentCanvas(), base) << "the canvas counts, not the number alone";
}

TEST(AnimationManager, RecordsKeepTheirFrames) {
    AnimationHost host;
    AnimationManager animation(host.paint);
    animation.addFrame(1, host.makeCanvas());
    host.undo.clear();
    ASSERT_TRUE(animation.addFrame(3));
    const Ref<AnimFrame> added = animation.frameAt(1);
    const std::int32_t canvas = added->canvasIndex();
    {
        const Ref<PntUndoOper> record = host.newest();
        EXPECT_TRUE(record->isKind("AnimFrameOper"));
        EXPECT_TRUE(record->flagA());
        EXPECT_FALSE(record->flagB());
        const auto* const anim = dynamic_cast<AnimFrameAddUndoOper*>(record.get());
        ASSERT_NE(anim, nullptr);
        EXPECT_EQ(anim->animDescribe(), added->id());
        record->undo(nullptr);
        EXPECT_TRUE(anim->wasUndone());
        EXPECT_EQ(numbersOf(animation), Numbers{1});
        EXPECT_TRUE(host.paint.hasCanvas(canvas));
        host.undo.drop(record->undoHandle());
    }
    EXPECT_TRUE(host.paint.hasCanvas(canvas)) << "we still hold the frame";
}

TEST(AnimationManager, CanvasesCloseWithTheLastFrameThatHasThem) {
    AnimationHost host;
    AnimationManager animation(host.paint);
    animation.addFrame(1, host.makeCanvas());
    const std::int32_t given = host.makeCanvas();
    animation.addFrame(2, given);
    host.newest()->undo(nullptr);
    host.undo.clear();
    EXPECT_TRUE(host.paint.hasCanvas(given)) << "the host's, as before";
    animation.addFrame(2, given);
    animation.deleteFrame(2);
    host.newest()->undo(nullptr);
    host.undo.records().front()->undo(nullptr);
    host.undo.clear();
    EXPECT_TRUE(host.paint.hasCanvas(given)) << "and so once the deletion was taken back";
    animation.addFrame(2, given, ImageRef(), false);
    animation.addFrame(5, given, ImageRef(), false);
    animation.deleteFrame(5, false);
    EXPECT_TRUE(host.paint.hasCanvas(given)) << "another frame has it";
    animation.deleteFrame(2, false);
    EXPECT_FALSE(host.paint.hasCanvas(given));
    ASSERT_EQ(host.makeCanvas(), given);

    animation.addFrame(2, given);
    animation.duplicateFrame(2);
    const std::int32_t copy = host.paint.currentCanvas();
    animation.deleteFrame(3);
    animation.deleteFrame(2);
    EXPECT_EQ(host.paint.canvasCount(), 3) << "records hold them";
    host.undo.clear();
    EXPECT_FALSE(host.paint.hasCanvas(copy));
    EXPECT_FALSE(host.paint.hasCanvas(given)) << "its frame was deleted for good";
    animation.deleteFrame(1);
    host.undo.clear();
    EXPECT_EQ(host.paint.canvasCount(), 1) << "the base stays, to be shown and copied";
    EXPECT_TRUE(animation.addFrame());
}

TEST(AnimationManager, ACanvasThatTheHostClosedEndsTheOperation) {
    AnimationHost host;
    AnimationManager animation(host.paint);
    const std::int32_t base = host.makeCanvas();
    animation.addFrame(1, base);
    animation.addFrame(2);
    host.paint.closeCanvas(base);
    EXPECT_FALSE(animation.switchFrame(1));
    EXPECT_FALSE(animation.duplicateFrame(1));
    EXPECT_FALSE(animation.addFrame(3));
    EXPECT_EQ(animation.currentFrame(), 2u);
    EXPECT_TRUE(animation.switchFrame(2));
}

TEST(AnimationManager, FieldsChangeOnlyForWhoRedraws) {
    AnimationHost host;
    AnimationManager animation(host.paint);
    animation.addFrame(1, host.makeCanvas());
    animation.addFrame(4);
    const Ref<AnimFrame> shown = animation.frameAt(0);
    const Ref<AnimFrame> fields = animation.frameAt(1)->copy();
    fields->hostValue4 = 77;
    fields->isKey = true;
    const std::int32_t canvas = shown->canvasIndex();
    ASSERT_TRUE(animation.modifyFrame(2, *fields));
    EXPECT_EQ(shown->hostValue4, 77);
    EXPECT_EQ(shown->frameNumber, 1u);
    EXPECT_EQ(shown->canvasIndex(), canvas);
    const Ref<PntUndoOper> record = host.newest();
    record->undo(nullptr);
    EXPECT_EQ(shown->hostValue4, 77) << "without a flag nothing happens";
    bool deferred = false;
    record->undo(&deferred);
    EXPECT_TRUE(deferred);
    EXPECT_EQ(shown->hostValue4, 4);
    EXPECT_FALSE(shown->isKey);
    record->redo(nullptr);
    EXPECT_EQ(shown->hostValue4, 4);
    record->redo(&deferred);
    EXPECT_EQ(shown->hostValue4, 77);
}

// Notes what a record asks for.
class NotingTimeline final : public FrameTimeline {
  public:
    bool switchFrame(std::uint32_t, bool, bool, bool, std::int32_t, std::int32_t, bool,
                     bool) override {
        return ++calls != 0;
    }
    void restoreFrames(const FrameListSnapshot&, std::int32_t canvas, std::int32_t layerId,
                       std::span<const std::uint32_t>,
                       std::span<const Ref<AnimFrame>> touched) override {
        ++calls;
        place = {canvas, layerId};
        touchedCount = touched.size();
    }
    AnimFrame* frameShowing(std::uint32_t) const override { return nullptr; }
    void tellChanged(std::uint32_t) override { ++calls; }
    int calls = 0;
    CanvasLayer place;
    std::size_t touchedCount = 0;
};

TEST(AnimFrameAddUndoOper, DoesNothingWithoutAFrame) {
    const auto timeline = std::make_shared<NotingTimeline>();
    const auto recordOf = [&](const Ref<AnimFrame>& frame, std::vector<Ref<AnimFrame>> touched) {
        return Ref<AnimFrameAddUndoOper>(new AnimFrameAddUndoOper(
            timeline, FrameListChange{{1, 2}, {3, 4}, {}, {}}, frame, touched));
    };
    bool deferred = false;
    const Ref<AnimFrameAddUndoOper> empty = recordOf({}, {});
    empty->undo(&deferred);
    empty->redo(&deferred);
    EXPECT_EQ(timeline->calls, 0);
    EXPECT_FALSE(deferred || empty->wasUndone());
    EXPECT_EQ(empty->animDescribe(), 0);

    const Ref<AnimFrame> frame(new AnimFrame(nullptr));
    recordOf(frame, {})->undo(&deferred);
    EXPECT_EQ(timeline->touchedCount, 1u);
    EXPECT_EQ(timeline->place.canvas, 1);
    EXPECT_TRUE(deferred);
    recordOf(frame, {frame, frame})->redo(nullptr);
    EXPECT_EQ(timeline->touchedCount, 2u);
    EXPECT_EQ(timeline->place.layer, 4);
}

// The pages of the active layer, as the image finds them.
std::vector<const SmartPage*> pagesOf(AnimationHost& host, std::int32_t canvas) {
    LayerStack* const stack = host.paint.state().stackAt(canvas);
    ilSmartImage* const image = stack->activeLayer()->smartColor();
    std::vector<const SmartPage*> pages;
    for (std::int32_t y = 0; y < 512; y += 128)
        for (std::int32_t x = 0; x < 512; x += 128) {
            static_cast<void>(image->getPixel(x, y));
            SmartPageRef* const slot = image->pages().pageRef(x, y, false);
            pages.push_back(slot ? slot->get() : nullptr);
        }
    return pages;
}

TEST(AnimationManager, DuplicatesSharePagesUntilOneIsPainted) {
    AnimationHost host;
    AnimationManager animation(host.paint);
    const std::int32_t base = host.makeCanvas(512, 512);
    host.paint.fillGradient({.toX = 500.0f, .toY = 300.0f});
    animation.addFrame(1, base);
    host.paint.clearUndo();
    const SmartImageCache::Counts before = SmartImageCache::instance().counts();
    ASSERT_TRUE(animation.duplicateFrame(1));
    ASSERT_TRUE(animation.duplicateFrame(2));
    const std::int32_t last = host.paint.currentCanvas();
    const SmartImageCache::Counts after = SmartImageCache::instance().counts();
    EXPECT_EQ(after.cloned, before.cloned) << "no page is copied";
    const std::vector<const SmartPage*> own = pagesOf(host, base);
    EXPECT_EQ(pagesOf(host, last), own);
    EXPECT_EQ((std::set<const SmartPage*>(own.begin(), own.end()).size()), 16u);

    host.paint.setColor({1.0f, 0.0f, 0.0f, 1.0f});
    const std::uint64_t unpainted = host.digest(last);
    host.paint.strokeLine(200.0f, 200.0f, 210.0f, 205.0f);
    EXPECT_NE(host.digest(last), unpainted);
    const std::vector<const SmartPage*> painted = pagesOf(host, last);
    EXPECT_EQ(pagesOf(host, base), own);
    int differing = 0;
    for (std::size_t n = 0; n < own.size(); ++n) differing += own[n] != painted[n];
    EXPECT_EQ(differing, 1);
    EXPECT_NE(own[5], painted[5]) << "of the page that was painted";
}

TEST(AnimationManager, ListenersHearWhileNeitherFlagIsSet) {
    AnimationHost host;
    AnimationManager animation(host.paint);
    NotingListener first, second;
    animation.addListener(first);
    animation.addListener(first);
    animation.addListener(second);
    animation.addFrame(1, host.makeCanvas());
    animation.addFrame(4);
    EXPECT_EQ(first.changed, (Numbers{1, 4})) << "once each";
    EXPECT_EQ(first.shown, Numbers{4}) << "1 was the number from the start";
    EXPECT_EQ(first.selected, (Numbers{1, 4}));
    EXPECT_EQ(first.lastAt, 4u);
    first.forget();
    second.forget();
    second.paused = true;
    host.newest()->undo(nullptr);
    EXPECT_EQ(first.changed, Numbers{4});
    EXPECT_EQ(first.shown, Numbers{1});
    second.paused = false;
    second.suspended = true;
    host.newest()->redo(nullptr);
    EXPECT_TRUE(second.changed.empty() && second.shown.empty());
    second.suspended = false;
    animation.removeListener(first);
    first.forget();
    animation.addFrame(7, -1, ImageRef(), true, false);
    EXPECT_TRUE(second.changed.empty()) << "without notice";
    animation.switchFrame(1, true, false);
    animation.deleteFrame(7);
    EXPECT_EQ(second.changed, Numbers{7});
    EXPECT_TRUE(first.changed.empty());
}

// A listener that shows another number from within.
TEST(AnimationManager, ListenersMayActAndLeave) {
    class Leaving final : public FrameListener {
      public:
        explicit Leaving(AnimationManager& animation) : animation_(animation) {}
        void currentFrameChanged(std::uint32_t) override {
            animation_.removeListener(*this);
            animation_.switchFrame(1);
        }

      private:
        AnimationManager& animation_;
    };
    AnimationHost host;
    AnimationManager animation(host.paint);
    const std::int32_t base = host.makeCanvas();
    animation.addFrame(1, base);
    animation.addFrame(2);
    animation.switchFrame(1);
    Leaving leaving(animation);
    animation.addListener(leaving);
    EXPECT_TRUE(animation.switchFrame(2));
    EXPECT_EQ(animation.currentFrame(), 1u);
    EXPECT_EQ(host.paint.currentCanvas(), base);
}

// One that takes another away and ends it: that one hears nothing any more.
TEST(AnimationManager, AListenerMayEndAnother) {
    class Ending final : public FrameListener {
      public:
        explicit Ending(AnimationManager& animation) : animation_(animation) {}
        void frameChanged(std::uint32_t, std::uint32_t) override {
            if (!other) return;
            animation_.removeListener(*other);
            other.reset();
        }
        std::unique_ptr<NotingListener> other = std::make_unique<NotingListener>();

      private:
        AnimationManager& animation_;
    };
    AnimationHost host;
    AnimationManager animation(host.paint);
    Ending ending(animation);
    NotingListener last;
    animation.addListener(ending);
    animation.addListener(*ending.other);
    animation.addListener(last);
    EXPECT_TRUE(animation.addFrame(1, host.makeCanvas()));
    EXPECT_EQ(ending.other, nullptr);
    EXPECT_EQ(last.changed, Numbers{1});
}

TEST(AnimationManager, LiveEditsBelongToTheFrameTheyWereMadeOn) {
    AnimationHost host;
    AnimationManager animation(host.paint);
    const std::int32_t base = host.makeCanvas();
    animation.addFrame(1, base);
    host.fill(0.0f, 1.0f, 0.0f);
    const std::int32_t ids[] = {host.paint.activeLayerId()};
    host.undo.clear();
    const std::uint64_t before = host.digest(base);
    ASSERT_TRUE(host.paint.beginTransform(ids));
    TransformRecord moved;
    moved.x = 20.0f;
    host.paint.updateTransform(moved);
    ASSERT_TRUE(animation.duplicateFrame());
    const std::uint64_t after = host.digest(base);
    EXPECT_NE(after, before);
    EXPECT_EQ(host.digest(host.paint.currentCanvas()), after);
    // With the stroke that goes on as the number is taken back.
    host.paint.beginStroke();
    host.paint.addPoint({10.0f, 10.0f, 1.0f});
    host.paint.addPoint({30.0f, 20.0f, 1.0f});
    const std::int32_t copy = host.paint.currentCanvas();
    host.newest()->undo(nullptr);
    EXPECT_NE(host.digest(copy), after) << "the stroke is on the copy";
    EXPECT_FALSE(host.paint.inStroke());
    EXPECT_EQ(host.digest(base), after);
    EXPECT_EQ(host.paint.currentCanvas(), base);
}

TEST(AnimationManager, NothingIsRecordedWhileUndoIsOff) {
    AnimationHost host;
    AnimationManager animation(host.paint);
    animation.addFrame(1, host.makeCanvas());
    const std::int32_t handle = host.newest()->undoHandle();
    host.undo.clear();
    host.paint.lockUndo(true);
    animation.addFrame(3);
    animation.duplicateFrame();
    animation.reorderFrames(3, 9);
    animation.switchFrame(1);
    animation.deleteFrame(4);
    EXPECT_EQ(host.undo.count(), 0u);
    EXPECT_EQ(host.paint.canvasCount(), 2) << "what was deleted is gone at once";
    host.paint.lockUndo(false);
    animation.switchFrame(9);
    ASSERT_EQ(host.undo.count(), 1u);
    EXPECT_EQ(host.newest()->undoHandle(), handle + 1) << "no record was made in between";
}

TEST(AnimationManager, RecordsOutliveTheirManager) {
    AnimationHost host;
    {
        AnimationManager animation(host.paint);
        animation.addFrame(1, host.makeCanvas());
        animation.addFrame(2);
        animation.deleteFrame(2);
    }
    bool deferred = false;
    host.newest()->undo(&deferred);
    EXPECT_FALSE(deferred);
    host.undo.clear();
    EXPECT_EQ(host.paint.canvasCount(), 2) << "canvases are the host's to close";
}

TEST(AnimationManager, DumpNamesNumbersAndCanvases) {
    AnimationHost host;
    AnimationManager animation(host.paint);
    const std::int32_t canvas = host.makeCanvas();
    animation.addFrame(2, canvas);
    animation.addFrame(12, canvas);
    std::string text;
    setLogSink([&](std::string_view line) { text += line; });
    animation.dumpFrames();
    setLogSink({});
    EXPECT_EQ(text, "\n#2frame: index = 0.\n#12frame: index = 0.");
}

}  // namespace
}  // namespace brushwork
