#include "blending/core/generic_blender.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "blending/core/alpha_keeper.h"
#include "blending/core/blend_layout.h"
#include "image/filter/kernel_recipe.h"

namespace brushwork {
namespace {

using npc::GenericBlender;
using npc::Kernel;
using npc::KernelRow;
using npc::KernelTable;
using test::RecordingBlender;

Ref<ilSPMemoryImg> image(std::int32_t w, std::int32_t h, std::int32_t channels, int value = 0) {
    auto result = makeRef<ilSPMemoryImg>(w, h, channels);
    std::fill_n(result->data(), w * h * channels, static_cast<std::uint8_t>(value));
    return result;
}

// A mode of which only some kernels exist; each adds its own number to the first byte.
class PartialBlender : public GenericBlender {
  public:
    PartialBlender(std::vector<std::pair<Kernel KernelTable::*, Kernel>> kernels)
        : GenericBlender(-1), own_(std::move(kernels)) {
        installKernels(true);
    }
    template <int number>
    static void add(const GenericBlender&, const KernelRow& row) {
        row.hi[0] = static_cast<std::uint8_t>(row.hi[0] + number);
        if (row.lo) row.lo[0] = static_cast<std::uint8_t>(row.lo[0] + number);
    }

  protected:
    void installKernels(bool allowVector) override {
        GenericBlender::installKernels(allowVector);
        for (const auto& [slot, kernel] : own_) kernels_.*slot = kernel;
    }

