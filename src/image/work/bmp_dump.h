// A picture as a Windows bitmap file, to be looked at while debugging.
#pragma once

#include <cstdint>
#include <string_view>

namespace brushwork {

// Rows without padding, row 0 at the bottom; 1 channel, with a grey palette of 256 entries, or 4
// channels (red, green, blue, alpha) as 32 bits a pixel. The pixels start at byte 1078 or 54; rows
// run bottom-up and are padded to a multiple of 4 bytes.
//
// False for other channel counts, sizes below 1, files that would reach 4 gigabytes, and when the
// file can't be written whole; what stands of it is then removed.
[[nodiscard]] bool writeBmp(std::u16string_view path, const std::uint8_t* pixels,
                            std::int32_t width, std::int32_t height, std::int32_t channels);

}  // namespace brushwork
