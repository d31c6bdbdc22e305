#include "foundation/tasks/worker.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace brushwork::npc {
namespace {

// Workers in a ring without a pool, and tasks that note their names.
class WorkerTest : public ::testing::Test {
  protected:
    void makeWorkers(std::int32_t count) {
        for (std::int32_t index = 0; index < count; ++index)
            workers_.push_back(std::make_unique<Thread>(index));
        for (std::size_t index = 0; index < workers_.size(); ++index)
            workers_[index]->linkTo(*workers_[(index + 1) % workers_.size()]);
    }
    void TearDown() override {
        gates_ = ~0U;
        for (const auto& worker : workers_) worker->askToStop();
        for (const auto& worker : workers_) worker->join();
    }
    // A task that runs until its gate is opened.
    Ref<AssociatedState> blocker(unsigned gate) {
        return makeRef<AssociatedState>([this, gate] {
            ++blocked_;
            while (!(gates_ & 1U << gate)) std::this_thread::yield();
        });
    }
    void open(unsigned gate) { gates_ |= 1U << gate; }
    void awaitBlocked(int count) const {
        while (blocked_ < count) std::this_thread::yield();
    }
    // Puts "1 2 3 low high" before a worker: three in order, one low, one urgent.
    void pushNames(Thread& worker) {
        const auto push = [&](const char* name, TaskPriority priority) {
            names_.push_back(makeRef<AssociatedState>([this, name] {
                const std::lock_guard lock(mutex_);
                order_ += name;
            }));
            EXPECT_TRUE(worker.push(names_.back(), priority));
        };
        push("l", TaskPriority::Low);
        for (const char* name : {"1", "2", "3"}) push(name, TaskPriority::Normal);
        push("u", TaskPriority::Urgent);
        push("L", TaskPriority::Low);
    }
    std::string order(std::size_t length) {
        for (;; std::this_thread::yield()) {
            const std::lock_guard lock(mutex_);
            if (order_.size() >= length) return order_;
        }
    }

    std::vector<std::unique_ptr<Thread>> workers_;
    std::vector<Ref<AssociatedState>> names_;
    std::atomic<unsigned> gates_{0};
    std::atomic<int> blocked_{0};
    std::mutex mutex_;
    std::string order_;
};

TEST_F(WorkerTest, AnOwnerBeginsAtTheFrontAndMainBeforeLow) {
    makeWorkers(1);
    ASSERT_TRUE(workers_[0]->push(blocker(0), TaskPriority::Normal));
    ASSERT_TRUE(workers_[0]->start());
    awaitBlocked(1);
    pushNames(*workers_[0]);
    open(0);
    EXPECT_EQ(order(6), "u123lL");
}

TEST_F(WorkerTest, AThiefTakesTheFarEndOfTheNextNeighbourWithTasks) {
    makeWorkers(3);
    for (unsigned index = 0; index < 3; ++index) {
        ASSERT_TRUE(workers_[index]->push(blocker(index), TaskPriority::Normal));
        ASSERT_TRUE(workers_[index]->start());
        awaitBlocked(static_cast<int>(index) + 1);
    }
    pushNames(*workers_[2]);
    open(0);
    EXPECT_EQ(order(6), "321uLl");
}

TEST_F(WorkerTest, IdleMeansNotBegunOrAsleep) {
    makeWorkers(1);
    Thread& worker = *workers_[0];
    EXPECT_EQ(worker.id(), std::thread::id());
    ASSERT_TRUE(worker.tryPush(blocker(0), TaskPriority::Normal, Thread::Accept::Idle));
    ASSERT_TRUE(worker.start());
    awaitBlocked(1);
    const auto task = makeRef<AssociatedState>([] {});
    EXPECT_FALSE(worker.tryPush(task, TaskPriority::Normal, Thread::Accept::Idle));
    EXPECT_TRUE(worker.tryPush(task, TaskPriority::Normal, Thread::Accept::Any));
    open(0);
    task->runOrWait();
    // Asleep at last, and woken by the push.
    while (!worker.tryPush(blocker(1), TaskPriority::Normal, Thread::Accept::Idle))
        std::this_thread::yield();
    awaitBlocked(2);
}

TEST_F(WorkerTest, AStoppedWorkerLeavesItsQueues) {
    makeWorkers(1);
    ASSERT_TRUE(workers_[0]->push(blocker(0), TaskPriority::Normal));
    ASSERT_TRUE(workers_[0]->start());
    awaitBlocked(1);
    pushNames(*workers_[0]);
    workers_[0]->askToStop();
    EXPECT_FALSE(workers_[0]->push(names_[0], TaskPriority::Normal));
    EXPECT_FALSE(workers_[0]->tryPush(names_[0], TaskPriority::Normal, Thread::Accept::Any));
    open(0);
    workers_[0]->join();
    EXPECT_EQ(order_, "");
    for (const auto& name : names_) {
        EXPECT_EQ(name->state(), AssociatedState::Pending);
        name->runOrWait();
    }
    EXPECT_EQ(order_, "l123uL");
}

// A task that a waiter runs doesn't hold up what stands behind it.
TEST_F(WorkerTest, PassesOverATaskThatAWaiterRuns) {
    makeWorkers(1);
    const auto taken = blocker(0);
    std::thread waiter([&] { taken->runOrWait(); });
    awaitBlocked(1);
    ASSERT_TRUE(workers_[0]->push(taken, TaskPriority::Urgent));
    ASSERT_TRUE(workers_[0]->start());
    pushNames(*workers_[0]);
    EXPECT_EQ(order(6).size(), 6U);
    open(0);
    waiter.join();
}

// Stops asked for at every moment of a round, which many neighbours without threads make long: none
// may be slept over.
TEST_F(WorkerTest, EndsWhenAskedAtAnyMoment) {
    makeWorkers(2000);
    for (int turn = 0; turn < 500; ++turn) {
        Thread worker(0);
        workers_.back()->linkTo(worker);
        worker.linkTo(*workers_.front());
        std::atomic<bool> begun{false};
        const auto first = makeRef<AssociatedState>([&] { begun = true; });
        ASSERT_TRUE(worker.push(first, TaskPriority::Normal));
        ASSERT_TRUE(worker.start());
        while (!begun) std::this_thread::yield();
        const auto until = std::chrono::steady_clock::now() + std::chrono::microseconds(turn % 100);
        while (std::chrono::steady_clock::now() < until) continue;
        worker.askToStop();
        worker.join();
    }
}

}  // namespace
}  // namespace brushwork::npc
