// The adjustment that turns a picture into its negative.
#pragma once

#include <cstddef>
#include <cstdint>

namespace brushwork {

// `count` premultiplied pixels; colour c over alpha a becomes a - c, which is 255 less the straight
// colour, premultiplied again, without a rounding: twice gives the pixel back. A colour above its
// alpha becomes 0. Alpha stays.
void adjustInvert(std::uint32_t* pixels, std::size_t count);
void adjustInvertScalar(std::uint32_t* pixels, std::size_t count);
void adjustInvertSse2(std::uint32_t* pixels, std::size_t count);

}  // namespace brushwork
