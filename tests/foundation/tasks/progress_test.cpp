#include "brushwork/progress.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "foundation/base/callable.h"
#include "foundation/tasks/async_task_progress.h"

namespace brushwork::znUtil {
namespace {

using znString::CString;

TEST(Progress, NestedReportersMapIntoTheirParents) {
    Progress root;
    std::vector<double> seen;
    root.onFraction([&](double fraction) { seen.push_back(fraction); });
    Progress half(root, 0.5, 1.0);
    half.setFraction(0.5);
    EXPECT_EQ(root.fraction(), 0.75);
    EXPECT_EQ(half.fraction(), 0.5);
    Progress quarter(half, 0.25, 0.5);
    quarter.setFraction(0.5);
    EXPECT_EQ(root.fraction(), 0.6875);
    EXPECT_EQ(half.fraction(), 0.375);
    EXPECT_EQ(quarter.fraction(), 0.5);
    root.setFraction(0.1);
    EXPECT_EQ(quarter.fraction(), 0.0);
    root.setFraction(0.9);
    EXPECT_EQ(quarter.fraction(), 1.0);
    EXPECT_EQ(seen, (std::vector<double>{0.75, 0.6875, 0.1, 0.9}));
}

// Random trees: a leaf's 0 and 1 are the ends of its range in the root's scale, computed from the
// root downward.
TEST(Progress, RandomTreesKeepTheirRanges) {
    constexpr std::uint32_t seed = 5;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto fraction = [&] { return static_cast<double>(random() % 1025) / 1024.0; };
    for (int round = 0; round < 500; ++round) {
        Progress root;
        Progress leaf = root;
        double low = 0, high = 1;
        for (auto depth = random() % 6; depth > 0; --depth) {
            const double start = fraction(), end = fraction();
            leaf = Progress(leaf, start, end);
            const double width = high - low;
            high = low + end * width;
            low = low + start * width;
        }
        const double value = fraction();
        leaf.setFraction(value);
        ASSERT_NEAR(root.fraction(), low + value * (high - low), 1e-12);
    }
}

TEST(Progress, FinishGoesToTheEndUnlessAParentHasFinished) {
    Progress root;
    int reports = 0;
    root.onFraction([&](double) { ++reports; });
    Progress outer(root, 0.0, 0.5);
    Progress inner(outer, 0.0, 0.5);
    inner.finish();
    EXPECT_EQ(root.fraction(), 0.25);
    EXPECT_TRUE(inner.isFinished());
    EXPECT_FALSE(outer.isFinished());
    outer.finish();
    EXPECT_EQ(root.fraction(), 0.5);

    Progress late(Progress(outer, 0.0, 1.0), 0.0, 0.1);
    late.finish();
    EXPECT_EQ(root.fraction(), 0.5);
    EXPECT_TRUE(late.isFinished());
    EXPECT_EQ(reports, 2);

    root.finish();
    EXPECT_EQ(reports, 3) << "a root reports once more";
    EXPECT_EQ(root.fraction(), 0.5);
    Progress after(root, 0.5, 1.0);
    after.finish();
    EXPECT_EQ(root.fraction(), 0.5);
}

TEST(Progress, TheRootOwnsMessageStateAndCancellation) {
    std::string trace;
    auto root = std::make_optional<Progress>();
    Progress leaf(Progress(*root, 0.0, 0.5), 0.0, 0.5);
    leaf.onMessage([&](const CString& message) { trace += message.c_str(); });
    leaf.onState([&](std::int32_t state) { trace += std::to_string(state); });
    root->onCancel([&](bool cancelled) { trace += cancelled ? '!' : '?'; });
    leaf.setMessage("copying ");
    leaf.setState(2);
    leaf.cancel();
    leaf.cancel();
    EXPECT_EQ(root->message().view(), "copying ");
    EXPECT_EQ(root->state(), 2);
    EXPECT_TRUE(root->isCancelled());
    root->clearCancel();
    EXPECT_FALSE(leaf.isCancelled());
    EXPECT_EQ(trace, "copying 2!?");
    root.reset();
    leaf.setFraction(1.0);
    EXPECT_EQ(leaf.fraction(), 1.0) << "a leaf keeps its root alive";
    EXPECT_EQ(leaf.message().view(), "copying ");
}

TEST(AsyncTaskProgress, StartsAndNotesChanges) {
    AsyncTaskProgress progress;
    EXPECT_EQ(progress.state(), 3);
    EXPECT_EQ(progress.fraction(), 0.0F);
    EXPECT_TRUE(progress.done());
    EXPECT_FALSE(progress.changed() || progress.isRunning());
    progress.setFraction(0.5F);
    EXPECT_TRUE(progress.changed());
    progress.start();
    EXPECT_TRUE(progress.isRunning());
    EXPECT_FALSE(progress.changed());
    EXPECT_EQ(progress.fraction(), 0.5F);
    progress.assign({1, 2, 3});
    EXPECT_EQ(progress.range(), (AsyncTaskProgress::Range{1, 2, 3}));
    progress.setState(4);
    EXPECT_FALSE(progress.isRunning());
}

TEST(Callable, CallsAMemberThroughItsBase) {
    struct Counter {
        void tick() { ++ticks; }
        int ticks = 0;
    } counter;
    const Ref<znRTB::FunctionVoid> call =
        makeRef<znRTB::FunctionVoidMember<Counter>>(counter, &Counter::tick);
    const Ref<znRTB::FunctionVoid> second = call;
    (*call)();
    (*second)();
    EXPECT_EQ(counter.ticks, 2);
    EXPECT_EQ(call->refCount(), 2U);
}

}  // namespace
}  // namespace brushwork::znUtil
