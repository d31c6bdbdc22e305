// Long random sessions: every operation of frames, strokes and selections between them, undo and
// redo, held against a plain model after each step.
#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <set>
#include <utility>

#include "animation/animation_host.h"
#include "animation/timeline_model.h"
#include "support/test_seed.h"

namespace brushwork {
namespace {

using test::TimelineModel;

struct Moment {
    TimelineModel timeline;
    std::map<std::int32_t, std::uint64_t> pictures;  // of the canvases in the list
    std::set<std::int32_t> deleted;                  // canvases of the host whose frame was deleted
};

// One step of undo: its records, and the moments around it.
struct Level {
    std::vector<Ref<PntUndoOper>> records;
    Moment before, after;
    bool ofList = false;      // its records hold the lists before and after
    bool ofTimeline = false;  // they put back what is shown
};

class Session {
  public:
    explicit Session(std::uint32_t seed) : random_(seed) {
        base_ = host_.makeCanvas();
        now_.timeline.front = base_;
        animation_.addListener(listener_);
        host_.undo.clear();
    }
    void run(int steps) {
        for (int n = 0; n < steps && !testing::Test::HasFatalFailure(); ++n) {
            SCOPED_TRACE("step " + std::to_string(n));
            step();
            compare();
        }
    }
    std::map<std::string, int> done;

  private:
    std::uint32_t below(std::uint32_t end) {
        return std::uniform_int_distribution<std::uint32_t>(0, end - 1)(random_);
    }
    // Mostly among the frames, at times at the far end, and 0 for the current one.
    std::uint32_t anyNumber() {
        switch (below(12)) {
            case 0: return 0;
            case 1: return 990 + below(16);
            default: return 1 + below(std::max(12u, now_.timeline.last % 100 + 3));
        }
    }
    std::uint32_t resolved(std::uint32_t number) const {
        return number == 0 ? now_.timeline.current : number;
    }
    std::uint64_t picture(std::int32_t canvas) { return host_.digest(canvas); }

    void step() {
        // The view of the canvas in front goes along with whatever is shown next.
        if (below(10) == 0) {
            view_.x = static_cast<float>(below(40));
            host_.paint.setView(host_.paint.currentCanvas(), view_);
        }
        switch (below(18)) {
            case 0:
            case 1: return edit("add", &Session::add);
            case 2: return edit("add given", &Session::addGiven);
            case 3:
            case 4:
            case 5: return edit("delete", &Session::remove);
            case 6:
            case 7: return edit("duplicate", &Session::duplicate);
            case 8: return edit("reorder", &Session::reorder);
            case 9: return edit("switch", &Session::switchTo);
            case 10:
                return below(2) == 0 ? edit("modify", &Session::modify)
                                     : edit("hold", &Session::hold);
            case 11:
            case 12: return paint();
            case 13: return below(6) == 0 ? unrecorded() : undo();
            case 14:
            case 15: return undo();
            default: return redo();
        }
    }

    // Runs one operation of frames, at times on top of a stroke that is still open.
    void edit(const std::string& name, bool (Session::*operation)()) {
        Level level;
        level.before = now_;
        const std::uint32_t records = host_.undo.count();
        const bool live = below(4) == 0 && beginStroke();
        const std::int32_t painted = host_.paint.currentCanvas();
        const bool changed = (this->*operation)();
        host_.paint.endStroke();
        if (live) takePicture(painted);
        done[name] += changed;
        EXPECT_EQ(host_.undo.count() - records, (changed ? 1u : 0u) + (live ? 1u : 0u)) << name;
        level.ofTimeline = changed && name != "modify";
        level.ofList = level.ofTimeline && name != "switch";
        file(std::move(level), records);
    }
    bool beginStroke() {
        host_.paint.setColor({0.1f * static_cast<float>(below(10)), 0.5f, 0.2f, 1.0f});
        if (!host_.paint.beginStroke()) return false;
        for (int n = 0; n < 3; ++n)
            host_.paint.addPoint(
                {static_cast<float>(below(72)), static_cast<float>(below(48)), 1.0f});
        return true;
    }
    void takePicture(std::int32_t painted) {
        const auto known = now_.pictures.find(painted);
        if (known == now_.pictures.end()) return;
        const std::uint64_t now = picture(painted);
        done["visible paint"] += now != known->second;
        known->second = now;
    }
    void file(Level level, std::uint32_t records) {
        std::uint32_t place = 0;
        for (const Ref<PntUndoOper>& record : host_.undo.records())
            if (place++ >= records) level.records.push_back(record);
        if (level.records.empty()) return;
        dropRedo();
        level.after = now_;
        undo_.push_back(std::move(level));
        if (undo_.size() > 12) {
            for (std::size_t n = 0; n < undo_.front().records.size(); ++n)
                host_.undo.retireOldest();
            undo_.erase(undo_.begin());
        }
    }
    void dropRedo() {
        for (const Level& level : redo_)
            for (const Ref<PntUndoOper>& record : level.records)
                EXPECT_TRUE(host_.undo.drop(record->undoHandle()));
        redo_.clear();
    }

