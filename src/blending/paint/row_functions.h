// The rows of a painter: one run of source pixels drawn into a target, for each factor pair that
// has a path. The plain form of each is the definition; the vector forms give the same bytes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "blending/paint/paint_state.h"

namespace brushwork::paint {

// One call. A constant stands for every pixel of the run: 8 equal pixels, or 8 equal bytes, lie
// behind its pointer.
struct PaintRow {
    std::uint8_t* target = nullptr;
    const std::uint8_t* source = nullptr;    // pixels that are drawn
    const std::uint8_t* coverage = nullptr;  // a byte a pixel; for the rows that take it
    std::size_t count = 0;
    bool constantSource = false;
    bool constantCoverage = false;
};

using RowFunction = void (*)(const PaintRow& row);

// Who says how much of a pixel is drawn.
enum class Coverage {
    Alpha,    // the source's own alpha; `coverage` isn't looked at
    Through,  // the bytes of `coverage`, through which the source is drawn
    Mix,      // the same, with the source put in place of the target in proportion
};

// Null where there is no path. Channels are 1 or 4; of 4 into 1 the alpha is drawn. With a coverage
// source and target have equally many channels.
[[nodiscard]] RowFunction rowFunction(std::int32_t sourceChannels, std::int32_t targetChannels,
                                      BlendFactors factors, Coverage coverage = Coverage::Alpha);

// Whether that pixel as a constant source leaves every target as it is. One channel is its own
// alpha.
[[nodiscard]] bool leavesTarget(BlendFactors factors, const std::uint8_t* pixel,
                                std::int32_t channels);

// A pixel as constants are wanted.
class ConstantPixel {
  public:
    ConstantPixel() = default;
    ConstantPixel(const std::uint8_t* pixel, std::int32_t channels);
    [[nodiscard]] const std::uint8_t* data() const { return bytes_.data(); }

  private:
    std::array<std::uint8_t, 32> bytes_{};
};

}  // namespace brushwork::paint
