// A few places of a row, as the kernels of the filters take them.
//
// Every place has a block of pixels of four bytes, 2 by 2 or 4 by 4. All blocks have rows as far
// apart as those of a tile, so that a block in a tile is used where it stands; any other is
// gathered into `gathered`.
#pragma once

#include <cstddef>
#include <cstdint>

namespace brushwork {

constexpr int chunkPlaces = 64;
constexpr std::size_t blockStride = 512;  // bytes from row to row

struct SampleChunk {
    alignas(32) double x[chunkPlaces];
    alignas(32) double y[chunkPlaces];
    // Whole number at or below the place, after the filter's shift by a half.
    alignas(32) std::int32_t ix[chunkPlaces];
    alignas(32) std::int32_t iy[chunkPlaces];
    const std::uint8_t* first[chunkPlaces];  // the lower left pixel of the block
    // Room for the blocks that don't lie in one tile, 32 bytes of each row a place.
    std::uint8_t gathered[chunkPlaces / 16][4 * blockStride];

    [[nodiscard]] std::uint8_t* roomOf(int n) { return gathered[n / 16] + 32 * (n % 16); }
};

}  // namespace brushwork
