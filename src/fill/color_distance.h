// How far a pixel's colour lies from the colour that a flood started on, 0 to 255.
//
// Of four channels it is the sum of the three colour differences, weighed by the target's alpha, or
// the alpha difference if that is larger. The weight makes a fill that starts on a clear pixel stop
// on alpha alone: what colour a clear pixel bears can't be seen.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/services/vector_level.h"

namespace brushwork {

// The colour that a flood started on, whole and in parts.
struct ColorTarget {
    ColorTarget() = default;
    // 4 channels: red in the lowest byte, alpha in the highest. 1 channel: the value, which all
    // parts get.
    ColorTarget(std::uint32_t pixel, std::int32_t channels);

    std::uint32_t value = 0;
    std::uint32_t alpha = 0;
    std::uint32_t blue = 0;
    std::uint32_t green = 0;
    std::uint32_t red = 0;
    bool isGrey = false;
};

[[nodiscard]] std::uint8_t colorDistance(std::uint32_t pixel, const ColorTarget& target);

// What a flood asks of a distance: whether it is below `open`, and whether it lies between, from
// `whole` up to but not `none`. 0 to 256 each, in any order.
struct DistanceLimits {
    std::uint32_t open = 0;
    std::uint32_t whole = 0;
    std::uint32_t none = 0;
};

// Rows of distances. `pixels` need not be aligned; `count` is any number.
struct DistanceKernels {
    void (*four)(const std::uint8_t* pixels, std::size_t count, const ColorTarget& target,
                 std::uint8_t* distances);
    void (*one)(const std::uint8_t* pixels, std::size_t count, const ColorTarget& target,
                std::uint8_t* distances);
    // Bit i of `bits`, lowest first, tells whether byte i is below the limit, 0 to 256. `count` is
    // a multiple of 32; the words are written whole.
    void (*below)(const std::uint8_t* bytes, std::size_t count, std::uint32_t limit,
                  std::uint32_t* bits);
    // `four` and `below` in one pass over the pixels, for the open distances. `count` is a multiple
    // of 32. Answers whether a distance lies between.
    bool (*openFour)(const std::uint8_t* pixels, std::size_t count, const ColorTarget& target,
                     const DistanceLimits& limits, std::uint32_t* bits);
};

[[nodiscard]] const DistanceKernels& distanceKernels(VectorLevel level = vectorLevel());
extern const DistanceKernels distanceKernelsScalar;
extern const DistanceKernels distanceKernelsSse2;
extern const DistanceKernels distanceKernelsAvx2;

}  // namespace brushwork
