// What a sampler does with places off its rectangle.
#pragma once

#include <cstdint>

namespace brushwork {

// The pixels that may be read: both ends belong to it, and neither size is below 1.
struct SampleRect {
    std::int32_t minX = 0, minY = 0, maxX = -1, maxY = -1;
    std::int64_t width = 0, height = 0;
};

// Whether a pixel is to be read, and which: x and y may be changed.
using EdgeMode = bool (*)(const SampleRect& rect, std::int32_t& x, std::int32_t& y);

// Off the rectangle there is nothing: false, and both become -1. Such a sample counts as 0.
bool edgeOutside(const SampleRect& rect, std::int32_t& x, std::int32_t& y);
// The nearest pixel of the rectangle.
bool edgeClamp(const SampleRect& rect, std::int32_t& x, std::int32_t& y);
// The rectangle repeats.
bool edgeWrap(const SampleRect& rect, std::int32_t& x, std::int32_t& y);

enum EdgeModeCode : std::int32_t { EdgeOutside = 0, EdgeClamp = 1, EdgeWrap = 2 };
// Null for any other code.
[[nodiscard]] EdgeMode edgeModeOf(std::int32_t code);

}  // namespace brushwork
