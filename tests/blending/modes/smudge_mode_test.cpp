#include "blending/modes/smudge_mode.h"

#include <gtest/gtest.h>

#include "blending/modes/wet_recipe.h"
#include "image/work/il_memory_img.h"

namespace brushwork::test {
namespace {

void smear(OraclePixel& p, Wide q, Wide opacity) {
    const Wide g = p.mask * opacity / 256;
    for (std::size_t c = 0; c < 4; ++c) {
        const Wide D = p.target[c], P = p.source[c];
        if (g > 0) p.target[c] = ((65535 - g) * D + g * P) / 65536;
        if (q > 0) p.source[c] = wrapped(wrapped(D * q) + wrapped(P * wrapped(65535 - q))) / 65536;
    }
}

WetMode rendered(const npc::SmudgeBlender& smudge) {
    return {smudge, {true, true, true}, [&smudge](OraclePixel& p) {
                smear(p, smudge.pickup16(), smudge.opacity16());
            }};
}

TEST(SmudgeMode, FormulaOnRandomPixels) {
    npc::SmudgeBlender smudge;
    unsigned seed = 1;
    for (const float pickup : unitEdges) {
        for (const float opacity : unitEdges) {
            smudge.setPickup(pickup);
            smudge.setOpacity(opacity);
            rendered(smudge).longRows("pick-up " + std::to_string(pickup), seed += 10);
            if (HasFatalFailure()) FAIL() << "opacity " << opacity;
        }
    }
    smudge.setPickup(2.5F);
    EXPECT_TRUE(rendered(smudge).plainOnly(4));
}

TEST(SmudgeMode, EveryLayoutGivesTheSameBytes) {
    npc::SmudgeBlender smudge;
    smudge.setPickup(0.06F);
    rendered(smudge).everyLayout();
    smudge.setPickup(0.0F);
    rendered(smudge).everyLayout();
}

// Where the carried paint and the target share a plane the paint stays, whatever the form.
TEST(SmudgeMode, SharedPlanes) {
    npc::SmudgeBlender smudge;
    smudge.setPickup(0.4F);
    Random random(5);
    for (const bool vector : {false, true}) {
        GuardedBytes plane(64, 1), lo(64, 2), source2(64, 3), mask(16, 0);
        for (GuardedBytes* bytes : {&plane, &lo, &source2, &mask}) bytes->fill(random);
        const auto before = plane.bytes();
        const auto lowBefore = lo.bytes(), source2Before = source2.bytes();
        const npc::KernelRow row{
            plane.data(), lo.data(), plane.data(), source2.data(), mask.data(), 1, 1, 16};
        (vector ? smudge.kernels().dualPlaneMaskedVector : smudge.kernels().dualPlaneMasked)(smudge,
                                                                                             row);
        for (std::size_t b = 0; b < 64; ++b) {
            OraclePixel p;
            p.target[0] = before[b] * 256U + lowBefore[b];
            p.source[0] = before[b] * 256U + source2Before[b];
            smear(p, smudge.pickup16(), 65535);
            EXPECT_EQ(plane.data()[b], p.source[0] / 256);
        }
    }
}

// An image of bytes of its own.
struct Plane {
    std::vector<std::uint8_t> bytes;
    Ref<ilMemoryImg> image;

    Plane(std::int32_t side, std::array<std::uint8_t, 4> pixel)
        : bytes(static_cast<std::size_t>(side * side * 4)) {
        for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = pixel[i % 4];
        image = makeRef<ilMemoryImg>(bytes.data(), side, side, 1, 4, TypeUChar, OrderInterleaved);
    }
    [[nodiscard]] int at(std::size_t x, std::size_t y, std::size_t side, std::size_t c) const {
        return bytes[(y * side + x) * 4 + c];
    }
};

// A stamp of 8 x 8 on a canvas of 32 x 32, through the images.
TEST(SmudgeMode, AStampCarriesPaint) {
    const std::array<std::uint8_t, 4> color = {0x20, 0x40, 0x80, 0xFF};
    Plane hi(32, color), lo(32, {}), paint(8, {}), paintLow(8, {});
    std::vector<std::uint8_t> soft(64);
    for (std::size_t i = 0; i < 64; ++i) soft[i] = i % 8 < 4 ? 0 : 255;
    const auto mask = makeRef<ilMemoryImg>(soft.data(), 8, 8, 1, 1, TypeUChar, OrderInterleaved);

    npc::SmudgeBlender smudge;
    smudge.setPickup(0.1F);
    smudge.setDestination(hi.image.get(), 0, 0);
    smudge.setSecondDestination(lo.image.get(), 0, 0);
    smudge.setMask(mask.get(), 10, 12, false);
    // Nothing carried: nothing happens.
    smudge.run(ilTile{10, 12, 0, 8, 8, 1});
    EXPECT_EQ(hi.bytes, Plane(32, color).bytes);

    smudge.setSource(paint.image.get(), 10, 12, true);
    smudge.setSecondSource(paintLow.image.get(), 10, 12, true);
    smudge.run(ilTile{10, 12, 0, 8, 8, 1});
    // Where the mask is 0 the canvas stays and the paint drifts; elsewhere empty paint wipes.
    for (std::size_t y = 0; y < 32; ++y) {
        for (std::size_t x = 0; x < 32; ++x) {
            const bool inside = x >= 10 && x < 18 && y >= 12 && y < 20;
            for (std::size_t c = 0; c < 4; ++c) {
                OraclePixel p;
                p.target[c] = color[c] * 256U;
                p.mask = inside && x >= 14 ? 255 : 0;
                smear(p, smudge.pickup16(), 65535);
                ASSERT_EQ(hi.at(x, y, 32, c), int(p.target[c] / 256)) << x << " " << y;
                ASSERT_EQ(lo.at(x, y, 32, c), int(p.target[c] % 256)) << x << " " << y;
                if (!inside) continue;
                ASSERT_EQ(paint.at(x - 10, y - 12, 8, c), int(p.source[c] / 256));
                ASSERT_EQ(paintLow.at(x - 10, y - 12, 8, c), int(p.source[c] % 256));
            }
        }
    }
}

TEST(SmudgeMode, Parameters) {
    npc::SmudgeBlender smudge;
    EXPECT_EQ(smudge.mode(), 27);
    EXPECT_FALSE(smudge.skipEmpty());
    EXPECT_EQ(smudge.pickup16(), 65535U);
    smudge.setPickup(0.3F);
    EXPECT_EQ(smudge.pickup16(), 19660U);
    EXPECT_EQ(smudge.getOpacity2(), 0.3F);
}

}  // namespace
}  // namespace brushwork::test
