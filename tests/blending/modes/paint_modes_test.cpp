#include "blending/modes/paint_modes.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "blending/modes/wet_recipe.h"

namespace brushwork::test {
namespace {

// Above 1 the products run over 32 bits.
constexpr float flows[] = {0.0F, 1e-5F,  2e-5F, 1.0F / 256, 0.1F, 0.37F,
                           0.5F, 0.999F, 1.0F,  1.01F,      3.7F, 70000.0F};

void paintDual(OraclePixel& p, Wide flow, Wide opacity) {
    const Wide g = wrapped(wrapped((p.mask + 1) * flow) / 256 * opacity) / 65536;
    if (p.mask == 0 || g == 0) return;
    const Wide B = p.target[3];
    const Wide laid = wrapped(p.source[3] * g) / 256;
    const Wide e = B == 0 ? 0 : wrapped(65535 - wrapped(laid * 65536) / std::max(B, flow));
    for (std::size_t c = 0; c < 4; ++c) {
        const Wide colour = wrapped(p.source[c] * g) / 256;
        p.target[c] =
            B == 0 ? colour
                   : std::min<Wide>(wrapped(wrapped(p.target[c] * e) / 65536 + colour), 65535);
    }
}

void paintBytes(OraclePixel& p, Wide flow, Wide opacity) {
    const Wide g = wrapped(wrapped((p.mask + 1) * flow) / 65536 * opacity) / 65536;
    if (p.mask == 0 || g == 0) return;
    const Wide B = p.target[3];
    const Wide laid = wrapped(p.source[3] * g);
    const Wide e = B == 0 ? 0 : wrapped(65535 - wrapped(laid * 65536) / std::max(B, flow));
    for (std::size_t c = 0; c < 4; ++c) {
        Wide sum = wrapped(p.source[c] * g);
        if (B != 0) sum = wrapped(sum + wrapped(p.target[c] * e) / 65536);
        p.target[c] = std::min<Wide>(sum / 256, 255) * 256;
    }
}

void solid(OraclePixel& p, Wide flow, Wide opacity) {
    const Wide w = p.mask * (opacity + 1) / 256;
    if (w == 0) return;
    for (std::size_t c = 0; c < 4; ++c) {
        const Wide level = wrapped(p.source[c] * flow) / 256;
        if (level <= p.target[c]) continue;
        const Wide risen = p.target[c] + wrapped((level - p.target[c]) * w) / 65536;
        p.target[c] = std::min<Wide>(risen, 65535);
    }
}

void atOnce(OraclePixel& p, Wide flow) {
    for (std::size_t c = 0; c < 4; ++c) {
        const Wide level = wrapped(p.source[c] * flow) / 256;
        p.target[c] = std::min<Wide>(std::max(level, p.target[c]) / 256, 255) * 256;
    }
}

// Runs `test(mode, name)` for each kernel of both blenders.
template <class Test>
void forEachKernel(npc::PaintBlender& paint, npc::SolidColorPaintBlender& filled, Test test) {
    const auto flow = [&] { return Wide{paint.flow16()}; };
    const auto opacity = [&] { return Wide{paint.opacity16()}; };
    test(WetMode(paint, {true, false, true},
                 [=](OraclePixel& p) { paintDual(p, flow(), opacity()); }),
         "paint on two planes");
    test(WetMode(paint, {false, false, true},
                 [=](OraclePixel& p) { paintBytes(p, flow(), opacity()); }),
         "paint on bytes");
    test(WetMode(filled, {true, false, true}, [=](OraclePixel& p) { solid(p, flow(), opacity()); }),
         "solid on two planes");
    test(
        WetMode(filled, {false, false, true}, [=](OraclePixel& p) { solid(p, flow(), opacity()); }),
        "solid on bytes");
    test(WetMode(filled, {false, false, false}, [=](OraclePixel& p) { atOnce(p, flow()); }),
         "solid without a mask");
}

TEST(PaintModes, EveryFormulaOnRandomPixels) {
    npc::PaintBlender paint;
    npc::SolidColorPaintBlender filled;
    unsigned seed = 1;
    for (const float flow : flows) {
        for (const float opacity : {0.0F, 1e-5F, 0.3F, 0.999F, 1.0F}) {
            paint.setFlow(flow), filled.setFlow(flow);
            paint.setOpacity(opacity), filled.setOpacity(opacity);
            forEachKernel(paint, filled, [&](const WetMode& mode, const char* name) {
                if (flow <= 1.0F) return mode.longRows(name, seed += 7, 1 << 11);
                ASSERT_TRUE(mode.plainOnly(++seed)) << name << ", flow " << flow;
            });
            if (HasFatalFailure()) FAIL() << "flow " << flow << ", opacity " << opacity;
        }
    }
}

TEST(PaintModes, EveryLayoutGivesTheSameBytes) {
    npc::PaintBlender paint;
    npc::SolidColorPaintBlender filled;
    for (const float opacity : {1.0F, 0.8F}) {
        paint.setFlow(0.7F), filled.setFlow(0.7F);
        paint.setOpacity(opacity), filled.setOpacity(opacity);
        forEachKernel(paint, filled, [&](const WetMode& mode, const char*) { mode.everyLayout(); });
    }
}

// Every quotient that the build-up of paint can form at some flow, against whole-number division.
TEST(PaintModes, QuotientsAreExact) {
    npc::PaintBlender paint;
    for (const std::uint32_t flow : {1U, 2U, 3U, 255U, 4097U, 32768U, 65534U}) {
        paint.setFlow((static_cast<float>(flow) + 0.5F) / 65535.0F);
        ASSERT_EQ(paint.flow16(), flow);
        const WetMode mode(paint, {true, false, true},
                           [&](OraclePixel& p) { paintDual(p, flow, 65535); });
        mode.longRows("flow " + std::to_string(flow), flow, 1 << 15);
    }
}

TEST(PaintModes, SettleAtTheFlow) {
    npc::PaintBlender paint;
    npc::SolidColorPaintBlender filled;
    paint.setFlow(0.5F), filled.setFlow(0.5F);
    for (npc::GenericBlender* blender :
         {static_cast<npc::GenericBlender*>(&paint), static_cast<npc::GenericBlender*>(&filled)}) {
        blender->setOpacity(0.2F);
        std::uint8_t hi[4] = {}, lo[4] = {}, source[4] = {255, 128, 0, 255}, mask = 255;
        npc::KernelRow row{hi, lo, source, nullptr, &mask, 1, 1, 1};
        for (int stamp = 0; stamp < 200; ++stamp) blender->kernels().dualPlaneMasked(*blender, row);
        EXPECT_NEAR(hi[3] * 256 + lo[3], 32767, 300);
        EXPECT_NEAR(hi[0] * 256 + lo[0], 32767, 300);
        EXPECT_NEAR(hi[1] * 256 + lo[1], 16448, 300);
        EXPECT_EQ(hi[2] * 256 + lo[2], 0);
    }
    // Solid paint leaves what is above the level.
    std::uint8_t hi[4] = {200, 200, 200, 255}, lo[4] = {1, 2, 3, 4}, source[4] = {9, 9, 9, 255};
    std::uint8_t mask = 255;
    filled.setOpacity(1.0F);
    npc::KernelRow row{hi, lo, source, nullptr, &mask, 1, 1, 1};
    filled.kernels().dualPlaneMasked(filled, row);
    EXPECT_EQ(hi[0], 200);
    EXPECT_EQ(lo[3], 4);
}

TEST(PaintModes, WithoutAMask) {
    npc::PaintBlender paint;
    npc::SolidColorPaintBlender filled;
    std::uint8_t hi[4] = {1, 2, 3, 4}, lo[4] = {5, 6, 7, 8}, source[4] = {90, 0, 90, 90};
    const npc::KernelRow row{hi, lo, source, nullptr, nullptr, 1, 0, 1};
    for (const npc::Kernel kernel : {paint.kernels().dualPlane, paint.kernels().dualPlaneVector,
                                     paint.kernels().rgba, paint.kernels().rgbaVector})
        kernel(paint, row);
    EXPECT_EQ(hi[0], 1);
    EXPECT_EQ(lo[0], 5);
    // Solid paint rises at once; of two planes the high one alone.
    filled.kernels().dualPlaneVector(filled, row);
    EXPECT_EQ(hi[0], 89);  // (90 * 65535) >> 16
    EXPECT_EQ(hi[1], 2);
    EXPECT_EQ(lo[0], 5);
}

TEST(PaintModes, FlowIsKept) {
    npc::PaintBlender paint;
    EXPECT_EQ(paint.mode(), 30);
    EXPECT_EQ(npc::SolidColorPaintBlender().mode(), 32);
    EXPECT_TRUE(paint.skipEmpty());
    EXPECT_EQ(paint.flow16(), 65535U);
    paint.setFlow(0.3F);  // 19660.5 before the cut
    EXPECT_EQ(paint.flow16(), 19660U);
    paint.setFlow(2.0F);
    EXPECT_EQ(paint.flow16(), 131070U);
    EXPECT_EQ(paint.getFlow(), 2.0F);
    paint.setFlow(-1.0F);
    EXPECT_EQ(paint.flow16(), 0U);
}

}  // namespace
}  // namespace brushwork::test
