// The adjustment that moves ranges of hue, saturation and lightness onto other ranges.
//
// A pixel takes part if each of its numbers that counts lies in its range. Greys have the hue of
// the pixel before them, see color_convert.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "brushwork/color_adjust_parm.h"

namespace brushwork {

// From the range [0], [1], [2], [3] to the target: below [1] and above [2] in a straight line by
// weights that rise from 0 to 1, on both sides; in between at weight 1.
struct RangeMap {
    float from[4];
    float slopes[3];  // 1 over the length of each part, 0 for a part without length
    float start[3];   // where each part of the target begins,
    float length[3];  // and how long it is
    bool counts;
};

struct RangeNumbers {
    // Nothing if no range counts.
    [[nodiscard]] static std::optional<RangeNumbers> from(const ColorAdjustParm& parm);
    RangeMap hue, saturation, lightness;
    bool show;  // the selection, not its result
};

// `count` premultiplied pixels. `lastHue` is the hue that a grey takes, before and after. To show:
// what takes part turns from rose to white by its weight, all else rose, transparent pixels 0.
void adjustRanges(const RangeNumbers& numbers, std::uint32_t* pixels, std::size_t count,
                  float& lastHue);
void adjustRangesScalar(const RangeNumbers& numbers, std::uint32_t* pixels, std::size_t count,
                        float& lastHue);
void adjustRangesSse2(const RangeNumbers& numbers, std::uint32_t* pixels, std::size_t count,
                      float& lastHue);
void adjustRangesAvx2(const RangeNumbers& numbers, std::uint32_t* pixels, std::size_t count,
                      float& lastHue);

}  // namespace brushwork
