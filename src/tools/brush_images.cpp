#include "tools/brush_images.h"

#include <algorithm>
#include <cmath>

namespace brushwork::tools {
namespace {

constexpr std::int32_t tipSide = 128;
constexpr std::int32_t paperSide = 256;

// A value of 0 to 1 that hangs on the place alone.
float noiseAt(std::int32_t x, std::int32_t y, std::uint32_t seed) {
    std::uint32_t mix = static_cast<std::uint32_t>(x) * 0x9e3779b1u ^
                        static_cast<std::uint32_t>(y) * 0x85ebca77u ^ seed * 0xc2b2ae3du;
    mix = (mix ^ (mix >> 15)) * 0x2c1b3c6du;
    mix = (mix ^ (mix >> 12)) * 0x297a2d39u;
    return static_cast<float>((mix ^ (mix >> 15)) >> 8) / 16777216.0f;
}

float eased(float part) {
    return part * part * (3.0f - 2.0f * part);
}

// Between the values of a grid of `cells` across, whose far side is its near side.
float smoothNoise(float x, float y, std::int32_t cells, std::uint32_t seed) {
    const float floorX = std::floor(x), floorY = std::floor(y);
    const float partX = eased(x - floorX), partY = eased(y - floorY);
    const auto at = [&](std::int32_t dx, std::int32_t dy) {
        return noiseAt((static_cast<std::int32_t>(floorX) + dx) % cells,
                       (static_cast<std::int32_t>(floorY) + dy) % cells, seed);
    };
    const float low = at(0, 0) + (at(1, 0) - at(0, 0)) * partX;
    const float high = at(0, 1) + (at(1, 1) - at(0, 1)) * partX;
    return low + (high - low) * partY;
}

std::uint8_t byteOf(float share) {
    return static_cast<std::uint8_t>(std::clamp(share, 0.0f, 1.0f) * 255.0f + 0.5f);
}

}  // namespace

Ref<ilSPMemoryImg> ellipseTip(float roundness, float degrees, float softness) {
    auto tip = makeRef<ilSPMemoryImg>(tipSide, tipSide, 1);
    std::uint8_t* byte = tip->data();
    if (!byte) return {};
    const float turn = degrees * 3.14159265f / 180.0f;
    const float cosine = std::cos(turn), sine = std::sin(turn);
    constexpr float radius = tipSide / 2.0f - 1.0f;
    const float other = std::max(radius * roundness, 1.5f);
    const float rim = std::max(softness, 1.5f / other);
    for (std::int32_t y = 0; y < tipSide; ++y)
        for (std::int32_t x = 0; x < tipSide; ++x) {
            const float dx = static_cast<float>(x) + 0.5f - tipSide / 2.0f;
            const float dy = static_cast<float>(y) + 0.5f - tipSide / 2.0f;
            const float along = (dx * cosine + dy * sine) / radius;
            const float across = (dy * cosine - dx * sine) / other;
            *byte++ = byteOf((1.0f - std::hypot(along, across)) / rim);
        }
    return tip;
}

Ref<ilSPMemoryImg> paperGrain(float grain, std::uint32_t seed) {
    auto paper = makeRef<ilSPMemoryImg>(paperSide, paperSide, 1);
    std::uint8_t* byte = paper->data();
    if (!byte) return {};
    const auto cells = std::clamp(
        static_cast<std::int32_t>(std::lround(paperSide / std::max(grain, 1.0f))), 1, paperSide);
    const float step = static_cast<float>(cells) / paperSide;
    for (std::int32_t y = 0; y < paperSide; ++y)
        for (std::int32_t x = 0; x < paperSide; ++x) {
            const float u = static_cast<float>(x) * step, v = static_cast<float>(y) * step;
            const float value = 0.65f * smoothNoise(u, v, cells, seed) +
                                0.35f * smoothNoise(2 * u, 2 * v, 2 * cells, seed + 1);
            *byte++ = byteOf((value - 0.5f) * 2.2f + 0.6f);
        }
    return paper;
}

}  // namespace brushwork::tools
