#include "bridge/pixel_order.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace brushwork {

bool arrivesPremultiplied(std::u16string_view formatName) {
    return formatName == u"PNG";
}

void unpremultiply(std::uint8_t* pixels, std::size_t count) {
    for (std::uint8_t* end = pixels + count * 4; pixels != end; pixels += 4) {
        const unsigned alpha = pixels[3];
        if (alpha == 255) continue;
        if (alpha == 0) {
            std::memset(pixels, 0, 4);
            continue;
        }
        for (int channel = 0; channel < 3; ++channel) {
            const unsigned value = (pixels[channel] * 255U + alpha / 2) / alpha;
            pixels[channel] = static_cast<std::uint8_t>(std::min(value, 255U));
        }
    }
}

void swapRedAndBlue(std::uint8_t* pixels, std::size_t count) {
    for (std::uint8_t* end = pixels + count * 4; pixels != end; pixels += 4)
        std::swap(pixels[0], pixels[2]);
}

}  // namespace brushwork
