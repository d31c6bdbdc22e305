#include "blending/modes/pastel_mode.h"

#include <gtest/gtest.h>

#include <limits>

#include "blending/modes/wet_recipe.h"

namespace brushwork::test {
namespace {

void rub(OraclePixel& p, const npc::PastelBlender& pastel) {
    const Wide g = p.mask * pastel.opacity16() / 256;
    if (g == 0) return;
    const Wide mix = pastel.canvasMix(), load = pastel.colorLoad(), follow = pastel.pickup();
    const Wide B = p.target[3];
    for (std::size_t c = 0; c < 4; ++c) {
        const Wide D = p.target[c];
        const Wide stick = (pastel.paintColor() >> (8 * c)) % 256 * 256;
        const Wide bare = (65535 - B) * (load * stick / 65536);
        const Wide laid = (D * mix + (65535 - mix) * (B * stick / 65536)) / 65536 * 65536;
        const Wide x = wrapped(bare + laid) / 65536;
        const Wide P = (x * follow + p.source[c] * (65535 - follow)) / 65536;
        p.target[c] = ((65536 - g) * D + P * g) / 65536;
        p.source[c] = P;
    }
}

WetMode rendered(const npc::PastelBlender& pastel) {
    return {pastel, {true, true, true}, [&pastel](OraclePixel& p) { rub(p, pastel); }};
}

TEST(PastelMode, FormulaOnRandomPixels) {
    npc::PastelBlender pastel;
    Random random(9);
    const auto parameter = [&] {
        static constexpr float edges[] = {0, 1, 255, 256, 32767, 32768, 65534, 65535};
        const auto draw = random();
        return draw % 2 == 0 ? edges[draw / 2 % 8] : static_cast<float>(draw % 65536);
    };
    for (unsigned i = 0; i < 100; ++i) {
        pastel.setPickup(parameter());
        pastel.setCanvasMix(parameter());
        pastel.setColorLoad(parameter());
        pastel.setPaintColor(static_cast<std::uint32_t>(random()) | (i % 2 != 0 ? 0xFF0000FF : 0));
        pastel.setOpacity(unitEdges[i % std::size(unitEdges)]);
        rendered(pastel).longRows("draw " + std::to_string(i), 10 * i);
        if (HasFatalFailure()) return;
    }
}

TEST(PastelMode, EveryLayoutGivesTheSameBytes) {
    npc::PastelBlender pastel;
    pastel.setPickup(3000.0F);
    pastel.setCanvasMix(50000.0F);
    pastel.setColorLoad(20000.0F);
    pastel.setPaintColor(0xFF2080F0);
    rendered(pastel).everyLayout();
    pastel.setOpacity(0.002F);  // weak masks have no share at all
    rendered(pastel).everyLayout();
}

TEST(PastelMode, UnloadedStickOnBarePaper) {
    npc::PastelBlender pastel;
    pastel.setColorLoad(0.0F);
    pastel.setPickup(6553.0F);
    pastel.setPaintColor(0xFFFFFFFF);
    std::uint8_t hi[4] = {}, lo[4] = {}, dust[4] = {200, 200, 200, 200}, dustLow[4] = {}, mask = 99;
    const npc::KernelRow row{hi, lo, dust, dustLow, &mask, 1, 1, 1};
    pastel.kernels().dualPlaneMasked(pastel, row);
    EXPECT_EQ(dust[0], 179);  // a tenth of it fades: the mix is 0
    npc::KernelRow bare = row;
    bare.sourceStride = 0;
    pastel.kernels().dualPlaneMaskedVector(pastel, bare);
    bare.source2 = nullptr;
    pastel.kernels().dualPlaneMasked(pastel, bare);
    EXPECT_EQ(dust[0], 179);
}

TEST(PastelMode, Parameters) {
    npc::PastelBlender pastel;
    EXPECT_EQ(pastel.mode(), 29);
    EXPECT_FALSE(pastel.skipEmpty());
    pastel.setPickup(123.9F);
    EXPECT_EQ(pastel.pickup(), 123U);
    pastel.setCanvasMix(1e6F);
    EXPECT_EQ(pastel.canvasMix(), 65535U);
    pastel.setColorLoad(-5.0F);
    EXPECT_EQ(pastel.colorLoad(), 0U);
    pastel.setColorLoad(std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(pastel.colorLoad(), 0U);
}

}  // namespace
}  // namespace brushwork::test
