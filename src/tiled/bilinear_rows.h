// Bilinear samples of a row, in the whole numbers of BilinearFilter's definition.
#pragma once

#include <cstdint>

#include "foundation/services/vector_level.h"
#include "tiled/sample_chunk.h"

namespace brushwork {

struct BilinearChunk : SampleChunk {
    // What of 256 the left and the right pixels have, a word each; the lower and the upper ones.
    alignas(32) std::int32_t sharesX[chunkPlaces];
    alignas(32) std::int32_t sharesY[chunkPlaces];
};

// `count` is a multiple of 8, at most chunkPlaces; places lie within 2^28 of zero.
struct BilinearRows {
    // `ix` and `iy` become the corners, not the pixels left of them.
    void (*locate)(BilinearChunk& chunk, int count);
    PointBlocks point;
    // Writes four bytes a place.
    void (*mix)(const BilinearChunk& chunk, int count, std::uint8_t* out);
};

// Null at VectorLevel::Scalar.
[[nodiscard]] const BilinearRows* bilinearRows(VectorLevel level = vectorLevel());
extern const BilinearRows bilinearRowsSse2;
extern const BilinearRows bilinearRowsAvx2;

}  // namespace brushwork
