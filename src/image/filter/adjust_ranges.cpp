#include "image/filter/adjust_ranges.h"

#include "image/filter/adjust_ranges_walk.h"

namespace brushwork {
namespace {

// A hue's later points that lie below its first are meant a turn further.
ColorAdjustRange scaledHue(ColorAdjustRange range) {
    for (float& point : range) point *= 360.0f;
    for (float& point : range)
        if (point < range[0]) point += 360.0f;
    return range;
}

ColorAdjustRange scaledLight(ColorAdjustRange range) {
    for (float& point : range) point *= 255.0f;
    return range;
}

RangeMap mapOf(const ColorAdjustRange& from, const ColorAdjustRange& to, std::uint8_t counts) {
    RangeMap map{};
    for (std::size_t i = 0; i < 4; ++i) map.from[i] = from[i];
    for (std::size_t i = 0; i < 3; ++i) {
        const float span = from[i + 1] - from[i];
        map.slopes[i] = span <= 0.0f ? 0.0f : 1.0f / span;
        map.start[i] = to[i];
        map.length[i] = to[i + 1] - to[i];
    }
    map.counts = counts != 0;
    return map;
}

}  // namespace

std::optional<RangeNumbers> RangeNumbers::from(const ColorAdjustParm& parm) {
    if (!parm.useHue && !parm.useSaturation && !parm.useLightness) return std::nullopt;
    RangeNumbers numbers{};
    numbers.hue = mapOf(scaledHue(parm.hueRange), scaledHue(parm.hueTarget), parm.useHue);
    numbers.saturation = mapOf(parm.satRange, parm.satTarget, parm.useSaturation);
    numbers.lightness =
        mapOf(scaledLight(parm.lightRange), scaledLight(parm.lightTarget), parm.useLightness);
    numbers.show = parm.kind == AdjustShowRanges;
    return numbers;
}

void adjustRangesScalar(const RangeNumbers& numbers, std::uint32_t* pixels, std::size_t count,
                        float& lastHue) {
    RangeWalk<PlainFloats>::run(numbers, pixels, count, lastHue);
}

void adjustRanges(const RangeNumbers& numbers, std::uint32_t* pixels, std::size_t count,
                  float& lastHue) {
    switch (vectorLevel()) {
        case VectorLevel::Scalar: return adjustRangesScalar(numbers, pixels, count, lastHue);
        case VectorLevel::Sse2: return adjustRangesSse2(numbers, pixels, count, lastHue);
        case VectorLevel::Avx2: return adjustRangesAvx2(numbers, pixels, count, lastHue);
    }
}

}  // namespace brushwork
