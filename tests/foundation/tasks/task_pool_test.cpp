#include "foundation/tasks/task_pool.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <set>
#include <stdexcept>

#include "brushwork/runtime.h"
#include "platform/processor.h"
#include "support/test_seed.h"

namespace brushwork {
namespace {

using npc::spawnChild;
using npc::TaskHandle;

class TaskPoolTest : public ::testing::TestWithParam<std::int32_t> {
  protected:
    void SetUp() override {
        pool_.stop();
        pool_.start(GetParam());
        ASSERT_EQ(pool_.size(), GetParam());
    }
    void TearDown() override {
        pool_.stop();
        pool_.start(TaskPool::defaultSize());
    }
    TaskPool& pool_ = TaskPool::instance();
};

INSTANTIATE_TEST_SUITE_P(Workers, TaskPoolTest, ::testing::Values(1, 2, 8));

// A random tree of tasks. Each node is begun once and makes children in any of the ways there are;
// some wait for some of them, some throw.
class Tree {
  public:
    explicit Tree(unsigned seed) : seed_(seed) {}

    TaskHandle root() { return TaskPool::instance().submit(node(1)); }
    [[nodiscard]] int made() const { return made_; }
    [[nodiscard]] int run() const { return run_; }
    [[nodiscard]] int unfinishedWaits() const { return unfinishedWaits_; }
    void waitForAll() {
        for (;;) {
            std::vector<TaskHandle> some;
            {
                const std::lock_guard lock(mutex_);
                some.swap(loose_);
            }
            if (some.empty()) return;
            for (const TaskHandle& one : some) one.wait();
        }
    }

  private:
    std::function<void()> node(int depth) {
        const auto id = static_cast<unsigned>(made_++);
        return [this, depth, id] { visit(depth, id); };
    }
    void visit(int depth, unsigned id) {
        ++run_;
        std::mt19937 random(seed_ + id);
        const auto children = depth < 7 ? random() % 5 : 0;
        std::vector<TaskHandle> handles;
        for (auto index = children; index > 0; --index) {
            if (random() % 2) {
                handles.push_back(spawnChild(node(depth + 1)));
            } else {
                const auto priority = static_cast<TaskPriority>(random() % 3);
                const auto preferred = static_cast<std::int32_t>(random() % 12) - 2;
                handles.push_back(
                    TaskPool::instance().submit(node(depth + 1), priority, preferred));
                const std::lock_guard lock(mutex_);
                loose_.push_back(handles.back());
            }
        }
        if (random() % 2)
            for (const TaskHandle& handle : handles) {
                handle.wait();
                unfinishedWaits_ += !handle.isDone();
            }
        if (random() % 8 == 0) throw std::runtime_error("thrown on purpose");
    }

