#include "image/swap/swap_record.h"

#include <gtest/gtest.h>

namespace brushwork {
namespace {

SwapRecord* recordOf(std::uint32_t storedSize) {
    SwapRecord* record = takeSwapRecord();
    record->storedSize = storedSize;
    return record;
}

TEST(SwapRecord, IdsDifferAndSlotsAreUsedAgain) {
    const std::uint32_t before = swapRecordsInUse();
    SwapRecord* first = takeSwapRecord();
    const std::uint32_t id = first->id;
    first->sizeClass = 7;
    giveSwapRecord(first);
    SwapRecord* second = takeSwapRecord();
    EXPECT_EQ(second, first);
    EXPECT_GT(second->id, id);
    EXPECT_EQ(second->sizeClass, -1);
    giveSwapRecord(second);
    EXPECT_EQ(swapRecordsInUse(), before);
}

TEST(SwapFreeLists, TwoClassesAboveServeAndNoMore) {
    SwapFreeLists lists(64);
    // 700 bytes stored are 10 whole units; 512 ask for 8, 513 for 9.
    for (const auto& [asked, serves] : {std::pair{448U, false},
                                        {449U, true},
                                        {512U, true},
                                        {513U, true},
                                        {640U, true},
                                        {641U, false},
                                        {0U, false},
                                        {65537U, false}}) {
        SwapRecord* freed = recordOf(700);
        lists.put(freed);
        EXPECT_EQ(lists.take(asked), serves ? freed : nullptr) << asked;
        lists.clear();
        if (serves) giveSwapRecord(freed);
    }
    // The exact class before the larger one, the latest before the older one.
    SwapRecord* larger = recordOf(640);
    SwapRecord* older = recordOf(576);
    SwapRecord* latest = recordOf(639);
    for (SwapRecord* record : {older, latest, larger}) lists.put(record);
    EXPECT_EQ(lists.take(570), latest);
    EXPECT_EQ(lists.take(570), older);
    EXPECT_EQ(lists.take(570), larger);
    EXPECT_EQ(lists.take(570), nullptr);
    // A raw page has the last class; a place keeps its first class whatever it holds later.
    SwapRecord* raw = recordOf(65536);
    lists.put(raw);
    EXPECT_EQ(lists.take(65536 - 64 * 3), nullptr);
    EXPECT_EQ(lists.take(65536 - 64 * 2), raw);
    raw->storedSize = 100;
    lists.put(raw);
    EXPECT_EQ(lists.take(65536), raw);
    for (SwapRecord* record : {larger, older, latest, raw}) giveSwapRecord(record);
}

TEST(SwapFreeLists, WhatIsBelowOneUnitIsGivenUp) {
    SwapFreeLists lists(16);
    const std::uint32_t before = swapRecordsInUse();
    lists.put(recordOf(15));
    EXPECT_EQ(swapRecordsInUse(), before);
    EXPECT_EQ(lists.take(1), nullptr);
    lists.put(recordOf(16));
    EXPECT_EQ(swapRecordsInUse(), before + 1);
    lists.clear();
    EXPECT_EQ(swapRecordsInUse(), before);
}

}  // namespace
}  // namespace brushwork
