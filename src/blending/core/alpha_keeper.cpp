#include "blending/core/alpha_keeper.h"

#include <algorithm>

#include "foundation/services/vector_level.h"

namespace brushwork::npc {
namespace {

std::uint8_t scaled(std::uint8_t color, float factor) {
    const float product = std::min(static_cast<float>(color) * factor, 255.0F);
    const int whole = static_cast<int>(product);
    return static_cast<std::uint8_t>(whole + (product - static_cast<float>(whole) >= 0.5F ? 1 : 0));
}

void clearColors(std::uint8_t* pixel) {
    pixel[0] = pixel[1] = pixel[2] = 0;
}

}  // namespace

void keepAlpha(const std::uint8_t* pixels, std::size_t count, std::uint8_t* kept) {
    for (std::size_t n = 0; n < count; ++n) kept[n] = pixels[4 * n + 3];
}

void restoreAlphaScalar(std::uint8_t* pixels, const std::uint8_t* kept, std::size_t count) {
    noteKernelForm(VectorLevel::Scalar);
    for (std::uint8_t* p = pixels; p != pixels + 4 * count; p += 4, ++kept) {
        if (p[3] == 0) {
            clearColors(p);
        } else {
            const float factor = static_cast<float>(*kept) / static_cast<float>(p[3]);
            for (int c = 0; c < 3; ++c) p[c] = scaled(p[c], factor);
        }
        p[3] = *kept;
    }
}

void restoreAlpha16Scalar(std::uint8_t* hi, std::uint8_t* lo, const std::uint8_t* keptHi,
                          const std::uint8_t* keptLo, std::size_t count) {
    noteKernelForm(VectorLevel::Scalar);
    const auto joined = [](int high, int low) { return high * 256 + low; };
    for (std::size_t n = 0; n < count; ++n, hi += 4, lo += 4) {
        const int kept = joined(keptHi[n], keptLo[n]);
        const int most = joined(hi[3], lo[3]) == 0 ? 0 : kept;
        for (int c = 0; c < 3; ++c) {
            const int color = std::min(joined(hi[c], lo[c]), most);
            hi[c] = static_cast<std::uint8_t>(color >> 8);
            lo[c] = static_cast<std::uint8_t>(color & 0xFF);
        }
        hi[3] = keptHi[n];
        lo[3] = keptLo[n];
    }
}

void restoreAlpha(std::uint8_t* pixels, const std::uint8_t* kept, std::size_t count) {
    vectorLevel() == VectorLevel::Scalar ? restoreAlphaScalar(pixels, kept, count)
                                         : restoreAlphaSse2(pixels, kept, count);
}

void restoreAlpha16(std::uint8_t* hi, std::uint8_t* lo, const std::uint8_t* keptHi,
                    const std::uint8_t* keptLo, std::size_t count) {
    vectorLevel() == VectorLevel::Scalar ? restoreAlpha16Scalar(hi, lo, keptHi, keptLo, count)
                                         : restoreAlpha16Sse2(hi, lo, keptHi, keptLo, count);
}

}  // namespace brushwork::npc
