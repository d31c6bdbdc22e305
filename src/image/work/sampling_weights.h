// The weights of bicubic and linear sampling, by steps of 1/256 of a pixel.
#pragma once

#include <cstdint>

namespace brushwork {

// The cubic kernel with a = -0.75; 0 from a distance of 2 on.
[[nodiscard]] double cubicKernel(double distance);

// Four weights a step, for the pixels at -1, 0, 1 and 2 around a position. They are held negated
// and 15 bits are their fraction, so that a weight of one, -32768, fits 16 bits; each step's four
// sum to -32768 exactly. The other members repeat the same weights in the forms that vector code
// loads at once.
struct SamplingWeights {
    alignas(64) std::int16_t four[256][4];
    alignas(64) std::int32_t doubled[256][4];  // each weight in both halves of a word
    alignas(64) std::int16_t pairs[256][16];   // 0 1 0 1 0 1 0 1 2 3 2 3 2 3 2 3
    alignas(64) std::int16_t spread[256][16];  // 0 0 0 0 1 1 1 1 2 2 2 2 3 3 3 3
    alignas(64) std::int16_t linear[256][8];   // 256 - step four times, step four times
};
// Built at the first call; any thread.
[[nodiscard]] const SamplingWeights& samplingWeights();

// Both passes of a bicubic sample. The first multiplies bytes, shifted up by 7, by the weights of
// one axis and keeps the upper 16 bits of each product: 6 bits of fraction, negated. The second
// multiplies these sums by the weights of the other axis and adds this constant before it shifts
// down: one half less what the four cut products have lost on average.
inline constexpr int cubicByteShift = 7;
inline constexpr int cubicProductShift = 16;
inline constexpr std::int32_t cubicRounding = (1 << 20) - (1 << 16);
inline constexpr int cubicTotalShift = 21;

}  // namespace brushwork
