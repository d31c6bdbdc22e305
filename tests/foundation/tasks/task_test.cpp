#include "foundation/tasks/task.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <stdexcept>
#include <thread>

#include "foundation/tasks/task_queue.h"

namespace brushwork::npc {
namespace {

template <class F>
TaskHandle handleOf(F&& call) {
    return TaskHandle(makeRef<AssociatedState>(std::forward<F>(call)));
}

TEST(Task, AWaiterRunsWhatNobodyHasBegun) {
    EXPECT_FALSE(TaskHandle().isValid());
    TaskHandle().wait();
    std::thread::id ran;
    int runs = 0;
    const TaskHandle task = handleOf([&] {
        ran = std::this_thread::get_id();
        ++runs;
    });
    EXPECT_TRUE(task.isValid());
    EXPECT_FALSE(task.isDone());
    const TaskHandle copy = task;
    copy.wait();
    task.wait();
    EXPECT_TRUE(task.isDone());
    EXPECT_EQ(ran, std::this_thread::get_id());
    EXPECT_EQ(runs, 1);
}

// Of many who wait one runs, and none returns before it is done.
TEST(Task, ManyWaitersOneRun) {
    for (int turn = 0; turn < 200; ++turn) {
        int runs = 0;  // not atomic: done means that it can be read
        const TaskHandle task = handleOf([&] { ++runs; });
        std::atomic<int> early{0};
        std::vector<std::thread> waiters;
        for (int index = 0; index < 4; ++index)
            waiters.emplace_back([&early, &runs, task] {
                task.wait();
                early += runs != 1;
            });
        for (auto& waiter : waiters) waiter.join();
        ASSERT_EQ(early, 0);
    }
}

// A worker passes over a task that a waiter runs; the waiter behind it does not.
TEST(Task, OnlyWaitersWaitForARunningTask) {
    std::atomic<int> step{0};
    const TaskHandle task = handleOf([&] {
        step = 1;
        while (step == 1) std::this_thread::yield();
    });
    std::thread runner([&] { task.wait(); });
    while (step == 0) std::this_thread::yield();
    task.state()->runIfPending();
    EXPECT_FALSE(task.isDone());
    EXPECT_EQ(task.error(), nullptr);
    step = 2;
    task.state()->runOrWait();
    EXPECT_TRUE(task.isDone());
    runner.join();
}

TEST(Task, CallablesOfAllSizesAreCalledAndGivenBack) {
    auto held = std::make_shared<int>(0);  // not const: moved with its callable
    std::array<char, 200> filler{};
    auto small = [held] { ++*held; };
    auto large = [held, filler] { *held += 1 + filler[199]; };
    auto unique = [one = std::make_unique<std::shared_ptr<int>>(held)] { return ++**one; };
    static_assert(TaskCallable::fits<decltype(small)> && !TaskCallable::fits<decltype(large)>);
    static_assert(TaskCallable::fits<std::function<void()>>);
    const TaskHandle tasks[] = {handleOf(std::move(small)), handleOf(std::move(large)),
                                handleOf(std::move(unique))};
    const TaskHandle never = handleOf([held, filler] { *held += 1000 + filler[0]; });
    EXPECT_EQ(held.use_count(), 5);
    for (const auto& task : tasks) task.wait();
    EXPECT_EQ(held.use_count(), 2) << "a done task holds nothing, whoever holds the task";
    EXPECT_EQ(*held, 3);
}

TEST(Task, AnErrorStaysInTheTask) {
    const TaskHandle task = handleOf([] { throw std::runtime_error("no ink"); });
    EXPECT_EQ(task.error(), nullptr);
    task.wait();
    ASSERT_TRUE(task.isDone());
    EXPECT_THROW(std::rethrow_exception(task.error()), std::runtime_error);
    const TaskHandle empty = handleOf(std::function<void()>());
    empty.wait();
    EXPECT_THROW(std::rethrow_exception(empty.error()), std::bad_function_call);
}

// Children belong to the innermost running task, and a wait goes all the way down, without taking
// a stack frame for each generation.
TEST(Task, AWaitIncludesTheChildrenOfChildren) {
    EXPECT_EQ(AssociatedState::running(), nullptr);
    constexpr int generations = 100000;
    int runs = 0;
    struct Spawner {
        int* runs;
        int left;
        void operator()() const {
            ++*runs;
            if (left == 0) return;
            AssociatedState::running()->addChild(makeRef<AssociatedState>(Spawner{runs, left - 1}));
        }
    };
    TaskHandle inner = handleOf(Spawner{&runs, generations});
    handleOf([&] {
        inner.state()->runOrWait();
        EXPECT_NE(AssociatedState::running(), nullptr);
        EXPECT_NE(AssociatedState::running(), inner.state().get());
    }).wait();
    EXPECT_EQ(runs, 1) << "a child of the inner task isn't the outer one's";
    inner.wait();
    EXPECT_EQ(runs, generations + 1);
    inner = TaskHandle();
    EXPECT_EQ(AssociatedState::running(), nullptr);
}

TEST(TaskQueue, IsAQueueWithTwoEnds) {
    std::deque<int> model;
    std::vector<TaskQueue::Task> tasks;
    for (int index = 0; index < 100; ++index) tasks.push_back(makeRef<AssociatedState>([] {}));
    TaskQueue queue;
    unsigned random = 1;
    const auto same = [&](const TaskQueue::Task& got, bool front) {
        if (model.empty()) return !got;
        const int expected = front ? model.front() : model.back();
        front ? model.pop_front() : model.pop_back();
        return got == tasks[static_cast<std::size_t>(expected)];
    };
    for (int turn = 0; turn < 20000; ++turn) {
        random = random * 1664525U + 1013904223U;
        const int one = static_cast<int>(random >> 8) % 100;
        // Long spells of growing and of shrinking.
        const unsigned choice = (random >> 20) % 8 + (turn / 300 % 2 ? 3U : 0U);
        if (choice < 3) {
            queue.pushBack(tasks[static_cast<std::size_t>(one)]);
            model.push_back(one);
        } else if (choice < 5) {
            queue.pushFront(tasks[static_cast<std::size_t>(one)]);
            model.push_front(one);
        } else if (choice % 2) {
            ASSERT_TRUE(same(queue.popFront(), true)) << turn;
        } else {
            ASSERT_TRUE(same(queue.popBack(), false)) << turn;
        }
        ASSERT_EQ(queue.empty(), model.empty());
    }
}

}  // namespace
}  // namespace brushwork::npc
