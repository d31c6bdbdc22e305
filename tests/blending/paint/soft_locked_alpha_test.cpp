// Locked alpha, by hand and beside a loop of 64-bit numbers.
#include "blending/paint/soft_locked_alpha.h"

#include <gtest/gtest.h>

#include "blending/paint/paint_recipe.h"
#include "blending/paint/soft_paint_ops.h"

namespace brushwork {
namespace {

using namespace brushwork::test;

std::uint64_t wordOf(Picture& high, Picture* low, int x, int c) {
    return std::uint64_t{high.at(x, 0)[c]} * 256 + (low ? low->at(x, 0)[c] : 0);
}

void giveBackModel(Picture& high, Picture* low, Picture& keptHigh, Picture* keptLow) {
    for (int x = 0; x < high.width; ++x) {
        const std::uint64_t c = wordOf(high, low, x, 3), s = wordOf(keptHigh, keptLow, x, 3);
        if (c == 0) continue;
        const std::uint64_t k = s * 65536 / c;
        for (int n = 0; n < 4; ++n) {
            const std::uint64_t wrapped = wordOf(high, low, x, n) * k % 4294967296U;
            const std::uint64_t value = n == 3 ? s : wrapped / 65536;
            high.at(x, 0)[n] = static_cast<std::uint8_t>(value / 256);
            if (low) low->at(x, 0)[n] = static_cast<std::uint8_t>(value % 256);
        }
    }
}

TEST(SoftLockedAlpha, GivesBackInOneAndTwoPlanes) {
    constexpr std::uint32_t seed = 7172;
    SCOPED_TRACE("seed " + std::to_string(seed));
    Dice dice(seed);
    for (int round = 0; round < 200; ++round) {
        const bool dual = round % 2 == 1;
        const int width = pick(dice, 1, 300);
        Picture before(width, 1, 4, dice), after(width, 1, 4, dice);
        Picture lowBefore(width, 1, 4), lowAfter(width, 1, 4);
        for (std::uint8_t& byte : lowBefore.bytes) byte = drawByte(dice);
        for (std::uint8_t& byte : lowAfter.bytes) byte = drawByte(dice);
        const Ref<ilSmartImage> target = smartOf(before), low = smartOf(lowBefore);
        ilImage* const plane = dual ? low.get() : nullptr;
        SoftLockedAlpha kept;
        ASSERT_TRUE(kept.save(*target, plane, before.box()));
        target->writeRegion(before.box(), after.bytes.data(), before.box());
        low->writeRegion(before.box(), lowAfter.bytes.data(), before.box());
        ASSERT_TRUE(kept.restore(*target, plane));
        EXPECT_FALSE(kept.isKept());
        Picture wantedLow = lowAfter;
        giveBackModel(after, dual ? &wantedLow : nullptr, before, dual ? &lowBefore : nullptr);
        ASSERT_EQ(pictureOf(*target, before.box()).bytes, after.bytes) << "round " << round;
        ASSERT_EQ(pictureOf(*low, before.box()).bytes, wantedLow.bytes) << "round " << round;
    }
}

TEST(SoftLockedAlpha, ActsOnlyWhereItIsTold) {
    Dice dice(1);
    Picture below(10, 10, 4, dice), gray(10, 10, 1, dice);
    const Ref<ilSmartImage> target = smartOf(below), one = smartOf(gray);
    const Ref<SoftPaintOps> ops(new SoftPaintOps(target.get()));
    EXPECT_EQ(ops->saveAlpha(below.box()), 0);
    ops->setLockAlpha(1);
    EXPECT_EQ(ops->saveAlpha({}), 0);
    EXPECT_EQ(ops->restoreAlpha(), 0);
    EXPECT_EQ(ops->saveAlpha(below.box()), -1);
    EXPECT_EQ(ops->restoreAlpha(), -1);
    EXPECT_EQ(ops->restoreAlpha(), 0);
    EXPECT_EQ(pictureOf(*target, below.box()).bytes, below.bytes);
    ops->setImage(one.get());
    EXPECT_EQ(ops->saveAlpha(gray.box()), 0);
}

// Drawn over with lockAlpha: as drawn without, then given back.
TEST(SoftLockedAlpha, DrawingOverKeepsAlpha) {
    Dice dice(19);
    for (const bool smart : {false, true}) {
        Picture below(280, 150, 4, dice), above(200, 140, 4, dice), cover(200, 140, 1, dice);
        for (const bool covers : {false, true}) {
            const auto made = [&] {
                return smart ? Ref<ilImage>(smartOf(below)) : Ref<ilImage>(memoryOf(below));
            };
            const Ref<ilImage> target = made(), free = made();
            const Ref<ilMemoryImg> source = memoryOf(covers ? cover : above);
            for (ilImage* const image : {target.get(), free.get()}) {
                const Ref<SoftPaintOps> ops(new SoftPaintOps(image));
                ops->setBlendFactors(1, 7);
                ops->setColor(90, 20, 10, 200);
                ops->setLockAlpha(image == target.get() ? 1 : 0);
                EXPECT_EQ(ops->drawImage(source.get(), 30, 5), -1);
            }
            Picture wanted = pictureOf(*free, below.box());
            for (int y = 0; y < 150; ++y) {
                Picture row(280, 1, 4), kept(280, 1, 4);
                std::copy_n(wanted.at(0, y), 280 * 4, row.at(0, 0));
                std::copy_n(below.at(0, y), 280 * 4, kept.at(0, 0));
                giveBackModel(row, nullptr, kept, nullptr);
                // The stretch is what was drawn on.
                if (y >= 5 && y < 145) std::copy_n(row.at(30, 0), 200 * 4, wanted.at(30, y));
            }
            ASSERT_EQ(pictureOf(*target, below.box()).bytes, wanted.bytes) << smart << covers;
        }
    }
}

}  // namespace
}  // namespace brushwork
