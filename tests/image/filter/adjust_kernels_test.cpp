// The vector forms of the colour adjustments against their plain forms, byte for byte.
#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "adjust_oracle.h"
#include "image/filter/adjust_hsl.h"
#include "image/filter/adjust_invert.h"
#include "image/filter/adjust_ranges.h"
#include "image/filter/adjust_tones.h"
#include "kernel_recipe.h"

namespace brushwork {
namespace {

using Kernel = std::function<void(std::uint32_t*, std::size_t)>;

void expectSameBytes(const char* what, test::Random& random, VectorLevel reached,
                     const Kernel& kernel) {
    for (std::size_t count = 0; count <= 41; ++count) {
        test::GuardedBytes pixels(count * 4, count % 16 * 4), expected(count * 4, 0);
        pixels.fill(random);
        for (std::size_t n = 0; n < count; ++n) {
            std::uint8_t* const pixel = pixels.data() + n * 4;
            if (random() % 4 == 0) pixel[1] = pixel[2] = pixel[0];
            if (random() % 2 == 0) pixel[3] = 255;
        }
        std::copy_n(pixels.data(), pixels.size(), expected.data());
        {
            const test::AtLevel plain(VectorLevel::Scalar);
            kernel(reinterpret_cast<std::uint32_t*>(expected.data()), count);
        }
        const test::AtLevel at(reached);
        kernel(reinterpret_cast<std::uint32_t*>(pixels.data()), count);
        ASSERT_EQ(lastKernelForm(), reached) << what;
        ASSERT_EQ(pixels.bytes(), expected.bytes()) << what << ", " << count << " pixels";
        ASSERT_TRUE(pixels.guardsIntact() && expected.guardsIntact()) << what;
    }
}

// Rows with gaps between them, beside records that are anything within bounds.
template <class Tones>
Kernel toneKernel(const Tones& tones,
                  void (*const ToneKernels::*kernel)(const Tones&, const ToneBlock&),
                  const std::vector<float>& records) {
    return [&tones, kernel, &records](std::uint32_t* pixels, std::size_t count) {
        ToneBlock block;
        block.pixels = pixels;
        block.records = records.data();
        block.rows = count >= 8 ? 2 : 1;
        block.pixelStride = count / block.rows;
        block.width = block.rows == 2 ? count / 2 - 1 : count;
        block.recordStride = 4 * 64;
        (toneKernels().*kernel)(tones, block);
    };
}

TEST(AdjustKernels, AgreeWithThePlainForm) {
    test::Random random(31);
    for (const VectorLevel level : test::vectorLevels()) {
        for (int round = 0; round < 40; ++round) {
            std::vector<float> records(2 * 4 * 64);
            for (std::size_t n = 0; n < records.size(); n += 4) {
                records[n] = static_cast<float>(random() % 3601) / 10.0f;
                records[n + 1] = static_cast<float>(random() % 11) / 10.0f;
                records[n + 2] = static_cast<float>(random() % 2551) / 10.0f;
            }
            if (const auto tones = ToneBalance::from(test::randomParm(AdjustToneBalance, random)))
                expectSameBytes("balance", random, level,
                                toneKernel<ToneBalance>(*tones, &ToneKernels::balance, records));
            if (const auto tones = ToneGain::from(test::randomParm(AdjustToneGain, random)))
                expectSameBytes("gain", random, level,
                                toneKernel<ToneGain>(*tones, &ToneKernels::gain, records));
            if (const auto tones = ToneTint::from(test::randomParm(AdjustTint, random)))
                expectSameBytes("tint", random, level,
                                toneKernel<ToneTint>(*tones, &ToneKernels::tint, records));
            for (const auto kind : {AdjustRanges, AdjustShowRanges}) {
                const auto numbers = RangeNumbers::from(test::randomParm(kind, random));
                ASSERT_TRUE(numbers);
                float left[2] = {};
                std::size_t turn = 0;
                expectSameBytes("ranges", random, level,
                                [&](std::uint32_t* pixels, std::size_t count) {
                                    float hue = 33.0f;
                                    adjustRanges(*numbers, pixels, count, hue);
                                    left[turn++ % 2] = hue;
                                    if (turn % 2 == 0) {
                                        EXPECT_EQ(left[0], left[1]);
                                    }
                                });
            }
            if (const auto numbers = HslNumbers::from(test::randomParm(AdjustHsl, random)))
                expectSameBytes("hsl", random, level,
                                [&](std::uint32_t* pixels, std::size_t count) {
                                    adjustHsl(*numbers, pixels, count);
                                });
        }
    }
    expectSameBytes("invert", random, VectorLevel::Sse2, adjustInvert);
}

}  // namespace
}  // namespace brushwork
