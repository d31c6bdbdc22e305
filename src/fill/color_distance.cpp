#include "fill/color_distance.h"

#include <algorithm>
#include <cstring>

namespace brushwork {
namespace {

std::uint32_t difference(std::uint32_t a, std::uint32_t b) {
    return a > b ? a - b : b - a;
}

std::uint32_t byteOf(std::uint32_t pixel, unsigned index) {
    return pixel >> (8 * index) & 0xFF;
}

void four(const std::uint8_t* pixels, std::size_t count, const ColorTarget& target,
          std::uint8_t* distances) {
    noteKernelForm(VectorLevel::Scalar);
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t pixel;
        std::memcpy(&pixel, pixels + 4 * i, sizeof pixel);
        distances[i] = colorDistance(pixel, target);
    }
}

void one(const std::uint8_t* pixels, std::size_t count, const ColorTarget& target,
         std::uint8_t* distances) {
    noteKernelForm(VectorLevel::Scalar);
    for (std::size_t i = 0; i < count; ++i) distances[i] = colorDistance(pixels[i], target);
}

void below(const std::uint8_t* bytes, std::size_t count, std::uint32_t limit, std::uint32_t* bits) {
    noteKernelForm(VectorLevel::Scalar);
    for (std::size_t i = 0; i < count; i += 32) {
        std::uint32_t word = 0;
        for (unsigned bit = 0; bit < 32; ++bit)
            if (bytes[i + bit] < limit) word |= std::uint32_t{1} << bit;
        bits[i / 32] = word;
    }
}

bool openFour(const std::uint8_t* pixels, std::size_t count, const ColorTarget& target,
              const DistanceLimits& limits, std::uint32_t* bits) {
    bool between = false;
    std::uint8_t distances[32];
    for (std::size_t i = 0; i < count; i += 32) {
        four(pixels + 4 * i, 32, target, distances);
        below(distances, 32, limits.open, bits + i / 32);
        for (const std::uint8_t distance : distances)
            between = between || (distance >= limits.whole && distance < limits.none);
    }
    noteKernelForm(VectorLevel::Scalar);
    return between;
}

}  // namespace

ColorTarget::ColorTarget(std::uint32_t pixel, std::int32_t channels)
    : value(channels == 1 ? pixel & 0xFF : pixel), isGrey(channels == 1) {
    alpha = isGrey ? value : byteOf(pixel, 3);
    blue = isGrey ? value : byteOf(pixel, 2);
    green = isGrey ? value : byteOf(pixel, 1);
    red = byteOf(pixel, 0);
}

std::uint8_t colorDistance(std::uint32_t pixel, const ColorTarget& target) {
    if (target.isGrey) return static_cast<std::uint8_t>(difference(pixel & 0xFF, target.value));
    const std::uint32_t sum = difference(byteOf(pixel, 0), target.red) +
                              difference(byteOf(pixel, 1), target.green) +
                              difference(byteOf(pixel, 2), target.blue);
    const float weighed = static_cast<float>(sum) * static_cast<float>(target.alpha) * 0.003921569f;
    const std::uint32_t color = std::min(static_cast<std::uint32_t>(weighed), std::uint32_t{255});
    return static_cast<std::uint8_t>(std::max(color, difference(byteOf(pixel, 3), target.alpha)));
}

const DistanceKernels distanceKernelsScalar = {four, one, below, openFour};

const DistanceKernels& distanceKernels(VectorLevel level) {
    switch (level) {
        case VectorLevel::Avx2: return distanceKernelsAvx2;
        case VectorLevel::Sse2: return distanceKernelsSse2;
        case VectorLevel::Scalar: break;
    }
    return distanceKernelsScalar;
}

}  // namespace brushwork
