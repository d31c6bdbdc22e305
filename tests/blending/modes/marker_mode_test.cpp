#include "blending/modes/marker_mode.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "blending/modes/wet_recipe.h"

namespace brushwork::test {
namespace {

WetMode rendered(const npc::MarkerBlender& marker) {
    return {marker, {true, false, true}, [&marker](OraclePixel& p) {
                if (p.mask == 0) return;
                const Wide k = wrapped(Wide{marker.deposit()} * p.mask) / 256;
                const Wide j = wrapped(65535 - k) % 65536;
                const Wide B = p.target[3];
                for (std::size_t c = 0; c < 4; ++c) {
                    const Wide under = std::min(B * p.source[c], p.target[c] * 256);
                    const Wide T = ((65535 - B) * p.source[c] + under) / 256;
                    p.target[c] = wrapped(wrapped(T * k) + p.target[c] * j) / 65536;
                }
            }};
}

// A float operation is the double one rounded once more.
float rounded(double value) {
    return static_cast<float>(value);
}

TEST(MarkerMode, FormulaOnRandomPixels) {
    npc::MarkerBlender marker;
    unsigned seed = 1;
    for (const float strength : unitEdges) {
        for (const float opacity : unitEdges) {
            marker.setStrength(strength);
            marker.setOpacity(opacity);
            rendered(marker).longRows("strength " + std::to_string(strength), seed += 10);
            if (HasFatalFailure()) FAIL() << "opacity " << opacity;
        }
    }
}

// Up to 16 bits the lanes serve; above, products run over and the plain form does.
TEST(MarkerMode, StrengthBeyondOne) {
    npc::MarkerBlender marker;
    marker.setStrength(4.3F);
    ASSERT_LE(marker.deposit(), 65535U);
    rendered(marker).longRows("strength 4.3", 5);
    marker.setStrength(700.0F);
    ASSERT_GT(marker.deposit(), 65535U);
    EXPECT_TRUE(rendered(marker).plainOnly(6));
}

TEST(MarkerMode, EveryLayoutGivesTheSameBytes) {
    npc::MarkerBlender marker;
    rendered(marker).everyLayout();
}

TEST(MarkerMode, InkDarkens) {
    npc::MarkerBlender marker;
    std::uint8_t hi[4] = {}, lo[4] = {}, source[4] = {200, 100, 0, 255}, mask = 255;
    const npc::KernelRow row{hi, lo, source, nullptr, &mask, 1, 1, 1};
    const std::uint32_t share = (marker.deposit() * 255) >> 8;
    const auto word = [&](int c) { return hi[c] * 256 + lo[c]; };
    // On bare paper the ink as it is.
    marker.kernels().dualPlaneMasked(marker, row);
    EXPECT_NEAR(word(0), static_cast<int>((200 * share) >> 8), 1);
    // Over opaque black nothing shows; over white it falls toward the ink.
    for (int c = 0; c < 4; ++c) hi[c] = lo[c] = c == 3 ? 255 : 0;
    marker.kernels().dualPlaneMasked(marker, row);
    EXPECT_EQ(word(0), 0);
    for (int c = 0; c < 4; ++c) hi[c] = lo[c] = 255;
    for (int stamp = 0; stamp < 200; ++stamp) marker.kernels().dualPlaneMasked(marker, row);
    EXPECT_NEAR(word(0), 200 * 257, 600);
    EXPECT_NEAR(word(2), 0, 600);
    // An empty ink wipes.
    std::fill(std::begin(source), std::end(source), std::uint8_t{0});
    for (int stamp = 0; stamp < 200; ++stamp) marker.kernels().dualPlaneMasked(marker, row);
    EXPECT_EQ(word(3), 0);
}

TEST(MarkerMode, DepositFollowsOpacityAndStrength) {
    npc::MarkerBlender marker;
    EXPECT_EQ(marker.mode(), 25);
    EXPECT_TRUE(marker.skipEmpty());
    EXPECT_EQ(marker.deposit(), 16383U);
    marker.setStrength(0.0F);
    EXPECT_EQ(marker.deposit(), 1638U);  // the floor: a tenth of a quarter
    EXPECT_EQ(marker.strength16(), 0U);
    marker.setStrength(1.0F);
    EXPECT_EQ(marker.getOpacity2(), 1.0F);  // the parameters share an index
    marker.setOpacity(0.5F);
    EXPECT_EQ(marker.deposit(), 9011U);
    marker.reset();
    EXPECT_EQ(marker.deposit(), 16383U);

    Random random(3);
    for (int i = 0; i < 100000; ++i) {
        const float strength = static_cast<float>(random() >> 8) / 16777216.0F;
        const float opacity = static_cast<float>(random() >> 8) / 16777216.0F;
        marker.setStrength(strength);
        marker.setOpacity(opacity);
        const float amount = rounded(rounded(double{strength} * opacity) * double{0.9F});
        const float part = rounded(rounded(double{amount} + double{0.1F}) * 0.25);
        ASSERT_EQ(marker.deposit(), static_cast<std::uint32_t>(rounded(part * 65535.0)))
            << strength << " " << opacity;
        ASSERT_EQ(marker.strength16(), static_cast<std::uint32_t>(rounded(strength * 65535.0)));
    }
}

}  // namespace
}  // namespace brushwork::test
