// The samplers: pixels of a picture at places between its pixels.
//
// Places are 16.16 fixed point. Whole numbers are the middles of pixels for the bilinear and the
// bicubic sampler; for the nearest one they are the pixels' lower edges.
//
// - Nearest: the pixel at the truncated place. Outside the picture it is the fill pixel.
// - Bilinear: weights of 8 bits, fx and fy, the upper bits of the fractions:
//   ((p00 * (256 - fx) + p01 * fx) * (256 - fy) + (p10 * (256 - fx) + p11 * fx) * fy) >> 16
// - Bicubic: four by four pixels and the weights of sampling_weights.h, down the columns first.
// Never
//   further than one level from the exact weighted mean.
//
// Rows and columns beyond an edge count as the edge's own, for both, at any distance.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/services/vector_level.h"

namespace brushwork {

enum class SampleMode : std::int32_t { Nearest = 0, Bilinear = 1, Bicubic = 2 };

// Pixels to read, borrowed. Never without a pixel: width and height are at least 1.
struct SampleSource {
    const std::uint8_t* pixels = nullptr;
    std::int32_t width = 0, height = 0;
    std::ptrdiff_t rowBytes = 0;
    std::uint8_t fill[4] = {};  // of one channel the first byte counts
};

// Fixed point keeps whole and fraction apart: 65535 stands for a fraction of one, so a whole number
// is exact at any distance. Cut off downward; not-a-number becomes 0, and what lies beyond 32767
// pixels the nearest bound.
inline constexpr float fixedOfFraction = 65535.0f;
inline constexpr float fractionOfFixed = 1.5259022e-5f;
[[nodiscard]] std::int32_t toFixed(float place);
[[nodiscard]] float fromFixed(std::int32_t place);

// Samples `count` places into `out`, one pixel after the other.
using SampleRun = void (*)(const SampleSource& source, const std::int32_t* x, const std::int32_t* y,
                           std::size_t count, std::uint8_t* out);

// One kernel a mode, in the order of SampleMode.
struct SamplingKernels {
    SampleRun four[3];  // 4 channels
    SampleRun one[3];   // 1 channel
};
[[nodiscard]] const SamplingKernels& samplingKernels(VectorLevel level = vectorLevel());

// The forms; null where one has nothing better than the narrower form.
extern const SamplingKernels samplingKernelsScalar;
extern const SamplingKernels samplingKernelsSse2;
extern const SamplingKernels samplingKernelsAvx2;

// For samples at an edge: the `side` by `side` pixels around a place, copied with clamped indexes
// to a block of rows without gaps. (left, bottom) is the block's first pixel and may lie outside.
void copyClamped(const SampleSource& source, std::int32_t left, std::int32_t bottom,
                 std::int32_t side, std::size_t channels, std::uint8_t* block);

}  // namespace brushwork
