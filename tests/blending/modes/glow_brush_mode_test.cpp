#include "blending/modes/glow_brush_mode.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "blending/modes/wet_recipe.h"

namespace brushwork::test {
namespace {

// The light of bytes through a mask, in 64 signed bits. On the high plane alone.
void light(OraclePixel& p, Wide opacity) {
    if (p.mask == 0 || std::all_of(p.source.begin(), p.source.end(), [](Wide s) { return s == 0; }))
        return;
    const std::int64_t k = static_cast<std::int64_t>(p.mask * opacity / 256 + 256);
    const auto scaled = [&](Wide byte) { return static_cast<std::int64_t>(byte) * k / 256 + 256; };
    const auto b = static_cast<std::int64_t>(p.target[3] / 256);
    const auto capped = [](std::int64_t value) {
        return static_cast<Wide>(std::min<std::int64_t>(value, 255));
    };
    const std::int64_t A = scaled(p.source[3]);
    for (std::size_t c = 0; c < 3; ++c) {
        const auto d = static_cast<std::int64_t>(p.target[c] / 256);
        const std::int64_t S = scaled(p.source[c]);
        const std::int64_t t = d * 65536 / (65536 - S);
        p.target[c] = capped(std::min(t, b) + (256 - b) * S / 256) * 256 + p.target[c] % 256;
    }
    p.target[3] = capped(b + A * (256 - b) / 256) * 256 + p.target[3] % 256;
}

TEST(GlowBrushMode, IsGlowThroughAMask) {
    npc::GlowBrushBlender glow;
    for (const float strength : {1.0F, 0.1F}) {
        glow.setStrength(strength);  // changes nothing
        for (const float opacity : {1.0F, 0.999F, 0.4F, 0.0F}) {
            glow.setOpacity(opacity);
            for (const bool dual : {false, true}) {
                Random random(7);
                GuardedBytes hi(4096, 4), lo(4096, 0), source(4096, 8), mask(1024, 1);
                for (GuardedBytes* plane : {&hi, &lo, &source, &mask}) plane->fill(random);
                for (const bool vector : {false, true}) {
                    const auto wasHi = hi.bytes(), wasLo = lo.bytes();
                    npc::KernelRow row{hi.data(),
                                       dual ? lo.data() : nullptr,
                                       source.data(),
                                       nullptr,
                                       mask.data(),
                                       1,
                                       1,
                                       1024};
                    const npc::KernelTable& table = glow.kernels();
                    const npc::Kernel kernel =
                        dual ? (vector ? table.dualPlaneMaskedVector : table.dualPlaneMasked)
                             : (vector ? table.rgbaMaskedVector : table.rgbaMasked);
                    kernel(glow, row);
                    for (std::size_t i = 0; i < 1024; ++i) {
                        OraclePixel p;
                        p.mask = mask.data()[i];
                        for (std::size_t c = 0; c < 4; ++c) {
                            p.target[c] = wasHi[4 * i + c] * 256U;
                            p.source[c] = source.data()[4 * i + c];
                        }
                        light(p, glow.opacity16());
                        for (std::size_t c = 0; c < 4; ++c)
                            ASSERT_EQ(hi.data()[4 * i + c], p.target[c] / 256)
                                << "pixel " << i << " channel " << c << ", mask " << p.mask
                                << ", opacity " << opacity << (vector ? ", vector" : ", plain");
                    }
                    EXPECT_EQ(lo.bytes(), wasLo);
                    EXPECT_TRUE(hi.guardsIntact() && lo.guardsIntact() && source.guardsIntact());
                }
            }
        }
    }
}

TEST(GlowBrushMode, NoMaskNoLight) {
    npc::GlowBrushBlender glow;
    std::uint8_t hi[4] = {1, 2, 3, 4}, source[4] = {90, 90, 90, 90};
    const npc::KernelRow row{hi, nullptr, source, nullptr, nullptr, 1, 0, 1};
    glow.kernels().rgba(glow, row);
    glow.kernels().rgbaVector(glow, row);
    EXPECT_EQ(hi[0], 1);
}

TEST(GlowBrushMode, Parameters) {
    npc::GlowBrushBlender glow;
    EXPECT_EQ(glow.mode(), 28);
    EXPECT_FALSE(glow.skipEmpty());
    EXPECT_EQ(glow.strength16(), 65535U);
    glow.setStrength(0.3F);
    EXPECT_EQ(glow.strength16(), 19660U);
    EXPECT_EQ(glow.getOpacity2(), 0.3F);
}

}  // namespace
}  // namespace brushwork::test