    bool add() {
        const std::uint32_t asked = anyNumber();
        TimelineModel& timeline = now_.timeline;
        const std::uint32_t number = asked != 0                ? asked
                                     : timeline.starts.empty() ? 1
                                                               : timeline.current + 1;
        return addAt(asked, number, -1, based_);
    }
    bool addGiven() {
        if (host_.paint.inStroke()) return false;
        const std::int32_t front = host_.paint.currentCanvas();
        std::int32_t canvas = base_;
        if (based_) {
            canvas = host_.makeCanvas();
            given_.insert(canvas);
            // Of the number's former canvas nothing is to be put back.
            for (std::vector<Level>* levels : {&undo_, &redo_})
                for (Level& level : *levels) {
                    level.before.deleted.erase(canvas);
                    level.after.deleted.erase(canvas);
                }
            host_.paint.setCurrentCanvas(front);
        }
        const std::uint32_t number = 1 + below(20);
        return addAt(number, number, canvas, true);
    }
    bool addAt(std::uint32_t asked, std::uint32_t number, std::int32_t canvas, bool possible) {
        TimelineModel& timeline = now_.timeline;
        const bool stands = timeline.starts.contains(number);
        const bool expected = stands || (possible && timeline.canAdd(number));
        EXPECT_EQ(animation_.addFrame(asked, canvas), expected);
        if (!expected) return false;
        if (stands) {
            timeline.show(number, base_);
            return false;
        }
        based_ = true;
        const std::int32_t shown = host_.paint.currentCanvas();
        if (canvas != -1) {
            EXPECT_EQ(shown, canvas);
        }
        timeline.add(number, shown);
        now_.pictures[shown] = picture(shown);
        return true;
    }
    bool remove() {
        const std::uint32_t asked = anyNumber();
        const std::uint32_t number = resolved(asked);
        const bool expected = now_.timeline.canRemove(number);
        listener_.forget();
        EXPECT_EQ(animation_.deleteFrame(asked), expected);
        if (!expected) return false;
        const auto start = now_.timeline.starts.find(number);
        if (start != now_.timeline.starts.end()) noteDeleted(start->second);
        EXPECT_EQ(now_.timeline.remove(number, base_), listener_.changed);
        return true;
    }
    void noteDeleted(std::int32_t canvas) {
        now_.pictures.erase(canvas);
        if (given_.contains(canvas)) now_.deleted.insert(canvas);
    }
    bool duplicate() {
        const std::uint32_t asked = anyNumber();
        const auto place = now_.timeline.placeOfCopy(resolved(asked));
        EXPECT_EQ(animation_.canDuplicate(asked), place.has_value());
        EXPECT_EQ(animation_.duplicateFrame(asked), place.has_value());
        if (!place) return false;
        const std::int32_t source =
            now_.timeline.starts.at(*now_.timeline.startOf(resolved(asked)));
        const std::int32_t copy = host_.paint.currentCanvas();
        EXPECT_FALSE(now_.pictures.contains(copy));
        now_.pictures[copy] = picture(copy);
        EXPECT_EQ(now_.pictures[copy], picture(source));
        now_.timeline.insertPushing(*place, copy);
        return true;
    }
    bool reorder() {
        const std::uint32_t from = anyNumber(), to = anyNumber();
        const bool expected = now_.timeline.canMove(resolved(from), resolved(to));
        EXPECT_EQ(animation_.reorderFrames(from, to), expected);
        return expected && now_.timeline.move(resolved(from), resolved(to));
    }
    bool switchTo() {
        const std::uint32_t asked = anyNumber();
        const std::uint32_t number = resolved(asked);
        const bool expected = number <= TimelineModel::most && based_;
        EXPECT_EQ(animation_.switchFrame(asked), expected);
        if (!expected) return false;
        const TimelineModel before = now_.timeline;
        now_.timeline.show(number, base_);
        return before != now_.timeline;
    }
    bool hold() { return holdTo(below(4) == 0 ? below(1100) : below(30), true); }
    bool holdTo(std::uint32_t last, bool undo) {
        TimelineModel& timeline = now_.timeline;
        const bool possible = last <= TimelineModel::most && !timeline.starts.empty();
        EXPECT_EQ(animation_.setLastFrame(last, undo), possible);
        if (!possible) return false;
        last = std::max(last, timeline.starts.rbegin()->first);
        return std::exchange(timeline.last, last) != last;
    }
    bool modify() {
        const std::uint32_t asked = anyNumber();
        const bool expected = resolved(asked) <= TimelineModel::most &&
                              now_.timeline.startOf(resolved(asked)).has_value();
        const Ref<AnimFrame> fields(new AnimFrame(nullptr));
        fields->hostValue1 = static_cast<std::int32_t>(below(1000));
        fields->isKey = true;
        EXPECT_EQ(animation_.modifyFrame(asked, *fields), expected);
        return expected;
    }

