// A few places of a row, as the kernels of the filters take them.
//
// Every place has a block of pixels of four bytes, 2 by 2 or 4 by 4. All blocks have rows as far
// apart as those of a tile, so that a block in a tile is used where it stands; any other is
// gathered into the chunk's room, together with its neighbours.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace brushwork {

constexpr int chunkPlaces = 128;
constexpr std::size_t blockStride = 512;  // bytes from row to row

// The places of a chunk along one axis.
struct SampleSteps {
    double first, step;
    bool even;  // place n is first + n * step; else the places stand in the chunk already
};

struct SampleChunk {
    SampleSteps alongX, alongY;
    alignas(32) double x[chunkPlaces];
    alignas(32) double y[chunkPlaces];
    // Whole number at or below the place, after the filter's shift by a half; or the one before if
    // the shifted place is a whole number and the kernel allows for that. Kernels take some at once
    // and may look, and write, behind the last.
    static constexpr int overrun = 8;
    alignas(32) std::int32_t ix[chunkPlaces + overrun];
    alignas(32) std::int32_t iy[chunkPlaces + overrun];
    const std::uint8_t* first[chunkPlaces + overrun];  // the lower left pixel of the block
    // From a block to rows that the next row of the target will need, for prefetching in turn.
    std::ptrdiff_t ahead[4];

    // Room for the blocks that don't lie in one tile: some rows, of which a place has 8 pixels
    // each.
    static constexpr int roomPlaces = 16;
    static constexpr int roomRows = 16;
    std::uint8_t room[chunkPlaces / roomPlaces][roomRows * blockStride];

    [[nodiscard]] std::uint8_t* roomOf(int n) {
        return room[n / roomPlaces] + 32 * (n % roomPlaces);
    }
};

// Points to the blocks from number `n` up to `end` that stand in one tile, where the pixel (x, y),
// counted as ix and iy are, stands at `corner`.
using PointBlocks = void (*)(SampleChunk& chunk, int n, int end, const std::uint8_t* corner,
                             std::int32_t x, std::int32_t y);

alignas(32) inline constexpr auto placeNumbers = [] {
    std::array<double, chunkPlaces> values{};
    for (std::size_t n = 0; n < values.size(); ++n) values[n] = static_cast<double>(n);
    return values;
}();

}  // namespace brushwork
