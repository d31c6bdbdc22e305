#include "fill/page_reach.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

#include "fill/page_grid.h"
#include "fill/page_queue.h"

namespace brushwork {
namespace {

TEST(BitRow, SpreadsThroughRunsAsALoopWould) {
    std::mt19937_64 random(1);
    for (int round = 0; round < 20000; ++round) {
        BitRow open{random(), random()};
        for (int i = round % 5; i > 0; --i) open = open | BitRow{random(), random()};
        const BitRow seeds = open & BitRow{random() & random() & random(), random() & random()};
        BitRow wanted = seeds;
        for (int x = 1; x < 128; ++x)
            if (wanted.test(x - 1) && open.test(x)) wanted.set(x);
        for (int x = 126; x >= 0; --x)
            if (wanted.test(x + 1) && open.test(x)) wanted.set(x);
        ASSERT_EQ(spread(seeds, open), wanted) << std::hex << open.low << " " << open.high;
    }
    const BitRow all = ~BitRow{};
    for (int x = 0; x < 128; ++x) {
        BitRow seed;
        seed.set(x);
        EXPECT_EQ(spread(seed, all), all) << x;
        EXPECT_EQ(seed.next(0), x);
        EXPECT_EQ(seed.previous(127), x);
        EXPECT_EQ(seed.next(x + 1), 128);
        EXPECT_EQ(seed.previous(x - 1), -1);
        EXPECT_EQ(BitRow::range(x, x + 1), seed);
    }
    EXPECT_EQ(BitRow::range(0, 128), all);
    EXPECT_FALSE(BitRow::range(64, 64).any());
}

TEST(PageQueue, IsAnOrderedSet) {
    std::mt19937 random(2);
    PageQueue queue;
    ASSERT_TRUE(queue.reset(10000));
    std::set<std::int32_t> model;
    for (int round = 0; round < 20000; ++round) {
        const auto page = static_cast<std::int32_t>(random() % 10000);
        if (random() % 2 == 0) {
            queue.insert(page);
            model.insert(page);
        } else if (!model.empty()) {
            const auto from = model.lower_bound(page);
            ASSERT_EQ(queue.firstFrom(page), from == model.end() ? -1 : *from);
            ASSERT_EQ(queue.first(), *model.begin());
            queue.remove(*model.begin());
            model.erase(model.begin());
        }
        ASSERT_EQ(queue.empty(), model.empty());
    }
}

TEST(PageGrid, RoundsOutwardAndKnowsItsPages) {
    const PageGrid grid(flatTile(-130, 5, 140, 252));
    EXPECT_EQ(grid.originX(), -256);
    EXPECT_EQ(grid.originY(), 0);
    EXPECT_EQ(grid.pagesAcross(), 3);
    EXPECT_EQ(grid.pageCount(), 9);
    EXPECT_EQ(grid.indexOf(-256, 0), 0);
    EXPECT_EQ(grid.indexOf(127, 383), 8);
    EXPECT_EQ(grid.indexOf(128, 0), -1);
    EXPECT_EQ(grid.indexOf(0, 384), -1);
    EXPECT_EQ(grid.indexOf(-257, 0), -1);
    EXPECT_EQ(grid.indexOf(2147483647, -2147483647 - 1), -1);
    EXPECT_EQ(grid.pageX(5), 0);
    EXPECT_EQ(grid.pageY(5), 128);
    EXPECT_EQ(PageGrid(flatTile(0, 0, 0, 5)).indexOf(0, 0), -1);
}

}  // namespace
}  // namespace brushwork
