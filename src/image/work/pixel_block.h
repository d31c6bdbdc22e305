// PixelBlock: pixels in memory with all that is needed to read or write them, and the converter
// between two blocks.
#pragma once

#include <cstddef>
#include <cstdint>

#include "brushwork/il_tile.h"
#include "image/chain/il_image_config.h"
#include "image/chain/il_pixel.h"

namespace brushwork {

// Pixels of a frame (a box in image coordinates), or one pixel that stands for all of them. Channel
// c of the frame's pixel (x, y, z), counted from the frame's corner, is the value number
//     origin + x * pixelStride + y * rowStride + z * planeStride + c * channelStride
// behind `data`; of TypeBit value n is bit 7 - n % 8 of byte n / 8. Strides may be negative.
struct PixelBlock {
    std::uint8_t* data = nullptr;       // borrowed; needs no alignment
    const ilPixel* constant = nullptr;  // set: the one pixel; `data` and strides aren't looked at
    std::int32_t dataType = TypeUChar;
    std::int32_t order = OrderInterleaved;
    std::int32_t channels = 1;  // channels that the memory holds
    ilTile frame;
    std::ptrdiff_t origin = 0;
    std::ptrdiff_t channelStride = 0, pixelStride = 0, rowStride = 0, planeStride = 0;

    // Packed rows without padding, as elementStrides lays them out; a plane in z follows all
    // channels of the one before it.
    [[nodiscard]] static PixelBlock packed(void* data, const ilTile& frame, std::int32_t type,
                                           std::int32_t order, std::int32_t channels);
    // A pixel has every channel: beyond its last one it repeats that.
    [[nodiscard]] static PixelBlock ofConstant(const ilPixel& pixel, const ilTile& frame);

    // The same pixels, of a flat frame whose corner is (0, 0), as another coordinate space sees
    // them.
    [[nodiscard]] PixelBlock seenIn(std::int32_t space, std::int32_t ownSpace) const;
};

// Which source channel each target channel takes: target channel i takes map[i], or i without a
// map. -1, or a channel that the source doesn't have, leaves the target channel as it is.
struct ChannelMap {
    const std::int32_t* map = nullptr;  // borrowed
    std::int32_t count = 0;             // target channels that take part
};

// Copies the pixels of `box` (cut to both frames) from one block to the other and converts type,
// order and channels. Values travel as they are: they are not scaled to the target's range; what it
// can't hold becomes its nearest bound. For whole-number targets fractions are cut toward zero and
// not-a-number becomes 0; floating targets hold that and the infinities as well, and their bounds
// are the largest finite values. Between equal types values travel bit for bit. The blocks must not
// overlap, unless they are equal. Blocks without data or of no single type are left alone.
void convertBlock(const PixelBlock& source, const PixelBlock& target, const ilTile& box,
                  const ChannelMap& channels);

}  // namespace brushwork
