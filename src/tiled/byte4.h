// znImage::Byte4: a pixel of four bytes, without an alignment of its own.
#pragma once

#include <array>
#include <cstdint>

namespace brushwork::znImage {

// Red, green, blue, alpha in memory, premultiplied.
struct Byte4 {
    std::array<std::uint8_t, 4> bytes{};
    friend bool operator==(const Byte4&, const Byte4&) = default;
};
static_assert(sizeof(Byte4) == 4 && alignof(Byte4) == 1);

}  // namespace brushwork::znImage
