// Eight bicubic samples at once, in single precision.
//
// The definition of a sample is BicubicFilter's, in double. A sum in float lies within 0.001 of it,
// so it rounds to the same byte unless it lies close to the middle between two: the kernel says
// which pixels do, and those are sampled again. About one pixel in sixty of a noisy picture is.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/services/vector_level.h"

namespace brushwork {

constexpr int bicubicLanes = 8;

// Places of up to so many samples, and what follows from them: the whole number at or below the
// place less a half, and the distance from that. Each step as in the definition. Many at a time, so
// that what was stored alone has settled when it is loaded by fours and eights.
constexpr int bicubicPlaces = 128;
struct BicubicPlaces {
    alignas(32) double x[bicubicPlaces];
    alignas(32) double y[bicubicPlaces];
    alignas(32) std::int32_t ix[bicubicPlaces];
    alignas(32) std::int32_t iy[bicubicPlaces];
    alignas(32) float fx[bicubicPlaces];
    alignas(32) float fy[bicubicPlaces];
};

// The lower left one of each sample's 4 by 4 pixels of four bytes, and the distance of their rows.
struct BicubicBlocks {
    const std::uint8_t* first[bicubicLanes];
    std::size_t stride[bicubicLanes];
};

struct BicubicRows {
    // The first `count` places, a multiple of bicubicLanes.
    void (*locate)(BicubicPlaces& places, int count);
    // The samples from number `first` on, a multiple of bicubicLanes. Writes 32 bytes. Bit n: pixel
    // n isn't settled.
    std::uint32_t (*sum)(const BicubicPlaces& places, int first, const BicubicBlocks& blocks,
                         std::uint8_t* out);
};

// Null where samples are taken one by one: below VectorLevel::Avx2.
[[nodiscard]] const BicubicRows* bicubicRows(VectorLevel level = vectorLevel());
extern const BicubicRows bicubicRowsAvx2;

}  // namespace brushwork
