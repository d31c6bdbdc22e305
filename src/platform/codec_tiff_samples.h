// Samples of every width out of a TIFF row.
#pragma once

#include <cstdint>

#include "platform/codec_tiff_pixels.h"

namespace brushwork::platform {

[[nodiscard]] bool tiffSamplesSupported(TiffSampleKind kind, std::uint32_t bits);

// The largest value that unpackTiffSamples gives. Samples of up to 32 bits keep their own range,
// signed ones moved up to begin at 0; 64-bit ones lose their lower half; floating-point ones from
// 0 to 1 are spread over 32 bits, with what lies outside at its nearer end and NaN at 0.
[[nodiscard]] std::uint64_t largestTiffSample(TiffSampleKind kind, std::uint32_t bits);

// Unpacks `count` samples from number `first` of `row` on, to every `stride`-th place of `out`.
void unpackTiffSamples(TiffSampleKind kind, std::uint32_t bits, const std::uint8_t* row,
                       std::uint64_t first, std::uint32_t count, std::uint32_t* out,
                       std::uint32_t stride);

}  // namespace brushwork::platform
