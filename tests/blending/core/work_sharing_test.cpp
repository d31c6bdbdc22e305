#include "blending/core/work_sharing.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "foundation/tasks/task_pool.h"

namespace brushwork::npc {
namespace {

TEST(WorkSharing, EachPieceOnce) {
    for (const std::size_t count : {0u, 1u, 2u, 3u, 1000u}) {
        std::vector<std::atomic<int>> turns(count);
        shareWork(count, [&](std::size_t n) { ++turns[n]; });
        for (const auto& turn : turns) ASSERT_EQ(turn.load(), 1);
    }
}

// Thousands of jobs in a row, large and small, with pools that come and go: helpers that wait awake
// for the next job never take a piece of the last one, nor one twice.
TEST(WorkSharing, RowsOfJobsWithPoolsOfAllSizes) {
    TaskPool& pool = TaskPool::instance();
    for (const int workers : {2, 1, 8, 0, 3, 2}) {
        pool.stop();
        if (workers > 0) pool.start(workers);
        for (int job = 0; job < 2000; ++job) {
            std::vector<int> turns(static_cast<std::size_t>(1 + job % 7));
            shareWork(
                turns.size(), [&](std::size_t n) { ++turns[n]; },
                job % 3 == 0 ? SharedWork::Much : SharedWork::Some);
            for (const int turn : turns) ASSERT_EQ(turn, 1) << workers << " workers, job " << job;
        }
    }
    pool.stop();
    pool.start(TaskPool::defaultSize());
}

// Two threads that share at the same time don't get in each other's way.
TEST(WorkSharing, SideBySide) {
    const auto shareMany = [](std::vector<int>& sums) {
        for (int job = 0; job < 500; ++job)
            shareWork(sums.size(), [&](std::size_t n) { ++sums[n]; });
    };
    std::vector<int> here(9), there(5);
    std::thread other([&] { shareMany(there); });
    shareMany(here);
    other.join();
    EXPECT_EQ(here, std::vector<int>(9, 500));
    EXPECT_EQ(there, std::vector<int>(5, 500));
}

// Sharers inside a shared piece wait for each other without a standstill.
TEST(WorkSharing, Nested) {
    std::atomic<int> pieces = 0;
    shareWork(16, [&](std::size_t) { shareWork(16, [&](std::size_t) { ++pieces; }); });
    EXPECT_EQ(pieces.load(), 256);
}

}  // namespace
}  // namespace brushwork::npc
