// The arithmetic of the four-window blur along one line: how far the windows reach, how many pixels
// they hold at each place, and the division by that count.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace brushwork {

struct BlurWindows {
    // Reach of the four windows to either side, ascending. A reach is never more than the line's
    // length: further out there is nothing to add.
    std::array<std::int32_t, 4> reach{};
    std::int32_t length = 0;

    [[nodiscard]] std::int32_t widest() const { return reach[3]; }
    // Pixels in the four windows around `centre`, those outside the line not counted. At least 4.
    [[nodiscard]] std::uint64_t countAt(std::int32_t centre) const;
    // An upper bound of countAt.
    [[nodiscard]] std::uint64_t largestCount() const;
};

// For a line of `length` pixels and a kernel of side `size`.
[[nodiscard]] BlurWindows blurWindows(std::int32_t length, std::int32_t size);

// Counts up to this one can be divided by with a float multiplication: for every sum of `count`
// bytes, trunc(float(sum) * blurReciprocal(count)) is sum / count in whole numbers. Why: the
// reciprocal is rounded up, by less than 2^-22 of itself, so an exact multiple q * count never
// falls below q; one less, q * count - 1, lies 1 / (q * count) below in proportion, which for q up
// to 255 and this bound on the count exceeds the reciprocal's error and the product's rounding
// together.
inline constexpr std::uint64_t blurReciprocalLimit = 8192;
[[nodiscard]] float blurReciprocal(std::uint64_t count);

// The reciprocal for each centre of the line, and `padding` zeros behind them. Every count must be
// within the limit.
[[nodiscard]] std::vector<float> blurReciprocals(const BlurWindows& windows, std::size_t padding);

}  // namespace brushwork
