#include "image/filter/il_color_adjust_img.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "adjust_oracle.h"
#include "brushwork/ref.h"
#include "foundation/services/vector_level.h"
#include "image/filter/color_convert.h"
#include "kernel_recipe.h"

namespace brushwork {
namespace {

using Words = std::vector<std::uint32_t>;

std::uint32_t properPixel(test::Random& random) {
    const std::uint32_t alpha = random() % 3 ? 255 : test::edgyByte(random);
    std::uint32_t word = alpha << 24;
    const std::uint32_t grey = test::edgyByte(random) * alpha / 255;
    const bool isGrey = random() % 5 == 0;
    for (unsigned shift = 0; shift < 24; shift += 8)
        word |= (isGrey ? grey : test::edgyByte(random) * alpha / 255) << shift;
    return word;
}

Words properPixels(std::size_t count, test::Random& random) {
    Words words(count);
    for (auto& word : words) word = properPixel(random);
    return words;
}

bool adjust(Words& words, std::int32_t width, const ColorAdjustParm& parm,
            Ref<ToneAnalysis>& slot) {
    const auto height = static_cast<std::int32_t>(words.size()) / width;
    const Ref<ilColorAdjustImg> image(
        new ilColorAdjustImg(words.data(), width, height, 1, 4, TypeUChar, OrderInterleaved));
    return image->apply(&parm, slot);
}

bool adjust(Words& words, std::int32_t width, const ColorAdjustParm& parm) {
    Ref<ToneAnalysis> slot;
    return adjust(words, width, parm, slot);
}

std::uint32_t adjustedPixel(std::uint32_t word, const ColorAdjustParm& parm) {
    Words one{word};
    adjust(one, 1, parm);
    return one[0];
}

TEST(ilColorAdjustImg, EveryKindFollowsItsFormula) {
    test::Random random(11);
    for (std::int32_t kind = 0; kind <= 6; ++kind) {
        std::size_t unsure = 0, changed = 0, total = 0;
        for (int round = 0; round < 60; ++round) {
            const ColorAdjustParm parm = test::randomParm(kind, random);
            const Words before = properPixels(131 * 37, random);
            Words after = before;
            rememberHue(77.0f);
            const bool told = adjust(after, 131, parm);
            if (!told) {
                ASSERT_EQ(after, before);
                continue;
            }
            test::AdjustOracle oracle(parm, 77.0);
            for (std::size_t n = 0; n < before.size(); ++n) {
                bool jump = false;
                const bool agrees = oracle.agrees(before[n], after[n], jump);
                ASSERT_TRUE(agrees || jump)
                    << "kind " << kind << ", round " << round << ", pixel " << n << std::hex << ": "
                    << before[n] << " became " << after[n];
                unsure += jump;
                changed += before[n] != after[n];
            }
            total += before.size();
        }
        EXPECT_LT(unsure, total / 50) << "kind " << kind;
        EXPECT_GT(changed, total / 20) << "kind " << kind;
    }
}

TEST(ilColorAdjustImg, NeutralNumbersLeaveEveryByte) {
    test::Random random(5);
    const Words before = [&] {
        Words words(4000);
        for (auto& word : words) word = static_cast<std::uint32_t>(random());  // improper ones too
        return words;
    }();
    std::vector<ColorAdjustParm> neutral(9);
    for (std::int32_t kind = 0; kind < 3; ++kind)
        neutral[static_cast<std::size_t>(kind)].reset(kind);
    neutral[3].setHueRanges(false, {}, {}, {}, {}, {}, {});
    neutral[3].useHue = neutral[3].useSaturation = neutral[3].useLightness = 0;
    neutral[4] = neutral[3];
    neutral[4].kind = AdjustShowRanges;
    for (std::int32_t mode = 0; mode < 3; ++mode)
        neutral[static_cast<std::size_t>(5 + mode)].setHsl(
            mode, {mode == 2 ? 180.0f : 0.0f, mode == 2 ? 0.0f : 180.0f}, {}, {});
    neutral[8].reset(8);
    for (const ColorAdjustParm& parm : neutral) {
        Words after = before;
        Ref<ToneAnalysis> slot;
        EXPECT_FALSE(adjust(after, 50, parm, slot)) << parm.kind << ' ' << parm.hslMode;
        EXPECT_EQ(after, before);
        EXPECT_FALSE(slot);
    }
}

// Numbers that come to nothing only by arithmetic bring every proper pixel back as well.
TEST(ilColorAdjustImg, RoundTripsThroughHueAreExact) {
    test::Random random(6);
    Words words;
    for (std::uint32_t alpha = 0; alpha < 256; ++alpha)
        for (int n = 0; n < 100; ++n) {
            std::uint32_t word = alpha << 24;
            for (unsigned shift = 0; shift < 24; shift += 8)
                word |= static_cast<std::uint32_t>(random() % (alpha + 1)) << shift;
            words.push_back(word);
        }
    ColorAdjustParm turn, third, gain;
    turn.setHsl(2, {0.0f, 360.0f}, {}, {});
    third.setHsl(2, {0.0f, -120.0f}, {}, {});
    gain.addToneGain(3, 1e-9f, 1e-9f);  // below what a float can add to 1
    gain.toneSatGain[0] = 1.0000001f;
    Words after = words;
    EXPECT_TRUE(adjust(after, 100, turn));
    EXPECT_EQ(after, words);
    EXPECT_TRUE(adjust(after, 100, gain));
    EXPECT_EQ(after, words);
    EXPECT_TRUE(adjust(after, 100, third));
    for (std::size_t n = 0; n < words.size(); ++n) {
        const std::uint32_t turned =
            (words[n] & 0xFF000000) | (words[n] >> 8 & 0xFFFF) | (words[n] & 0xFF) << 16;
        ASSERT_EQ(after[n], words[n] >> 24 ? turned : words[n]) << std::hex << words[n];
    }
}

TEST(ilColorAdjustImg, InvertingTwiceGivesThePictureBack) {
    Words all;
    for (std::uint32_t alpha = 0; alpha < 256; ++alpha)
        for (std::uint32_t color = 0; color <= alpha; ++color)
            all.push_back(alpha << 24 | (alpha - color) << 16 | color << 8 | color);
    ColorAdjustParm parm;
    parm.reset(AdjustInvert);
    for (const VectorLevel level : {VectorLevel::Scalar, VectorLevel::Avx2}) {
        const test::AtLevel at(level);
        Words words = all;
        ASSERT_TRUE(adjust(words, static_cast<std::int32_t>(words.size()), parm));
        for (std::size_t n = 0; n < all.size(); ++n) {
            const std::uint32_t alpha = all[n] >> 24, color = all[n] & 0xFF;
            ASSERT_EQ(words[n] & 0xFF, alpha - color);
        }
        ASSERT_TRUE(adjust(words, static_cast<std::int32_t>(words.size()), parm));
        EXPECT_EQ(words, all);
    }
    EXPECT_EQ(adjustedPixel(0x00123456, parm), 0x00123456u);
    EXPECT_EQ(adjustedPixel(0x10FF0811, parm), 0x10000800u);  // colours above their alpha
}

TEST(ilColorAdjustImg, SinglePixels) {
    ColorAdjustParm parm;
    parm.setHsl(2, {0.0f, 350.0f}, {}, {});
    EXPECT_EQ(adjustedPixel(0xFF0055FF, parm), 0xFF002AFFu);  // hue 20 becomes 10: green 42.5
    parm.setHsl(2, {0.0f, 0.0f}, {}, {0.0f, -1.0f});
    EXPECT_EQ(adjustedPixel(0x80402010, parm), 0x80000000u);
    parm.setHsl(0, {120.0f, 0.0f}, {}, {});
    parm.colorizeAmount = 1.0f;
    EXPECT_EQ(adjustedPixel(0xFF0000FF, parm), 0xFF00FF00u);
    EXPECT_EQ(adjustedPixel(0xFF808080, parm), 0xFF808080u);
    parm.hslMode = 1;  // at least half saturated
    EXPECT_EQ(adjustedPixel(0xFF808080, parm), 0xFF40BF40u);
    parm.reset(AdjustShowRanges);
    EXPECT_EQ(adjustedPixel(0x00123456, parm), 0u);
    EXPECT_EQ(adjustedPixel(0x40000000, parm), 0xFF7D7DFFu);
}

TEST(ilColorAdjustImg, AGreyTakesTheHueBeforeIt) {
    ColorAdjustParm parm;
    parm.reset(AdjustRanges);
    // Any saturation becomes full, so that the inherited hue shows.
    parm.useHue = parm.useLightness = 0;
    parm.satRange = {0.0f, 0.0f, 1.0f, 1.0f};
    parm.satTarget = {1.0f, 1.0f, 1.0f, 1.0f};
    for (const VectorLevel level : {VectorLevel::Scalar, VectorLevel::Sse2, VectorLevel::Avx2}) {
        const test::AtLevel at(level);
        rememberHue(240.0f);
        Words words(40, 0xFF808080);
        words[13] = 0xFF00FF00;
        words[14] = 0x000000FF;  // can't be seen: passes no hue on
        words[21] = 0xFF0000FF;
        ASSERT_TRUE(adjust(words, 10, parm));
        EXPECT_EQ(words[0], 0xFFFF0101u);
        EXPECT_EQ(words[12], 0xFFFF0101u);
        EXPECT_EQ(words[15], 0xFF01FF01u);
        EXPECT_EQ(words[20], 0xFF01FF01u);
        EXPECT_EQ(words[39], 0xFF0101FFu);
        EXPECT_EQ(rememberedHue(), 0.0f);
    }
}

TEST(ilColorAdjustImg, ADraggedSliderConvertsOnce) {
    test::Random random(8);
    const Words before = properPixels(300 * 200, random);
    const std::uint64_t made = ToneAnalysis::madeCount();
    Ref<ToneAnalysis> slot;
    for (int n = 1; n <= 200; ++n) {
        ColorAdjustParm parm;
        parm.addToneBalance(1, 0.01f * static_cast<float>(n), 0.0f);
        Words dragged = before;
        ASSERT_TRUE(adjust(dragged, 300, parm, slot));
        if (n % 50 != 0) continue;
        Words fresh = before;
        const Ref<ToneAnalysis> kept = slot;
        Ref<ToneAnalysis> other;
        ASSERT_TRUE(adjust(fresh, 300, parm, other));
        EXPECT_EQ(dragged, fresh);
        EXPECT_EQ(slot.get(), kept.get());
        EXPECT_EQ(slot->refCount(), 2u);
    }
    EXPECT_EQ(ToneAnalysis::madeCount() - made, 1u + 4u);
}

TEST(ilColorAdjustImg, ImagesItCannotAdjustStay) {
    ColorAdjustParm parm;
    parm.reset(AdjustInvert);
    Ref<ToneAnalysis> slot;
    Words words(16, 0xFF123456);
    const Words before = words;
    const Ref<ilColorAdjustImg> grey(
        new ilColorAdjustImg(words.data(), 8, 8, 1, 1, TypeUChar, OrderInterleaved));
    EXPECT_FALSE(grey->apply(&parm, slot));
    const Ref<ilColorAdjustImg> deep(
        new ilColorAdjustImg(words.data(), 2, 2, 1, 4, TypeUShort, OrderInterleaved));
    EXPECT_FALSE(deep->apply(&parm, slot));
    EXPECT_FALSE(Ref<ilColorAdjustImg>(new ilColorAdjustImg())->apply(&parm, slot));
    const Ref<ilColorAdjustImg> image(
        new ilColorAdjustImg(words.data(), 4, 4, 1, 4, TypeUChar, OrderInterleaved));
    EXPECT_FALSE(image->apply(nullptr, slot));
    EXPECT_EQ(words, before);
    EXPECT_STREQ(image->className(), "Color Adjust Image");

    // A buffer that starts anywhere.
    auto* const odd = reinterpret_cast<std::uint8_t*>(words.data()) + 1;
    const Ref<ilColorAdjustImg> askew(
        new ilColorAdjustImg(odd, 3, 5, 1, 4, TypeUChar, OrderInterleaved));
    EXPECT_TRUE(askew->apply(&parm, slot));
    EXPECT_EQ(words[0] & 0xFF, 0x56u);
    EXPECT_NE(words[1], before[1]);
    EXPECT_TRUE(askew->apply(&parm, slot));
}

// No number in the parameters may lead anywhere but to bytes.
TEST(ilColorAdjustImg, WildNumbers) {
    test::Random random(9);
    const float wild[] = {0.0f,
                          -1e30f,
                          1e30f,
                          1e-40f,
                          -7.5f,
                          std::numeric_limits<float>::quiet_NaN(),
                          std::numeric_limits<float>::infinity()};
    const auto draw = [&] { return wild[random() % std::size(wild)]; };
    for (int round = 0; round < 300; ++round) {
        ColorAdjustParm parm = test::randomParm(round % 6, random);
        for (ColorAdjustTones* tones :
             {&parm.toneBrightness, &parm.toneSaturation, &parm.toneSatGain, &parm.toneValueGain})
            (*tones)[random() % 3] = draw();
        parm.toneTint[random() % 3][random() % 6] = draw();
        for (ColorAdjustRange* range : {&parm.hueRange, &parm.hueTarget, &parm.satRange,
                                        &parm.satTarget, &parm.lightRange, &parm.lightTarget})
            (*range)[random() % 4] = draw();
        parm.colorizeAmount = draw();
        parm.hue = {draw(), draw()};
        parm.saturation = {draw(), draw()};
        parm.lightness = {draw(), draw()};
        Words words(200), expected;
        for (auto& word : words) word = static_cast<std::uint32_t>(random());
        const Words before = words;
        for (const VectorLevel level :
             {VectorLevel::Scalar, VectorLevel::Sse2, VectorLevel::Avx2}) {
            const test::AtLevel at(level);
            rememberHue(10.0f);
            words = before;
            adjust(words, 20, parm);
            if (level == VectorLevel::Scalar) expected = words;
            ASSERT_EQ(words, expected) << "round " << round << ", " << vectorLevelName(level);
        }
        for (std::size_t n = 0; n < words.size() && parm.kind != AdjustShowRanges; ++n)
            ASSERT_EQ(words[n] >> 24, before[n] >> 24);
    }
}

}  // namespace
}  // namespace brushwork
