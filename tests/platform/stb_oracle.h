// An independent decoder (stb_image) to compare the codecs with.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace brushwork::platform::test {

// Pixels as red, green, blue, alpha; 16-bit samples are cut to 8. False if it can't decode.
[[nodiscard]] bool stbDecode(std::span<const std::uint8_t> bytes, std::int32_t& width,
                             std::int32_t& height, std::vector<std::uint8_t>& rgba);

}  // namespace brushwork::platform::test
