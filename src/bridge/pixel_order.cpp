#include "bridge/pixel_order.h"

#include <algorithm>
#include <cstring>

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

void premultiply(std::uint8_t* pixels, std::size_t count) {
    for (std::uint8_t* end = pixels + count * 4; pixels != end; pixels += 4) {
        const unsigned alpha = pixels[3];
        if (alpha == 255) continue;
        for (int channel = 0; channel < 3; ++channel)
            pixels[channel] = static_cast<std::uint8_t>((alpha * pixels[channel] + 127) / 255);
    }
}

void swapRedAndBlue(std::uint8_t* pixels, std::size_t count) {
    // By words, which compilers turn into vector code.
    for (std::uint8_t* end = pixels + count * 4; pixels != end; pixels += 4) {
        std::uint32_t word = 0;
        std::memcpy(&word, pixels, sizeof word);
        word = (word & 0xFF00FF00U) | ((word & 0xFFU) << 16) | ((word >> 16) & 0xFFU);
        std::memcpy(pixels, &word, sizeof word);
    }
}

}  // namespace brushwork
