// How many pixels a compressed file may claim.
//
// Compression lets a few hundred bytes stand for any area: a blank sheet is a real picture. The
// work of decoding grows with the area, so a file pays for it with its own bytes. Up to 2^27
// pixels (a sheet of 11,585 x 11,585) come free; beyond them each byte of the file buys 128 pixels,
// more than photographs take at a tenth of a bit a pixel. Nothing under one megabyte can therefore
// ask for more than 2^28 pixels.
#pragma once

#include <cstdint>

namespace brushwork::platform {

[[nodiscard]] inline bool areaIsPaidFor(std::int32_t width, std::int32_t height,
                                        std::uint64_t fileBytes) {
    const auto pixels = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
    constexpr std::uint64_t freePixels = std::uint64_t{1} << 27;
    return pixels <= freePixels || (pixels - freePixels) / 128 <= fileBytes;
}

}  // namespace brushwork::platform
