// The one place where pixels change between the pixel file's form and an editable one.
//
// The helper hands over PNG pixels premultiplied and every picture in the order blue, green, red,
// alpha. Whoever joins an opening and a saving, or turns a file into an engine image, calls these.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace brushwork {

// True for the names of formats that the helper hands over premultiplied.
[[nodiscard]] bool arrivesPremultiplied(std::u16string_view formatName);

// Straight alpha from premultiplied, in place: the nearest whole number to c * 255 / a, at most
// 255; a pixel of alpha 0 becomes 0, 0, 0, 0.
void unpremultiply(std::uint8_t* pixels, std::size_t count);

// The other way, as the imaging service premultiplies: (c * a + 127) / 255 of each colour.
void premultiply(std::uint8_t* pixels, std::size_t count);

// Exchanges the first and the third byte of each four-byte pixel, in place.
void swapRedAndBlue(std::uint8_t* pixels, std::size_t count);

}  // namespace brushwork
