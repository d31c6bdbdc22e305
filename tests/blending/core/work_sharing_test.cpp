#include "blending/core/work_sharing.h"

#include <gtest/gtest.h>

#include <atomic>
#include <vector>

namespace brushwork::npc {
namespace {

TEST(WorkSharing, EachPieceOnce) {
    for (const std::size_t count : {0u, 1u, 2u, 3u, 1000u}) {
        std::vector<std::atomic<int>> turns(count);
        shareWork(count, [&](std::size_t n) { ++turns[n]; });
        for (const auto& turn : turns) ASSERT_EQ(turn.load(), 1);
    }
}

// Sharers inside a shared piece wait for each other without a standstill.
TEST(WorkSharing, Nested) {
    std::atomic<int> pieces = 0;
    shareWork(16, [&](std::size_t) { shareWork(16, [&](std::size_t) { ++pieces; }); });
    EXPECT_EQ(pieces.load(), 256);
}

}  // namespace
}  // namespace brushwork::npc