    void paint() {
        Level level;
        level.before = now_;
        const std::uint32_t records = host_.undo.count();
        if (below(3) == 0)
            host_.paint.selectRegion(flatTile(static_cast<std::int32_t>(below(50)),
                                              static_cast<std::int32_t>(below(30)), 30, 20));
        else if (below(3) == 0)
            host_.fill(0.3f, 0.1f * static_cast<float>(below(10)), 0.4f);
        else if (beginStroke())
            host_.paint.endStroke();
        const std::int32_t painted = host_.paint.currentCanvas();
        takePicture(painted);
        ++done["paint"];
        file(std::move(level), records);
    }
    // Edits that leave no record, on a list that no record knows any more.
    void unrecorded() {
        host_.undo.clear();
        undo_.clear();
        redo_.clear();
        const std::uint32_t number = 1 + below(12);
        if (below(2) == 0) {
            static_cast<void>(holdTo(below(1100), false));
        } else if (now_.timeline.canRemove(number)) {
            const auto start = now_.timeline.starts.find(number);
            if (start != now_.timeline.starts.end()) noteDeleted(start->second);
            EXPECT_TRUE(animation_.deleteFrame(number, false));
            now_.timeline.remove(number, base_);
        }
        EXPECT_EQ(host_.undo.count(), 0u);
        ++done["unrecorded"];
    }

    void undo() {
        if (undo_.empty()) return;
        Level level = std::move(undo_.back());
        undo_.pop_back();
        const std::uint32_t records = host_.undo.count();
        bool deferred = false;
        for (auto record = level.records.rbegin(); record != level.records.rend(); ++record)
            (*record)->undo(&deferred);
        EXPECT_EQ(host_.undo.count(), records) << "undo files nothing";
        host_.paint.refreshDisplay(-2);
        putBack(level.before, level.ofTimeline);
        redo_.push_back(std::move(level));
        ++done["undo"];
    }
    void redo() {
        if (redo_.empty()) return;
        Level level = std::move(redo_.back());
        redo_.pop_back();
        bool deferred = false;
        for (const Ref<PntUndoOper>& record : level.records) record->redo(&deferred);
        host_.paint.refreshDisplay(-2);
        putBack(level.after, level.ofTimeline);
        undo_.push_back(std::move(level));
        ++done["redo"];
    }
    void putBack(const Moment& moment, bool ofTimeline) {
        now_.pictures = moment.pictures;
        if (!ofTimeline) return;
        now_.timeline = moment.timeline;
        now_.deleted = moment.deleted;
    }

