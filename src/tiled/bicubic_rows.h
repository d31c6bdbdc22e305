// Bicubic samples of a row, in whole numbers and single precision.
//
// The definition of a sample is BicubicFilter's, in double. Here the weights along one axis are
// whole 32766ths, so that a column, or a row, adds up exactly, and those along the other floats.
// How far a weight was rounded is known, and with it how far a sum can lie off: it rounds to the
// same byte unless it lies closer than that to the middle between two. The kernel says which pixels
// do, and those are sampled again in double. About one pixel in thirty of a noisy picture is.
#pragma once

#include <cstdint>

#include "foundation/services/vector_level.h"
#include "tiled/sample_chunk.h"

namespace brushwork {

struct BicubicChunk : SampleChunk {
    // Distances of the places from the pixel centres (ix, iy), 0 to 1, both ends among them.
    alignas(32) float fx[chunkPlaces];
    alignas(32) float fy[chunkPlaces];
};

// The places that aren't settled: bit n for number 2 n, and for number 2 n + 1.
struct Unsettled {
    std::uint64_t even = 0, odd = 0;
};
static_assert(chunkPlaces == 128);

// `count` is a multiple of 8, at most chunkPlaces; places lie within 2^28 of zero.
struct BicubicRows {
    void (*locate)(BicubicChunk& chunk, int count);
    PointBlocks point;
    // Writes four bytes a place.
    Unsettled (*sum)(const BicubicChunk& chunk, int count, std::uint8_t* out);
};

// Null where samples are taken one by one: at VectorLevel::Scalar.
[[nodiscard]] const BicubicRows* bicubicRows(VectorLevel level = vectorLevel());
extern const BicubicRows bicubicRowsSse2;
extern const BicubicRows bicubicRowsAvx2;

}  // namespace brushwork
