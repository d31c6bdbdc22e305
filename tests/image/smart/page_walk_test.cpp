#include "image/smart/page_walk.h"

#include <algorithm>
#include <random>
#include <vector>

#include "page_rig.h"

namespace brushwork {
namespace {

using namespace test;

class SmartPageWalkTest : public PageTest {
  protected:
    // A row of pages of 4 channels with patterns, from x = 0.
    static void fillRow(SmartPageTable& table, std::int32_t count) {
        for (std::int32_t n = 0; n < count; ++n) {
            SmartPageRef* const slot = table.pageRef(n * pageSide, 0, true);
            ASSERT_TRUE(slot && writePixels(*slot, pattern(4, static_cast<std::uint32_t>(n))));
        }
        table.extendBounds(flatTile(0, 0, count * pageSide, pageSide));
    }
    static std::int64_t pinSum(SmartPageTable& table) {
        std::int64_t sum = 0;
        table.eachPage([&](std::int32_t, std::int32_t, SmartPageRef& slot) { sum += slot->pins; });
        return sum + table.defaultPage()->pins;
    }

    FakeSource source;
};

TEST_P(SmartPageWalkTest, RowsFromTheRoundedCorner) {
    SmartPageTable table(source, 1);
    PageWalk walk(table, flatTile(-1, 127, 130, 2), PageWalk::Create::Yes);
    std::vector<std::pair<std::int32_t, std::int32_t>> seen;
    EXPECT_EQ(walk.count(), 6u);
    EXPECT_EQ(table.heldPages(), 6u);
    EXPECT_GE(pinSum(table), 6);
    while (walk.next()) {
        seen.emplace_back(walk.x(), walk.y());
        EXPECT_EQ(walk.tile(), flatTile(walk.x(), walk.y(), 128, 128));
        EXPECT_EQ(&walk.slot(), table.findSlot(walk.x(), walk.y()));
    }
    EXPECT_FALSE(walk.next());
    EXPECT_EQ(pinSum(table), 0);
    EXPECT_EQ(seen,
              (decltype(seen){{-128, 0}, {0, 0}, {128, 0}, {-128, 128}, {0, 128}, {128, 128}}));
    EXPECT_EQ(PageWalk(table, flatTile(0, 0, 0, 5), PageWalk::Create::Yes).count(), 0u);
    EXPECT_EQ(PageWalk(table, flatTile(102300, 102399, 5000, 5000), PageWalk::Create::Yes).count(),
              1u);
    EXPECT_EQ(pinSum(table), 0);
}

TEST_P(SmartPageWalkTest, SwappedPagesComeLastByTheirPlaceInTheFile) {
    constexpr std::int32_t count = 12;
    SmartPageTable table(source, 4);
    fillRow(table, count);
    std::vector<std::int32_t> order(count);
    for (std::int32_t n = 0; n < count; ++n) order[static_cast<std::size_t>(n)] = n;
    std::shuffle(order.begin(), order.end(), std::mt19937(4));
    order.resize(8);
    // Eviction takes the page that was used longest ago.
    for (const std::int32_t n : order)
        ASSERT_TRUE(realizePage(*table.pageRef(n * pageSide, 0, false), RealizeMode::Read));
    for (std::int32_t n = 0; n < count; ++n)
        if (std::find(order.begin(), order.end(), n) == order.end())
            cache().touch(**table.pageRef(n * pageSide, 0, false));
    for (const std::int32_t n : order)
        ASSERT_TRUE(pushOut(**table.pageRef(n * pageSide, 0, false)));

    const ilTile all = flatTile(0, 0, count * pageSide, pageSide);
    std::vector<std::int32_t> expected, got;
    std::vector<std::pair<std::uint64_t, std::int32_t>> places;
    table.eachPage([&](std::int32_t x, std::int32_t, SmartPageRef& slot) {
        if (slot->inMemory())
            expected.push_back(x);
        else
            places.emplace_back(slot->swapRecord->offset, x);
    });
    ASSERT_EQ(places.size(), 8u);
    std::sort(places.begin(), places.end());
    for (const auto& place : places) expected.push_back(place.second);
    {
        PageWalk walk(table, all, PageWalk::Create::No, PageWalk::Order::Swap);
        EXPECT_FALSE(walk.allInMemory());
        while (walk.next()) got.push_back(walk.x());
    }
    EXPECT_EQ(got, expected);
    // Few pages, and walks that don't ask for it, keep to rows.
    for (const ilTile& box : {flatTile(0, 0, 4 * pageSide, pageSide), all}) {
        const auto asked = box.nx == all.nx ? PageWalk::Order::Rows : PageWalk::Order::Swap;
        PageWalk walk(table, box, PageWalk::Create::No, asked);
        for (std::int32_t x = 0; walk.next(); x += pageSide) ASSERT_EQ(walk.x(), x);
    }
    const std::uint64_t reads = cache().counts().swapReads;
    prefetchPages(table, all);
    EXPECT_EQ(cache().counts().swapReads, reads + 8);
    PageWalk walk(table, all, PageWalk::Create::No, PageWalk::Order::Swap);
    EXPECT_TRUE(walk.allInMemory());
    for (std::int32_t x = 0; walk.next(); x += pageSide) {
        ASSERT_EQ(walk.x(), x);
        EXPECT_EQ(pixelsOf(walk.slot()), pattern(4, static_cast<std::uint32_t>(x / pageSide)));
    }
}

// What a walk has not passed stays in memory, whatever is allocated meanwhile.
TEST_P(SmartPageWalkTest, PinnedPagesStay) {
    SmartPageTable table(source, 4);
    fillRow(table, 6);
    while (cache().idleStep()) {
    }
    PageWalk walk(table, table.bounds(), PageWalk::Create::No);
    ASSERT_TRUE(walk.next());
    ASSERT_TRUE(walk.next());
    SmartPageRef& first = *table.findSlot(0, 0);
    while (void* const buffer = cache().evictForBig()) BworkMemory::instance().releaseBig(buffer);
    EXPECT_EQ(first->state, PageState::Swapped);
    for (std::int32_t x = pageSide; x < 6 * pageSide; x += pageSide)
        EXPECT_TRUE((*table.findSlot(x, 0))->inMemory()) << x;
}

// Slots that get other pages under the walk: clones, solid pages, pages of other holders, none of
// which may lose or keep a pin of the walk.
TEST_P(SmartPageWalkTest, PinsFollowPagesAndNotSlots) {
    SmartPageTable table(source, 4);
    fillRow(table, 6);
    std::vector<SmartPageRef> others;
    table.eachPage([&](std::int32_t x, std::int32_t, SmartPageRef& slot) {
        if (x < 3 * pageSide) others.push_back(slot);
    });
    {
        PageWalk walk(table, table.bounds(), PageWalk::Create::Yes);
        ASSERT_TRUE(walk.next());
        ASSERT_TRUE(walk.realize(RealizeMode::Write));
        EXPECT_EQ(walk.slot()->pins, 1);
        EXPECT_EQ(others[0]->pins, 0);
        ASSERT_TRUE(walk.next());
        ASSERT_TRUE(realizePage(walk.slot(), RealizeMode::Write));
        EXPECT_EQ(walk.slot()->pins, 0);
        EXPECT_EQ(others[1]->pins, 1);
        ASSERT_TRUE(walk.next());
        ASSERT_TRUE(makePageSolid(walk.slot(), 3));
        ASSERT_TRUE(walk.next());
        const std::uint32_t records = smartPageCount();
        walk.slot().assign(others[0].get(), ReleaseReason::SlotReplaced);  // its only holder goes
        EXPECT_EQ(smartPageCount(), records);
        ASSERT_TRUE(walk.next());
        EXPECT_EQ(smartPageCount(), records - 1);
        walk.slot() = others[0];
    }
    EXPECT_EQ(pinSum(table), 0);
    for (const SmartPageRef& page : others) EXPECT_EQ(page->pins, 0);
}

TEST_P(SmartPageWalkTest, PagesThatCannotBeHadAreLeftOut) {
    source.initial = flatTile(0, 0, 1000, 1000);
    source.give = [](std::int32_t x, std::int32_t) {
        return x == 128 ? SmartPageRef() : solidPage(4, 1);
    };
    SmartPageTable table(source, 4);
    ASSERT_TRUE(table.setBounds(source.initial));
    PageWalk walk(table, flatTile(0, 0, 300, 1), PageWalk::Create::No);
    EXPECT_FALSE(walk.isComplete());
    EXPECT_EQ(walk.count(), 2u);
}

INSTANTIATE_TEST_SUITE_P(Memory, SmartPageWalkTest, ::testing::Bool(), managerName);

}  // namespace
}  // namespace brushwork