    const unsigned seed_;
    std::atomic<int> made_{0}, run_{0}, unfinishedWaits_{0};
    std::mutex mutex_;
    std::vector<TaskHandle> loose_;  // submitted, so that no wait for a parent includes them
};

TEST_P(TaskPoolTest, RandomTreesOfTasks) {
    const auto seed = brushwork::test::testSeed();
    SCOPED_TRACE("seed " + std::to_string(seed));
    int nodes = 0;
    for (unsigned turn = 0; turn < 60; ++turn) {
        Tree tree(seed + 1000003 * turn);
        tree.root().wait();
        tree.waitForAll();
        ASSERT_EQ(tree.run(), tree.made());
        ASSERT_EQ(tree.unfinishedWaits(), 0);
        nodes += tree.made();
    }
    EXPECT_GT(nodes, 60);
}

// Every worker waits for tasks that only a waiter can run.
TEST_P(TaskPoolTest, WaitingInsideTasksNeverBlocks) {
    struct Sum {
        std::int64_t from, to, result = 0;
        void run() {
            if (to - from < 8) {
                for (std::int64_t value = from; value < to; ++value) result += value;
                return;
            }
            Sum low{from, (from + to) / 2}, high{(from + to) / 2, to};
            const TaskHandle other = TaskPool::instance().submit([&] { high.run(); });
            low.run();
            other.wait();
            result = low.result + high.result;
        }
    };
    Sum sum{0, 20000};
    sum.run();
    EXPECT_EQ(sum.result, 20000LL * 19999 / 2);
}

// Threads of a host share the pool; a task that is run by a waiter is dropped by its queue.
TEST_P(TaskPoolTest, ManySubmittersAndWaiters) {
    std::atomic<int> runs{0};
    std::vector<std::thread> hosts;
    for (int host = 0; host < 3; ++host)
        hosts.emplace_back([&] {
            for (int turn = 0; turn < 300; ++turn) {
                std::vector<TaskHandle> handles;
                for (int index = 0; index < 10; ++index)
                    handles.push_back(pool_.submit([&] { ++runs; }));
                for (const auto& handle : handles) handle.wait();
            }
        });
    for (auto& host : hosts) host.join();
    EXPECT_EQ(runs, 9000);
}

TEST_P(TaskPoolTest, WaitForAParentIncludesItsChildren) {
    for (int turn = 0; turn < 200; ++turn) {
        std::atomic<int> runs{0};
        std::atomic<bool> strayed{false};
        const TaskHandle parent = pool_.submit([&] {
            for (int index = 0; index < 4; ++index)
                spawnChild([&] {
                    const TaskHandle grandchild = spawnChild([&] { ++runs; });
                    strayed = strayed || !grandchild.isValid();
                    ++runs;
                });
        });
        parent.wait();
        ASSERT_EQ(runs, 8);
        ASSERT_FALSE(strayed);
    }
    int outside = 0;
    spawnChild([&] { ++outside; }).wait();
    EXPECT_EQ(outside, 1);
}

// An error reaches nobody but who asks the handle; the worker goes on.
TEST_P(TaskPoolTest, ErrorsStayInTheirTasks) {
    std::vector<TaskHandle> handles;
    for (int index = 0; index < 200; ++index)
        handles.push_back(pool_.submit([index] {
            if (index % 3 == 0) throw std::out_of_range("beyond the canvas");
        }));
    for (std::size_t index = 0; index < handles.size(); ++index) {
        handles[index].wait();
        EXPECT_EQ(handles[index].error() != nullptr, index % 3 == 0) << index;
    }
    EXPECT_TRUE(pool_.isRunning());
}

// Stops at random moments, with tasks in queues, under way and spawning: whoever waits finds each
// done, once.
TEST_P(TaskPoolTest, StopWithQueuedWork) {
    for (int turn = 0; turn < 100; ++turn) {
        std::atomic<int> runs{0};
        std::vector<TaskHandle> handles;
        for (int index = 0; index < 40; ++index)
            handles.push_back(pool_.submit([&] {
                ++runs;
                spawnChild([&] { ++runs; });
            }));
        for (int wait = 0; wait < turn; ++wait) std::this_thread::yield();
        pool_.stop();
        EXPECT_FALSE(pool_.isRunning());
        EXPECT_EQ(pool_.size(), 0);
        for (const auto& handle : handles) handle.wait();
        ASSERT_EQ(runs, 80);
        pool_.start(GetParam());
    }
}

TEST_P(TaskPoolTest, StopWhileOthersSubmitAndWait) {
    std::atomic<bool> ended{false};
    std::atomic<int> runs{0};
    int submitted = 0;
    std::thread host([&] {
        while (!ended) {
            const TaskHandle task = pool_.submit([&] { ++runs; });
            EXPECT_EQ(pool_.workerIndex(std::this_thread::get_id()), -1);
            task.wait();
            ++submitted;
        }
    });
    for (int turn = 0; turn < 100; ++turn) {
        pool_.stop();
        pool_.start(GetParam());
    }
    ended = true;
    host.join();
    EXPECT_EQ(runs, submitted);
}

TEST_P(TaskPoolTest, WorkersKnowTheirIndex) {
    EXPECT_EQ(pool_.workerIndex(std::this_thread::get_id()), -1);
    EXPECT_EQ(TaskPool::callingWorkerIndex(), -1);
    // Tasks that nobody waits for until all workers are in one.
    std::mutex mutex;
    std::set<std::int32_t> seen;
    std::atomic<int> wrong{0}, inside{0};
    std::vector<TaskHandle> handles;
    for (std::int32_t index = 0; index < GetParam(); ++index)
        handles.push_back(pool_.submit(
            [&] {
                const std::int32_t own = TaskPool::callingWorkerIndex();
                wrong += own != pool_.workerIndex(std::this_thread::get_id());
                pool_.stop();  // not from here
                wrong += !pool_.isRunning();
                {
                    const std::lock_guard lock(mutex);
                    seen.insert(own);
                }
                ++inside;
            },
            TaskPriority::Normal, index));
    while (inside < GetParam()) std::this_thread::yield();
    EXPECT_EQ(wrong, 0);
    EXPECT_GE(*seen.begin(), 0);
    EXPECT_LT(*seen.rbegin(), GetParam());
    for (const auto& handle : handles) handle.wait();
}

TEST(TaskPool, WithoutWorkersAWaiterRunsTheTask) {
    TaskPool& pool = TaskPool::instance();
    pool.stop();
    int runs = 0;
    const TaskHandle task = pool.submit([&] {
        ++runs;
        spawnChild([&] { ++runs; });
    });
    EXPECT_TRUE(task.isValid());
    EXPECT_EQ(task.state()->refCount(), 1U) << "it stands in no queue";
    task.wait();
    EXPECT_EQ(runs, 2);
    pool.start(0);
    EXPECT_EQ(pool.size(), 1);
    pool.start(5);
    EXPECT_EQ(pool.size(), 1) << "it runs already";
    pool.stop();
    pool.start(100000);
    EXPECT_EQ(pool.size(), TaskPool::mostWorkers);
    pool.stop();
    pool.start(TaskPool::defaultSize());
}

TEST(TaskPool, AHostSetsTheNumberOfWorkers) {
    TaskPool& pool = TaskPool::instance();
    EXPECT_EQ(runtime::setWorkerCount(3), 3);
    EXPECT_EQ(pool.size(), 3) << "a running pool is restarted";
    EXPECT_EQ(runtime::setWorkerCount(1 << 30), TaskPool::mostWorkers);
    EXPECT_EQ(runtime::setWorkerCount(2), 2);
    pool.stop();
    EXPECT_EQ(runtime::setWorkerCount(4), 4);
    EXPECT_FALSE(pool.isRunning()) << "a stopped one isn't started";
    EXPECT_EQ(runtime::setWorkerCount(-1), platform::logicalProcessorCount());
    EXPECT_EQ(runtime::setWorkerCount(0), platform::logicalProcessorCount());
    pool.start(TaskPool::defaultSize());
    EXPECT_EQ(pool.size(), platform::logicalProcessorCount());
}

}  // namespace
}  // namespace brushwork
