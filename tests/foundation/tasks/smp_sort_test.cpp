#include "foundation/tasks/smp_sort.h"

#include <gtest/gtest.h>

#include <numeric>
#include <random>
#include <thread>

#include "support/test_seed.h"

namespace brushwork::znUtil {
namespace {

using Less = Ordering::IndexedLessThan<int>;

// Runs the two pieces at once.
class PairPool final : public ThreadPool {
  public:
    PairPool() : ThreadPool(2) {}
    bool run(ThreadedChunkAlg& algorithm) override {
        algorithm.threadCount = 2;
        if (!algorithm.begin(2)) return false;
        std::thread other([&] { algorithm.run(1, 1, 2); });
        algorithm.run(0, 0, 2);
        other.join();
        algorithm.end();
        return true;
    }
    bool run(ThreadedAlg&) override { return false; }
};

std::vector<int> shuffled(int count, std::mt19937& random) {
    std::vector<int> order(static_cast<std::size_t>(count));
    std::iota(order.begin(), order.end(), 0);
    std::shuffle(order.begin(), order.end(), random);
    return order;
}

TEST(SmpSort, EqualsAStableSortOnOneThreadAndOnTwo) {
    const auto seed = brushwork::test::testSeed();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    PairPool pair;
    for (int turn = 0; turn < 300; ++turn) {
        const int count = turn < 40 ? turn : static_cast<int>(random() % 3000);
        // From all keys equal to nearly all different.
        const int range = 1 << random() % 16;
        std::vector<int> keys(static_cast<std::size_t>(count));
        for (int& key : keys) key = static_cast<int>(random() % static_cast<unsigned>(range)) - 9;
        const auto order = shuffled(count, random);
        auto expected = order, serial = order, parallel = order;
        const Less less(keys);
        std::stable_sort(expected.begin(), expected.end(), less);
        ASSERT_TRUE(smpSort(SimpleThreadPool::instance(), std::span<int>(serial), less));
        ASSERT_TRUE(smpSort(pair, std::span<int>(parallel), less));
        ASSERT_EQ(serial, expected) << count << " entries, keys below " << range;
        ASSERT_EQ(parallel, expected) << count << " entries, keys below " << range;
    }
}

// The halves that the merge is one-sided for: all of one before all of the other.
TEST(SmpSort, MergesOneSidedHalves) {
    for (int count = 0; count < 12; ++count) {
        std::vector<int> keys(static_cast<std::size_t>(count));
        std::iota(keys.begin(), keys.end(), 0);
        for (int turn = 0; turn < count; ++turn) {
            auto order = keys;
            std::rotate(order.begin(), order.begin() + turn, order.end());
            ASSERT_TRUE(smpSort(SimpleThreadPool::instance(), std::span<int>(order), Less(keys)));
            EXPECT_EQ(order, keys) << count << " turned by " << turn;
        }
    }
}

TEST(SmpSort, ThePiecesCutAnOddArrayBehindTheMiddle) {
    const std::vector<int> keys{5, 4, 3, 2, 1};
    std::vector<int> order{0, 1, 2, 3, 4};
    SMPSortPiecewise<int, Less> halves(order, Less(keys));
    EXPECT_EQ(halves.chunkCount, 2);
    halves.run(0, 0, 1);
    EXPECT_EQ(order, (std::vector<int>{2, 1, 0, 3, 4}));
    halves.run(1, 0, 1);
    EXPECT_EQ(order, (std::vector<int>{2, 1, 0, 4, 3}));
    SMPSortMerge<int, Less> merge(order, Less(keys));
    EXPECT_EQ(merge.chunkCount, 2);
    ASSERT_TRUE(merge.begin(1));
    merge.run(1, 0, 1);  // the back first: no order between pieces
    merge.run(0, 0, 1);
    EXPECT_EQ(order, (std::vector<int>{2, 1, 0, 4, 3}));
    merge.end();
    EXPECT_EQ(order, (std::vector<int>{4, 3, 2, 1, 0}));
}

}  // namespace
}  // namespace brushwork::znUtil
