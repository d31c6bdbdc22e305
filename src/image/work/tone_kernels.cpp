#include "image/work/tone_kernels.h"

#include <algorithm>

namespace brushwork {

void invertFourScalar(std::uint8_t* pixels, std::size_t count) {
    noteKernelForm(VectorLevel::Scalar);
    for (std::uint8_t* p = pixels; p != pixels + 4 * count; p += 4) {
        const int alpha = p[3];
        if (alpha == 0) continue;
        for (int c = 0; c < 3; ++c) {
            const int straight = std::min<int>(p[c], alpha) * 255 / alpha;
            p[c] = static_cast<std::uint8_t>((255 - straight) * alpha / 255);
        }
    }
}

void invertFour(std::uint8_t* pixels, std::size_t count) {
    vectorLevel() == VectorLevel::Scalar ? invertFourScalar(pixels, count)
                                         : invertFourSse2(pixels, count);
}

void invertOne(std::uint8_t* pixels, std::size_t count) {
    for (std::size_t n = 0; n < count; ++n) pixels[n] = static_cast<std::uint8_t>(~pixels[n]);
}

std::uint8_t brightnessContrastOf(std::uint8_t value, float brightness, float contrast) {
    const auto v = static_cast<float>(value);
    float result = 0.0f;
    if (contrast <= 0.0f) {
        result = v * (contrast + 100.0f) / 100.0f + brightness - contrast * 1.28f;
    } else {
        const float factor = contrast >= 100.0f ? 512.0f : 100.0f / (100.0f - contrast);
        result = (v + brightness - 128.0f) * factor + 128.0f;
    }
    if (!(result > 0.0f)) return 0;  // not-a-number as well
    return static_cast<std::uint8_t>(std::min(result, 255.0f));
}

void brightnessContrast(std::uint8_t* pixels, std::size_t count, float brightness, float contrast) {
    std::uint8_t table[256];
    for (int v = 0; v < 256; ++v)
        table[v] = brightnessContrastOf(static_cast<std::uint8_t>(v), brightness, contrast);
    for (std::size_t n = 0; n < count; ++n) pixels[n] = table[pixels[n]];
}

}  // namespace brushwork