  private:
    std::vector<std::pair<Kernel KernelTable::*, Kernel>> own_;
};

enum Target { Four, Two, Gray };

// What a blender with a constant source does to the first bytes of a 1 x 1 target of zeros.
std::pair<int, int> ranKernels(GenericBlender& blender, Target target, float opacity = 1.0F) {
    const auto hi = image(1, 1, target == Gray ? 1 : 4);
    const auto lo = image(1, 1, 4);
    blender.setDestination(hi.get(), 0, 0);
    blender.setSecondDestination(target == Two ? lo.get() : nullptr, 0, 0);
    blender.setOpacity(opacity);
    blender.run(flatTile(0, 0, 1, 1));
    return {hi->data()[0], lo->data()[0]};
}

using Pair = std::pair<int, int>;

TEST(KernelTable, WhatIsMissingFallsBack) {
    using B = PartialBlender;
    const std::vector<VectorLevel> levels = {VectorLevel::Scalar, VectorLevel::Avx2};
    for (const VectorLevel level : levels) {
        const test::AtLevel at(level);
        B none({});
        for (const Target target : {Four, Two, Gray})
            EXPECT_EQ(ranKernels(none, target), Pair(0, 0));
        B plain({{&KernelTable::rgba, B::add<1>},
                 {&KernelTable::rgbaMasked, B::add<2>},
                 {&KernelTable::gray, B::add<3>}});
        EXPECT_EQ(ranKernels(plain, Four), Pair(1, 0));
        EXPECT_EQ(ranKernels(plain, Four, 0.5F), Pair(2, 0));
        EXPECT_EQ(ranKernels(plain, Two), Pair(1, 0));  // the low plane stays
        EXPECT_EQ(ranKernels(plain, Two, 0.5F), Pair(2, 0));
        EXPECT_EQ(ranKernels(plain, Gray), Pair(3, 0));
        EXPECT_EQ(ranKernels(plain, Gray, 0.5F), Pair(0, 0));
        const bool wide = level != VectorLevel::Scalar;
        B both({{&KernelTable::rgba, B::add<1>},
                {&KernelTable::rgbaVector, B::add<4>},
                {&KernelTable::dualPlaneMasked, B::add<5>},
                {&KernelTable::grayMaskedVector, B::add<6>}});
        EXPECT_EQ(ranKernels(both, Four), Pair(wide ? 4 : 1, 0));
        EXPECT_EQ(ranKernels(both, Two), Pair(wide ? 4 : 1, 0));
        EXPECT_EQ(ranKernels(both, Two, 0.5F), Pair(5, 5));
        EXPECT_EQ(ranKernels(both, Gray, 0.5F), Pair(wide ? 6 : 0, 0));
    }
}

TEST(GenericBlender, TheVectorWidthFollowsTheLevelAtTheStartOfARun) {
    RecordingBlender blender;
    const auto target = image(5, 5, 4);
    blender.setDestination(target.get(), 0, 0);
    const auto formAt = [&](VectorLevel level) {
        const test::AtLevel at(level);
        blender.run(flatTile(0, 0, 5, 5));
        return lastKernelForm();
    };
    for (const VectorLevel level : test::vectorLevels()) EXPECT_EQ(formAt(level), level);
    EXPECT_EQ(formAt(VectorLevel::Scalar), VectorLevel::Scalar);
    for (const VectorLevel level : test::vectorLevels()) EXPECT_EQ(formAt(level), level);
    blender.allowVectors(false);
    EXPECT_EQ(formAt(VectorLevel::Sse2), VectorLevel::Scalar);
    EXPECT_EQ(formAt(VectorLevel::Avx2), VectorLevel::Scalar);
    // A table that was filled at the lowest level is filled anew.
    const test::AtLevel scalar(VectorLevel::Scalar);
    RecordingBlender late;
    late.setDestination(target.get(), 0, 0);
    for (const VectorLevel level : test::vectorLevels()) {
        forceVectorLevel(level);
        late.run(flatTile(0, 0, 5, 5));
        EXPECT_EQ(lastKernelForm(), level);
    }
}

TEST(GenericBlender, OpacitiesAreClampedAndCutOff) {
    RecordingBlender blender;
    EXPECT_EQ(blender.opacity16(), 65535u);
    EXPECT_EQ(blender.opacity2(), 65535u);
    EXPECT_EQ(blender.opacity3(), 65535u);
    blender.setOpacity(0.5F);
    EXPECT_EQ(blender.opacity16(), 32767u);
    EXPECT_EQ(blender.getOpacity(), 0.5F);
    blender.setOpacity(0.1F);
    EXPECT_EQ(blender.opacity16(), 6553u);
    blender.setOpacity(std::nextafter(1.0F, 0.0F));
    EXPECT_EQ(blender.opacity16(), 65534u);
    blender.setOpacity(7.0F);
    EXPECT_EQ(blender.opacity16(), 65535u);
    EXPECT_EQ(blender.getOpacity(), 1.0F);
    blender.setOpacity(-1.0F);
    EXPECT_EQ(blender.opacity16(), 0u);
    blender.setOpacity(std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(blender.opacity16(), 0u);
    EXPECT_EQ(blender.getOpacity(), 0.0F);
    blender.setOpacity2(0.25F);
    blender.setOpacity3(0.75F);
    EXPECT_EQ(blender.opacity2(), 16383u);
    EXPECT_EQ(blender.opacity3(), 49151u);
}

TEST(GenericBlender, ResetPutsBackInputsFirstOpacityAndConstants) {
    RecordingBlender blender;
    const auto target = image(2, 2, 4);
    blender.setDestination(target.get(), 3, 4);
    blender.setSource(target.get(), 0, 0, true);
    blender.setMask(image(2, 2, 1).get(), 0, 0, false);
    blender.setOpacity(0.5F);
    blender.setOpacity2(0.25F);
    blender.setConstantColor(5);
    blender.setConstantMask(6);
    blender.setLockAlpha(true);
    blender.reset();
    for (std::size_t n = 0; n < npc::blendInputCount; ++n) {
        const auto& slot = blender.input(static_cast<npc::BlendInput>(n));
        EXPECT_FALSE(slot.image || slot.writable || slot.x || slot.y);
    }
    EXPECT_EQ(target->refCount(), 1u);
    EXPECT_EQ(blender.opacity16(), 65535u);
    EXPECT_EQ(blender.opacity2(), 16383u);
    EXPECT_EQ(blender.constantColor(), 0xFF000000u);
    EXPECT_EQ(blender.constantMask(), 255);
    EXPECT_TRUE(blender.lockAlpha());
    // Strides are back too: the constants answer again.
    blender.setLockAlpha(false);
    blender.setDestination(target.get(), 0, 0);
    blender.run(flatTile(0, 0, 2, 2));
    EXPECT_EQ(target->data()[4], test::recorded(0, 0, 0, test::noMask));
}

TEST(GenericBlender, EmptyWorkIsSkippedUnlessTheModeWantsIt) {
    const auto mask = image(4, 4, 1);
    const auto source = image(4, 4, 4);
    const auto changes = [&](bool skip, float opacity, std::uint32_t color, std::uint8_t constant,
                             ilImage* maskImage, ilImage* sourceImage) {
        RecordingBlender blender;
        const auto target = image(4, 4, 4);
        blender.setSkipEmpty(skip);
        blender.setDestination(target.get(), 0, 0);
        blender.setSource(sourceImage, 0, 0, false);
        blender.setMask(maskImage, 0, 0, false);
        blender.setOpacity(opacity);
        blender.setConstantColor(color);
        blender.setConstantMask(constant);
        blender.run(flatTile(0, 0, 4, 4));
        return target->data()[0] != 0;
    };
    EXPECT_TRUE(changes(true, 1.0F, 1, 255, nullptr, nullptr));
    EXPECT_FALSE(changes(true, 0.0F, 1, 255, nullptr, nullptr));
    EXPECT_FALSE(changes(true, 0.00001F, 1, 255, nullptr, nullptr));  // 0 of 65535
    EXPECT_FALSE(changes(true, 1.0F, 0, 255, nullptr, nullptr));
    EXPECT_FALSE(changes(true, 1.0F, 1, 0, nullptr, nullptr));
    // Images are looked at pixel by pixel, by the kernels.
    EXPECT_TRUE(changes(true, 1.0F, 0, 255, nullptr, source.get()));
    EXPECT_TRUE(changes(true, 1.0F, 1, 0, mask.get(), nullptr));
    EXPECT_TRUE(changes(false, 0.0F, 0, 0, nullptr, nullptr));
}

// A reduced opacity is seen through a mask, even one of 255; a full one with none costs nothing.
TEST(GenericBlender, ConstantsStandInForImages) {
    const auto byteOf = [](std::int32_t channels, std::size_t n, float opacity) {
        RecordingBlender blender;
        const auto target = image(9, 3, channels);
        blender.setDestination(target.get(), 0, 0);
        blender.setConstantColor(0x04030201);
        blender.setOpacity(opacity);
        blender.run(flatTile(0, 0, 9, 3));
        return target->data()[n];
    };
    for (std::size_t n = 0; n < 27 * 4; ++n) {
        const int color = static_cast<int>(n % 4) + 1;
        ASSERT_EQ(byteOf(4, n, 1.0F), test::recorded(0, color, 0, test::noMask));
        ASSERT_EQ(byteOf(4, n, 0.5F), test::recorded(0, color, 0, 255));
    }
    for (std::size_t n = 0; n < 27; ++n)
        ASSERT_EQ(byteOf(1, n, 0.5F), test::recorded(0, 1, 0, 255));
}

// Rows count as one only if no input has a gap between them.
TEST(GenericBlender, AGapInOneInputKeepsTheRowsApart) {
    enum { Hi, Lo, Source, Source2, Mask, None };
    for (int wide = Hi; wide <= None; ++wide) {
        const auto made = [&](int which) {
            const std::int32_t width = which == wide ? 23 : 16;
            const std::int32_t channels = which == Mask ? 1 : 4;
            auto result = image(width, 9, channels);
            for (std::int32_t n = 0; n < width * 9 * channels; ++n)
                result->data()[n] =
                    test::contentOf(4, which, n % (width * channels), n / (width * channels));
            return result;
        };
        const auto hi = made(Hi), lo = made(Lo), source = made(Source), source2 = made(Source2),
                   mask = made(Mask);
        RecordingBlender blender;
        blender.setDestination(hi.get(), 0, 0);
        blender.setSecondDestination(lo.get(), 0, 0);
        blender.setSource(source.get(), 0, 0, false);
        blender.setSecondSource(source2.get(), 0, 0, false);
        blender.setMask(mask.get(), 0, 0, false);
        blender.run(flatTile(0, 0, 16, 9));
        for (std::int32_t y = 0; y < 9; ++y)
            for (std::int32_t x = 0; x < 64; ++x) {
                const auto at = [&](int which) { return test::contentOf(4, which, x, y); };
                const auto m = test::contentOf(4, Mask, x / 4, y);
                const std::int32_t hiWidth = wide == Hi ? 23 : 16;
                const std::int32_t loWidth = wide == Lo ? 23 : 16;
                ASSERT_EQ(hi->data()[y * hiWidth * 4 + x],
                          test::recorded(at(Hi), at(Source), at(Source2), m))
                    << x << ", " << y << " wide " << wide;
                ASSERT_EQ(lo->data()[y * loWidth * 4 + x],
                          test::recordedLow(at(Lo), at(Hi), at(Source)))
                    << x << ", " << y << " wide " << wide;
            }
    }
}

// Inputs of other channel counts are never read.
TEST(GenericBlender, ChannelsThatDontFitChangeNothing) {
    const auto run = [](std::int32_t target, std::int32_t second, std::int32_t source,
                        std::int32_t source2, std::int32_t mask) {
        const auto make = [](std::int32_t channels) {
            return channels ? image(6, 6, channels) : Ref<ilSPMemoryImg>();
        };
        const auto hi = make(target), lo = make(second), s = make(source), s2 = make(source2),
                   m = make(mask);
        RecordingBlender blender;
        blender.setDestination(hi.get(), 0, 0);
        blender.setSecondDestination(lo.get(), 0, 0);
        blender.setSource(s.get(), 0, 0, false);
        blender.setSecondSource(s2.get(), 0, 0, false);
        blender.setMask(m.get(), 0, 0, false);
        blender.run(flatTile(0, 0, 6, 6));
        return hi && hi->data()[0] != 0;
    };
    EXPECT_TRUE(run(4, 4, 4, 4, 1));
    EXPECT_TRUE(run(1, 0, 1, 1, 1));
    EXPECT_FALSE(run(4, 4, 1, 4, 1));
    EXPECT_FALSE(run(4, 1, 4, 4, 1));
    EXPECT_FALSE(run(4, 4, 4, 1, 1));
    EXPECT_FALSE(run(4, 0, 4, 0, 4));
    EXPECT_FALSE(run(1, 0, 4, 0, 1));
    EXPECT_FALSE(run(1, 1, 1, 0, 1));  // gray has no second plane
    EXPECT_FALSE(run(3, 0, 3, 0, 1));
    EXPECT_FALSE(run(2, 0, 0, 0, 0));
    EXPECT_FALSE(run(0, 0, 4, 0, 1));
}

// Locked alpha is kept piece by piece; what comes out is as if it had been kept whole.
TEST(GenericBlender, LockedAlpha) {
    for (const bool two : {false, true})
        for (const std::int32_t width : {7, 1500}) {
            std::mt19937 random(9);
            const std::int32_t height = 5;
            const auto fill = [&](std::int32_t channels) {
                auto result = image(width, height, channels);
                for (std::int32_t n = 0; n < width * height * channels; ++n)
                    result->data()[n] = test::edgyByte(random);
                return result;
            };
            const auto hi = fill(4), lo = fill(4), source = fill(4), mask = fill(1);
            const auto count = static_cast<std::size_t>(width * height);
            std::vector<std::uint8_t> wantHi(hi->data(), hi->data() + 4 * count), keptHi(count);
            std::vector<std::uint8_t> wantLo(lo->data(), lo->data() + 4 * count), keptLo(count);
            npc::keepAlpha(wantHi.data(), count, keptHi.data());
            npc::keepAlpha(wantLo.data(), count, keptLo.data());
            for (std::size_t n = 0; n < 4 * count; ++n) {
                const std::uint8_t before = wantHi[n];
                wantHi[n] = test::recorded(before, source->data()[n], 0, mask->data()[n / 4]);
                wantLo[n] = test::recordedLow(wantLo[n], before, source->data()[n]);
            }
            if (two)
                npc::restoreAlpha16Scalar(wantHi.data(), wantLo.data(), keptHi.data(),
                                          keptLo.data(), count);
            else
                npc::restoreAlphaScalar(wantHi.data(), keptHi.data(), count);
            RecordingBlender blender;
            blender.setLockAlpha(true);
            blender.setDestination(hi.get(), 0, 0);
            if (two) blender.setSecondDestination(lo.get(), 0, 0);
            blender.setSource(source.get(), 0, 0, false);
            blender.setMask(mask.get(), 0, 0, false);
            blender.run(flatTile(0, 0, width, 2));  // whole rows, as one
            blender.run(flatTile(0, 2, 3, 3));      // and parts of rows
            blender.run(flatTile(3, 2, width - 3, 3));
            ASSERT_TRUE(std::equal(wantHi.begin(), wantHi.end(), hi->data())) << two << width;
            if (two) {
                ASSERT_TRUE(std::equal(wantLo.begin(), wantLo.end(), lo->data()));
            }
        }
    RecordingBlender blender;
    blender.setLockAlpha(true);
    const auto gray = image(3, 3, 1);
    blender.setDestination(gray.get(), 0, 0);
    blender.run(flatTile(0, 0, 3, 3));
    EXPECT_EQ(gray->data()[8], test::recorded(0, 0, 0, test::noMask));  // gray has no alpha
}

}  // namespace
}  // namespace brushwork
