#include "blending/core/batch_cut.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace brushwork::npc {
namespace {

std::vector<WideBox> cutOf(const WideBox& box) {
    std::vector<WideBox> batches;
    WideBox batch;
    for (BatchCut cut(box); cut.next(batch);) batches.push_back(batch);
    return batches;
}

WideBox boxAt(std::int64_t x, std::int64_t y, std::int64_t w, std::int64_t h) {
    return {x, y, x + w, y + h};
}

TEST(BatchCut, SizesOfTheFirstBatch) {
    struct Case {
        std::int64_t w, h, batchW, batchH;
    };
    // In pixels; 16 blocks are 2048.
    for (const auto& [w, h, batchW, batchH] :
         std::vector<Case>{{1, 1, 1, 1},
                           {2048, 2048, 2048, 2048},      // 256 blocks
                           {2049, 2049, 2048, 2048},      // 17 x 17
                           {2049, 2048, 2048, 2048},      // 17 x 16: 256 / 16
                           {2048, 2049, 2048, 2048},      // 16 x 17
                           {9000, 1000, 32 * 128, 1000},  // 71 x 8: 256 / 8
                           {1000, 9000, 1000, 32 * 128},
                           {40000, 300, 85 * 128, 300},  // 3 rows: 256 / 3
                           {40000, 100, 256 * 128, 100},
                           {100, 40000, 100, 256 * 128},
                           {9000, 9000, 2048, 2048}}) {
        const auto batches = cutOf(boxAt(-777, 31, w, h));
        EXPECT_EQ(batches.front(), boxAt(-777, 31, batchW, batchH)) << w << " x " << h;
    }
}

TEST(BatchCut, ALowLastRowTakesWiderBatches) {
    const auto batches = cutOf(boxAt(0, 0, 9000, 2048 + 300));
    ASSERT_EQ(batches.size(), 6u);
    EXPECT_EQ(batches[3], boxAt(6144, 0, 2048, 2048));
    EXPECT_EQ(batches[4], boxAt(8192, 0, 808, 2048));
    EXPECT_EQ(batches[5], boxAt(0, 2048, 9000, 300));  // 85 blocks a batch, 71 are there
}

TEST(BatchCut, CoversEveryPixelOnceAndStaysSmall) {
    std::mt19937 random(11);
    const auto draw = [&](std::int64_t most) {
        return std::uniform_int_distribution<std::int64_t>(1, most)(random);
    };
    for (int n = 0; n < 300; ++n) {
        const WideBox box =
            boxAt(-draw(5000), draw(5000), draw(n % 3 ? 90000 : 3000), draw(n % 2 ? 60000 : 2100));
        std::int64_t pixels = 0;
        WideBox last{box.x0, box.y0, box.x0, box.y0};
        for (const WideBox& batch : cutOf(box)) {
            const auto blocks = ((batch.width() + 127) / 128) * ((batch.height() + 127) / 128);
            ASSERT_LE(blocks, 256);
            // Row by row without gaps: each starts where the one before ended.
            const bool sameRow = last.x1 < box.x1;
            ASSERT_EQ(batch.x0, sameRow ? last.x1 : box.x0);
            ASSERT_EQ(batch.y0, sameRow ? last.y0 : last.y1);
            ASSERT_TRUE(!sameRow || last.width() == 0 || batch.y1 == last.y1);
            ASSERT_LE(batch.x1, box.x1);
            ASSERT_LE(batch.y1, box.y1);
            pixels += batch.width() * batch.height();
            last = batch;
        }
        ASSERT_EQ(pixels, box.width() * box.height());
    }
    EXPECT_TRUE(cutOf({}).empty());
    EXPECT_TRUE(cutOf(boxAt(5, 5, 0, 100)).empty());
}

}  // namespace
}  // namespace brushwork::npc
