// What the first directory of a TIFF file says, checked: how its pixels are stored and where.
#pragma once

#include <cstdint>

#include "platform/byte_stream.h"
#include "platform/codec_tiff_handle.h"
#include "platform/codec_tiff_pixels.h"
#include "platform/imaging.h"

namespace brushwork::platform {

struct TiffLayout {
    std::int32_t width = 0;
    std::int32_t height = 0;
    float xResolution = 0;  // dots per inch; 0 where the file doesn't tell
    float yResolution = 0;
    TiffPixelFormat pixels;
    bool tiled = false;
    bool separate = false;      // a plane for each sample
    bool compressed = false;    // else rows can be read by their offsets
    bool reversedBits = false;  // uncompressed bytes have their first bit lowest
    // Chroma samples for that many pixels across and down; 1 where the library doubles them.
    std::uint32_t chromaX = 1;
    std::uint32_t chromaY = 1;
    // A chunk is a strip or a tile of one plane. A strip is as wide as the picture.
    std::uint32_t chunkWidth = 0;
    std::uint32_t chunkHeight = 0;
    std::uint32_t chunksAcross = 1;
    std::uint32_t chunksDown = 1;
    // Bytes of a row of a chunk when decoded, of one plane; 0 where chroma is shared by pixels.
    std::uint64_t rowBytes = 0;
    std::uint64_t chunkBytes = 0;  // a whole one, decoded

    [[nodiscard]] std::uint32_t planes() const { return separate ? pixels.samples : 1; }
    [[nodiscard]] bool sharesChroma() const { return chromaX > 1 || chromaY > 1; }
    // The number of a chunk by its plane and place.
    [[nodiscard]] std::uint32_t chunk(std::uint32_t plane, std::uint32_t across,
                                      std::uint32_t down) const {
        return (plane * chunksDown + down) * chunksAcross + across;
    }
    // Rows of the picture in the chunks at `down`.
    [[nodiscard]] std::uint32_t rowsAt(std::uint32_t down) const;
};

// Sets `layout`, and for JPEG data makes the library give RGB. Anything but Ok for a picture that
// can't be read, or whose strips and tiles don't lie whole within the file.
[[nodiscard]] ImagingStatus readTiffLayout(TiffHandle& handle, const ByteSource& source,
                                           TiffLayout& layout);

// Makes the library give JPEG data as RGB where it is YCbCr. Every handle of a picture needs it.
void chooseTiffJpegColour(TiffHandle& handle);

}  // namespace brushwork::platform
