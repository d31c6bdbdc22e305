// Normal and Replace on targets of two planes.
#include <gtest/gtest.h>

#include <algorithm>

#include "blending/modes/normal_mode.h"
#include "blending/modes/replace_mode.h"
#include "blending/modes/wet_recipe.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork::test {
namespace {

void lay(OraclePixel& p, Wide opacity) {
    const bool empty = std::all_of(p.source.begin(), p.source.end(), [](Wide s) { return s == 0; });
    if (p.mask == 0 || empty) return;
    const Wide k = p.mask * opacity / 256;
    const Wide alpha = p.source[3] * k / 256;
    const bool bare = p.target[3] == 0;
    for (std::size_t c = 0; c < 4; ++c) {
        const Wide s = p.source[c] * k / 256;
        p.target[c] = bare ? s : (s + (65535 - alpha) * p.target[c] / 65536) % 65536;
    }
}

void crossOver(OraclePixel& p, Wide opacity) {
    if (p.mask == 0) return;
    const Wide k = opacity * p.mask / 256;
    for (std::size_t c = 0; c < 4; ++c)
        p.target[c] = (p.target[c] * (65535 - k) + p.source[c] * 256 * k) / 65536;
}

template <class Blender>
void expectOracle(void (*oracle)(OraclePixel&, Wide)) {
    Blender blender;
    for (const float opacity : unitEdges) {
        blender.setOpacity(opacity);
        const WetMode mode(blender, {true, false, true},
                           [&](OraclePixel& p) { oracle(p, blender.opacity16()); });
        mode.longRows("opacity " + std::to_string(opacity), 17);
        if (::testing::Test::HasFatalFailure()) return;
        mode.everyLayout();
        if (::testing::Test::HasFatalFailure()) return;
    }
}

TEST(DualNormal, OverInSixteenBits) {
    expectOracle<npc::NormalBlender>(lay);
}

TEST(DualNormal, ReplaceInSixteenBits) {
    expectOracle<npc::ReplaceBlender>(crossOver);
}

// Empty source pixels among others, on bare and on painted targets.
TEST(DualNormal, EmptySourcePixelsRest) {
    constexpr std::size_t count = 37;
    const npc::NormalBlender blender;
    Random random(3);
    for (const VectorLevel level : {VectorLevel::Scalar, VectorLevel::Sse2, VectorLevel::Avx2}) {
        const AtLevel forced(level);
        std::vector<std::uint8_t> hi(4 * count), lo(4 * count), source(4 * count);
        for (auto* bytes : {&hi, &lo, &source})
            for (std::uint8_t& byte : *bytes) byte = edgyByte(random);
        for (std::size_t i = 0; i < count; ++i) {
            if (i % 3 == 0) std::fill_n(source.begin() + static_cast<std::ptrdiff_t>(4 * i), 4, 0);
            // Colour alone, alpha alone.
            if (i % 3 == 1) std::fill_n(source.begin() + static_cast<std::ptrdiff_t>(4 * i), 3, 0);
            if (i % 3 == 2) source[4 * i + 3] = 0;
            if (i % 2 == 0) hi[4 * i + 3] = lo[4 * i + 3] = 0;
        }
        auto wantHi = hi, wantLo = lo;
        for (std::size_t i = 0; i < count; ++i) {
            OraclePixel p;
            p.mask = 200;
            for (std::size_t c = 0; c < 4; ++c) {
                p.target[c] = hi[4 * i + c] * 256U + lo[4 * i + c];
                p.source[c] = source[4 * i + c];
            }
            lay(p, 65535);
            for (std::size_t c = 0; c < 4; ++c) {
                wantHi[4 * i + c] = static_cast<std::uint8_t>(p.target[c] / 256);
                wantLo[4 * i + c] = static_cast<std::uint8_t>(p.target[c] % 256);
            }
        }
        const std::vector<std::uint8_t> mask(count, 200);
        npc::KernelRow row;
        row.hi = hi.data();
        row.lo = lo.data();
        row.source = source.data();
        row.mask = mask.data();
        row.sourceStride = row.maskStride = 1;
        row.count = count;
        blender.kernels().dualPlaneMaskedVector(blender, row);
        EXPECT_EQ(hi, wantHi) << vectorLevelName(level);
        EXPECT_EQ(lo, wantLo) << vectorLevelName(level);
    }
}

// An image that is both source and target stays, at another place too; another image replaces.
TEST(DualNormal, ReplaceLeavesAnImageOfItself) {
    const auto image = makeRef<ilSPMemoryImg>(5, 3, 4);
    const auto other = makeRef<ilSPMemoryImg>(5, 3, 4);
    for (int i = 0; i < 60; ++i) {
        image->data()[i] = static_cast<std::uint8_t>(40 + 3 * i);
        other->data()[i] = static_cast<std::uint8_t>(255 - i);
    }
    const std::vector<std::uint8_t> before(image->data(), image->data() + 60);
    const auto bytes = [&] { return std::vector<std::uint8_t>(image->data(), image->data() + 60); };
    npc::ReplaceBlender replace;
    replace.setDestination(image.get(), 0, 0);
    for (const float opacity : {0.5F, 1.0F}) {
        replace.setOpacity(opacity);
        for (const int x : {0, 2}) {
            replace.setSource(image.get(), x, 0, false);
            replace.run(flatTile(0, 0, 5, 3));
            EXPECT_EQ(bytes(), before) << opacity << " " << x;
        }
    }
    replace.setSource(other.get(), 0, 0, false);
    replace.run(flatTile(0, 0, 5, 3));
    EXPECT_EQ(bytes(), std::vector<std::uint8_t>(other->data(), other->data() + 60));
}

}  // namespace
}  // namespace brushwork::test
