#include "image/filter/adjust_invert.h"

#include "foundation/services/vector_level.h"

namespace brushwork {

void adjustInvertScalar(std::uint32_t* pixels, std::size_t count) {
    noteKernelForm(VectorLevel::Scalar);
    for (std::size_t n = 0; n < count; ++n) {
        const std::uint32_t word = pixels[n], alpha = word >> 24;
        std::uint32_t result = alpha << 24;
        for (unsigned shift = 0; shift < 24; shift += 8) {
            const std::uint32_t color = word >> shift & 0xFF;
            if (color < alpha) result |= (alpha - color) << shift;
        }
        if (alpha != 0) pixels[n] = result;
    }
}

void adjustInvert(std::uint32_t* pixels, std::size_t count) {
    if (vectorLevel() == VectorLevel::Scalar)
        adjustInvertScalar(pixels, count);
    else
        adjustInvertSse2(pixels, count);
}

}  // namespace brushwork