    void compare() {
        const TimelineModel& timeline = now_.timeline;
        TimelineModel real;
        real.current = animation_.currentFrame();
        real.last = animation_.lastFrame();
        real.front = host_.paint.currentCanvas();
        for (std::size_t n = 0; n < animation_.frameCount(); ++n) {
            const Ref<AnimFrame> frame = animation_.frameAt(n);
            real.starts[frame->frameNumber] = frame->canvasIndex();
        }
        ASSERT_EQ(real.starts, timeline.starts);
        ASSERT_EQ(real.current, timeline.current);
        ASSERT_EQ(real.last, timeline.last);
        ASSERT_EQ(real.front, timeline.front);
        for (const auto& [canvas, hash] : now_.pictures)
            ASSERT_EQ(picture(canvas), hash) << "canvas " << canvas;
        for (std::uint32_t number = 1; number < 30; ++number) {
            std::size_t place = 0;
            const auto start = timeline.startOf(number);
            ASSERT_EQ(animation_.findFrame(number, place), start.has_value());
            if (start) {
                ASSERT_EQ(animation_.frameAt(place)->frameNumber, *start);
            }
            ASSERT_EQ(animation_.canInsertAt(number), timeline.canAdd(number));
        }
        if (!listener_.shown.empty()) heard_ = listener_.shown.back();
        listener_.forget();
        ASSERT_EQ(heard_, timeline.current);
        TransformRecord view;
        ASSERT_TRUE(host_.paint.view(host_.paint.currentCanvas(), view));
        ASSERT_EQ(view, view_);
        compareOpenCanvases();
    }
    // Exactly those that the list or a record has, the base, and the host's own.
    void compareOpenCanvases() {
        std::set<std::int32_t> open{base_};
        const auto take = [&](const TimelineModel& timeline) {
            for (const auto& [start, canvas] : timeline.starts) open.insert(canvas);
        };
        take(now_.timeline);
        for (const std::vector<Level>* levels : {&undo_, &redo_})
            for (const Level& level : *levels) {
                if (!level.ofList) continue;
                take(level.before.timeline);
                take(level.after.timeline);
            }
        for (const std::int32_t canvas : given_)
            if (!now_.deleted.contains(canvas)) open.insert(canvas);
        std::set<std::int32_t> real;
        for (std::int32_t canvas = 0; canvas < host_.paint.canvasCapacity(); ++canvas)
            if (host_.paint.hasCanvas(canvas)) real.insert(canvas);
        ASSERT_EQ(real, open);
        // Numbers of closed ones are given out again.
        std::erase_if(given_, [&](std::int32_t canvas) { return !open.contains(canvas); });
        std::erase_if(now_.deleted, [&](std::int32_t canvas) { return !open.contains(canvas); });
    }

    std::mt19937 random_;
    test::AnimationHost host_;
    AnimationManager animation_{host_.paint};
    test::NotingListener listener_;
    std::int32_t base_ = -1;
    bool based_ = false;
    std::set<std::int32_t> given_;  // canvases of the host
    TransformRecord view_;
    std::uint32_t heard_ = 1;
    Moment now_;
    std::vector<Level> undo_, redo_;
};

TEST(AnimationSession, FramesAreThoseOfAPlainModel) {
    std::map<std::string, int> done;
    for (std::uint32_t round = 0; round < 6; ++round) {
        const std::uint32_t seed = test::testSeed() + round;
        SCOPED_TRACE("seed " + std::to_string(seed));
        Session session(seed);
        session.run(400);
        for (const auto& [name, count] : session.done) done[name] += count;
        if (HasFailure()) return;
    }
    // A session that does nothing of a kind would show nothing.
    for (const char* name : {"add", "add given", "delete", "duplicate", "reorder", "switch", "hold",
                             "modify", "paint", "undo", "redo", "unrecorded", "visible paint"})
        EXPECT_GT(done[name], 10) << name;
}

}  // namespace
}  // namespace brushwork
