#include "blending/modes/marker_colorless_mode.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "blending/modes/wet_recipe.h"

namespace brushwork::test {
namespace {

// Bit by bit as the sums are formed, in 64 bits.
void drag(OraclePixel& p, Wide wetness, Wide deposit) {
    const Wide w = wrapped(wetness << 7) >> 12;
    const Wide v = wrapped(4096 - w);
    const Wide leftAlpha = p.source[3] >> 8;
    std::array<Wide, 4> drawn{};
    for (std::size_t c = 0; c < 4; ++c) {
        const Wide sum = wrapped(wrapped(p.target[c] * w) + wrapped(p.source[c] * v));
        drawn[c] = std::min<Wide>(sum >> 12, 65535);
        p.source[c] = (drawn[c] & 0xFF00) + (p.source[c] & 0xFF);
    }
    if (p.mask == 0) return;
    const Wide k = wrapped(deposit * p.mask) >> 8;
    const Wide j = wrapped(65535 - k) & 0xFFFF;
    const Wide E = (p.target[3] * 65520) >> 16;
    const Wide Ac = (E << 8) | 127;
    std::array<Wide, 4> below{}, T{};
    for (std::size_t c = 0; c < 4; ++c) {
        below[c] = c == 3 ? Ac : (((p.target[c] * 65520) & ~Wide{0x8000}) | 0x7F00) >> 8;
        const Wide ph = drawn[c] >> 8;
        T[c] = ((65535 - E) * ph + std::min(E * ph + 127, below[c])) >> 8;
    }
    const bool fades = (Ac >> 8) > T[3];
    for (std::size_t c = 0; c < 4; ++c) {
        if (fades) T[c] = (T[c] * leftAlpha + (below[c] >> 8) * (255 - leftAlpha)) >> 8;
        p.target[c] = wrapped((below[c] >> 8) * j + wrapped(T[c] * k)) >> 16;
        p.source[c] = drawn[c];
    }
}

WetMode rendered(const npc::MarkerColorlessBlender& marker) {
    return {marker, {true, true, true}, [&marker](OraclePixel& p) {
                drag(p, marker.wetness12(), marker.deposit());
            }};
}

TEST(MarkerColorlessMode, FormulaOnRandomPixels) {
    npc::MarkerColorlessBlender marker;
    unsigned seed = 1;
    for (const float strength : {0.0F, 0.25F, 0.999F, 1.0F}) {
        for (const float opacity : {0.0F, 1e-4F, 0.5F, 1.0F}) {
            for (const float wetness : {0.0F, 0.007F, 0.05F, 0.5F, 1.0F, 31.9F}) {
                marker.setStrength(strength);
                marker.setOpacity(opacity);
                marker.setWetness(wetness);
                rendered(marker).longRows("wetness " + std::to_string(wetness), seed += 10);
                if (HasFatalFailure()) FAIL() << strength << " " << opacity;
            }
        }
    }
}

TEST(MarkerColorlessMode, ParametersOutOfRange) {
    npc::MarkerColorlessBlender marker;
    for (const float wetness : {32.0F, 40.0F, 1e9F, std::numeric_limits<float>::infinity()}) {
        marker.setWetness(wetness);
        EXPECT_TRUE(rendered(marker).plainOnly(3)) << wetness;
    }
    marker.setWetness(1.0F);
    marker.setStrength(300.0F);
    EXPECT_TRUE(rendered(marker).plainOnly(4));
}

TEST(MarkerColorlessMode, EveryLayoutGivesTheSameBytes) {
    npc::MarkerColorlessBlender marker;
    rendered(marker).everyLayout();
}

TEST(MarkerColorlessMode, EmptyStaysEmptyAndTheRimDrawsCoarsely) {
    npc::MarkerColorlessBlender marker;
    for (const bool vector : {false, true}) {
        std::uint8_t hi[4] = {}, lo[4] = {}, source[4] = {}, source2[4] = {}, mask = 255;
        const npc::KernelRow row{hi, lo, source, source2, &mask, 1, 1, 1};
        const npc::Kernel kernel =
            vector ? marker.kernels().dualPlaneMaskedVector : marker.kernels().dualPlaneMasked;
        kernel(marker, row);
        for (int c = 0; c < 4; ++c) EXPECT_EQ(hi[c] + lo[c] + source[c] + source2[c], 0);
        // With a mask of 0 only the high byte of what is drawn arrives: 65535 * 128 / 4096.
        mask = 0;
        std::fill_n(hi, 4, std::uint8_t{255});
        std::fill_n(lo, 4, std::uint8_t{255});
        kernel(marker, row);
        EXPECT_EQ(source[0], 2047 / 256);
        EXPECT_EQ(source2[0], 0);
        EXPECT_EQ(hi[0] + lo[0], 510);
        // No source, or a constant one, carries nothing.
        npc::KernelRow bare = row;
        bare.source2 = nullptr;
        mask = 255;
        kernel(marker, bare);
        bare = row;
        bare.sourceStride = 0;
        kernel(marker, bare);
        EXPECT_EQ(hi[0] + lo[0], 510);
        EXPECT_EQ(source[0], 7);
    }
}

TEST(MarkerColorlessMode, Parameters) {
    npc::MarkerColorlessBlender marker;
    EXPECT_EQ(marker.mode(), 26);
    EXPECT_TRUE(marker.skipEmpty());
    EXPECT_EQ(marker.wetness12(), 4096U);
    EXPECT_EQ(marker.deposit(), 65535U);
    marker.setStrength(0.25F);
    EXPECT_EQ(marker.deposit(), 16383U);
    marker.setOpacity(0.5F);
    EXPECT_EQ(marker.deposit(), 8191U);
    marker.setWetness(0.05F);
    EXPECT_EQ(marker.wetness12(), 204U);
    EXPECT_EQ(marker.getOpacity2(), 0.25F);
    EXPECT_EQ(marker.getOpacity3(), 0.05F);
    marker.reset();
    EXPECT_EQ(marker.deposit(), 16383U);
}

}  // namespace
}  // namespace brushwork::test
