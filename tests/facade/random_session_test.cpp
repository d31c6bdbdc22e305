// Sessions of random calls. BRUSHWORK_SESSION_STEPS sets the calls of each test,
// BRUSHWORK_SESSION_SEED the first seed, BRUSHWORK_SESSION_TELL prints each call as it is made. A
// failure names the seed and the call.
#include <gtest/gtest.h>

#include <cstdlib>

#include "facade/document_state.h"
#include "facade/session_ops.h"

namespace brushwork::test {
namespace {

std::uint32_t fromEnvironment(const char* name, std::uint32_t otherwise) {
    const char* const text = std::getenv(name);
    return text ? static_cast<std::uint32_t>(std::strtoul(text, nullptr, 0)) : otherwise;
}

bool tells() {
    static const bool asked = std::getenv("BRUSHWORK_SESSION_TELL") != nullptr;
    return asked;
}

void start(PaintManager& manager, SessionHost& host) {
    host.manager = &manager;
    manager.newCanvas(220, 160);
    manager.newLayer();
    manager.newCanvas(150, 130);
    manager.newLayer();
    manager.setCurrentCanvas(0);
    manager.clearUndo();
}

// What an edit filed, and the document on both sides of it.
struct Level {
    std::string name;
    std::vector<Ref<PntUndoOper>> records;
    DocumentState before, after;

    // With the flag what is shown follows at the next present.
    void undo(bool* defer) const {
        for (auto record = records.rbegin(); record != records.rend(); ++record)
            (*record)->undo(defer);
    }
    void redo(bool* defer) const {
        for (const Ref<PntUndoOper>& record : records) record->redo(defer);
    }
};

// A host's levels over the database: newest last, `done` of them not undone.
class StrictSession {
  public:
    explicit StrictSession(std::uint32_t seed) : ops_(host_, manager_, seed, false), seed_(seed) {
        start(manager_, host_);
        shown_ = stateOf(manager_);
    }

    void run(std::uint32_t steps) {
        for (std::uint32_t n = 0; n < steps && !testing::Test::HasFailure(); ++n) {
            step_ = n;
            const int what = static_cast<int>(ops_.below(100));
            if (what < 10)
                undo(static_cast<int>(ops_.below(4)) + 1);
            else if (what < 18)
                redo(static_cast<int>(ops_.below(5)) + 1);
            else if (what < 21)
                retire();
            else
                edit();
        }
        if (testing::Test::HasFailure()) return;
        undo(1 << 20);
        redo(1 << 20);
        undo(1 << 20);
        while (!testing::Test::HasFailure() && !levels_.empty()) {
            redo(static_cast<int>(ops_.below(3)) + 1);
            retire();
        }
    }
    [[nodiscard]] std::uint32_t edits() const { return edits_; }

  private:
    void expect(const DocumentState& wanted, const std::string& what) {
        ASSERT_EQ(differences(wanted, stateOf(manager_)), "")
            << what << ", seed " << seed_ << ", step " << step_;
    }

    void edit() {
        const SessionOps::Op& op = ops_.pick(true);
        const std::uint32_t count = host_.undo.count();
        // What is undone can't be done again after a new edit.
        Level level{op.name, {}, shown_, {}};
        if (op.undo == SessionOps::Undo::Bare)
            for (std::int32_t canvas = 0; canvas < manager_.canvasCount(); ++canvas)
                manager_.recordCanvas(canvas);
        if (tells()) std::fprintf(stderr, "%u.%u %s\n", seed_, step_, op.name);
        op.run(ops_);
        manager_.endTransform(true);
        manager_.endFill();
        level.after = stateOf(manager_);
        ++edits_;
        const auto records = host_.records();
        level.records.assign(records.begin() + static_cast<std::ptrdiff_t>(count), records.end());
        if (level.records.empty()) {
            ASSERT_EQ(differences(shown_, level.after), "")
                << op.name << " changed without a record, seed " << seed_ << ", step " << step_;
            return;
        }
        shown_ = level.after;
        while (levels_.size() > done_) {
            for (const auto& record : levels_.back().records) host_.undo.drop(record->undoHandle());
            levels_.pop_back();
        }
        levels_.push_back(std::move(level));
        ++done_;
        if (ops_.chance(30)) {
            undo(1);
            redo(1);
        }
    }
    void undo(int times) {
        for (; times > 0 && done_ > 0 && !testing::Test::HasFatalFailure(); --times) {
            const Level& level = levels_[--done_];
            if (tells()) std::fprintf(stderr, "undo %s\n", level.name.c_str());
            level.undo(ops_.chance(50) ? &deferred_ : nullptr);
            shown_ = level.before;
            expect(shown_, "undo of " + level.name);
        }
    }
    void redo(int times) {
        for (; times > 0 && done_ < levels_.size() && !testing::Test::HasFatalFailure(); --times) {
            const Level& level = levels_[done_++];
            if (tells()) std::fprintf(stderr, "redo %s\n", level.name.c_str());
            level.redo(ops_.chance(50) ? &deferred_ : nullptr);
            shown_ = level.after;
            expect(shown_, "redo of " + level.name);
        }
    }
    // The oldest level leaves; a host trims only what isn't undone.
    void retire() {
        if (done_ == 0) return;
        const std::string name = levels_.front().name;
        if (tells()) std::fprintf(stderr, "retire %s\n", name.c_str());
        for (std::size_t n = levels_.front().records.size(); n > 0; --n) host_.undo.retireOldest();
        levels_.erase(levels_.begin());
        --done_;
        expect(shown_, "retiring " + name);
    }

