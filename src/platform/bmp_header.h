// What the headers of a BMP file tell, checked and brought to one form.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "platform/byte_stream.h"
#include "platform/codec.h"

namespace brushwork::platform {

// Of the part in front of the picture's own header.
inline constexpr std::size_t bmpFileHeaderBytes = 14;

enum class BmpPacking {
    Plain,
    RunLength4,
    RunLength8,
    RunLength24,
};

struct BmpHeader {
    std::int32_t width = 0;   // 1 to maxBmpWidth
    std::int32_t height = 0;  // at least 1
    bool topDown = false;     // the file's first row is the picture's first
    int bits = 0;             // 1, 2, 4, 8, 16, 24 or 32
    BmpPacking packing = BmpPacking::Plain;
    // Red, green, blue, alpha of 16 and 32 bits: each contiguous, or 0 where there is no such
    // field.
    std::array<std::uint32_t, 4> masks{};
    // Of 1 to 8 bits: 0xFFrrggbb. Entries that the file doesn't hold are black.
    std::array<std::uint32_t, 256> palette{};
    std::uint64_t pixelOffset = 0;  // within the file
    float xResolution = defaultResolution;
    float yResolution = defaultResolution;

    [[nodiscard]] bool isGrey() const;  // a palette of greys alone
    [[nodiscard]] bool hasAlpha() const { return masks[3] != 0; }
    // Bytes of a plain row without and with its filling.
    [[nodiscard]] std::size_t rowBytes() const;
    [[nodiscard]] std::size_t stride() const { return (rowBytes() + 3) / 4 * 4; }
};

// A row of 32-bit pixels stays below 2 GiB.
inline constexpr std::int32_t maxBmpWidth = INT32_MAX / 4;

// False for anything inconsistent, unknown or cut off. Whether the pixels are there isn't asked.
[[nodiscard]] bool readBmpHeader(ByteSource& source, BmpHeader& header);

}  // namespace brushwork::platform