    SessionHost host_;
    PaintManager manager_;
    SessionOps ops_;
    std::vector<Level> levels_;
    std::size_t done_ = 0;
    bool deferred_ = false;
    DocumentState shown_;
    std::uint32_t seed_, step_ = 0, edits_ = 0;
};

TEST(RandomSession, EveryStateComesBack) {
    const std::uint32_t first = fromEnvironment("BRUSHWORK_SESSION_SEED", 1);
    const std::uint32_t steps = fromEnvironment("BRUSHWORK_SESSION_STEPS", 900);
    constexpr std::uint32_t perSession = 150;
    std::uint32_t edits = 0;
    for (std::uint32_t n = 0; n * perSession < steps && !HasFailure(); ++n) {
        StrictSession session(first + n);
        session.run(perSession);
        edits += session.edits();
    }
    RecordProperty("edits", static_cast<int>(edits));
    std::printf("seeds from %u, %u edits\n", first, edits);
}

// Only fills and the wand speak to a person, each for want of a canvas, and addShape of layers that
// don't take the shape.
void expectKnownTexts(SessionHost& host, const std::string& name) {
    const bool fills =
        name == "floodFill" || name == "openFill" || name == "continueFill" || name == "sampleFill";
    for (const std::string& text : host.messages) {
        const bool known =
            fills ? text.find("No image layer present.") == 0
                  : name == "magicWand" && text.find("There is no image layer in the window.") == 0;
        EXPECT_TRUE(known) << name << " says " << text;
    }
    for (const SessionHost::Error& error : host.errors)
        EXPECT_TRUE(name == "addShape" && error.text.find("Cannot ") == 0)
            << name << " reports " << error.text;
    host.messages.clear();
    host.errors.clear();
}

// Anything at any time: undo while a stroke is open, records of canvases that are gone.
TEST(RandomSession, NothingIsTooAbsurd) {
    const std::uint32_t first = fromEnvironment("BRUSHWORK_SESSION_SEED", 1);
    const std::uint32_t steps = fromEnvironment("BRUSHWORK_SESSION_STEPS", 6000);
    constexpr std::uint32_t perSession = 600;
    std::uint32_t calls = 0;
    for (std::uint32_t session = 0; session * perSession < steps && !HasFailure(); ++session) {
        SCOPED_TRACE(testing::Message() << "seed " << first + session);
        SessionHost host;
        PaintManager manager;
        SessionOps ops(host, manager, first + session, true);
        start(manager, host);
        for (std::uint32_t n = 0; n < perSession; ++n, ++calls) {
            if (ops.chance(12) && host.undo.count() > 0) {
                const auto records = host.records();
                const Ref<PntUndoOper> record = records[ops.below(records.size())];
                bool deferred = false;
                if (tells()) std::fprintf(stderr, "%u.%u undo/redo\n", first + session, n);
                if (ops.chance(50))
                    record->undo(ops.chance(50) ? &deferred : nullptr);
                else
                    record->redo(ops.chance(50) ? &deferred : nullptr);
                continue;
            }
            if (ops.chance(4)) {
                host.undo.retireOldest();
                continue;
            }
            const SessionOps::Op& op = ops.pick(false);
            if (tells()) std::fprintf(stderr, "%u.%u %s\n", first + session, n, op.name);
            ASSERT_NO_THROW(op.run(ops)) << op.name;
            expectKnownTexts(host, op.name);
        }
        manager.endStroke();
    }
    std::printf("seeds from %u, %u calls\n", first, calls);
}

}  // namespace
}  // namespace brushwork::test
