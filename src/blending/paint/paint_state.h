// What a painter keeps between its operations: factor pair, zoom, scale and bias, colour.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>

namespace brushwork {

// What a pixel is multiplied by before source and target are added.
enum BlendFactor : std::int32_t {
    FactorZero = 0,
    FactorOne = 1,
    FactorSourceAlpha = 6,
    FactorOneLessSourceAlpha = 7,
    FactorTargetAlpha = 8,
    FactorOneLessTargetAlpha = 9,
};

// The new target is source * `source` + target * `target`, at most 255.
struct BlendFactors {
    std::int32_t source = FactorOne;
    std::int32_t target = FactorZero;
    friend bool operator==(const BlendFactors&, const BlendFactors&) = default;
};
inline constexpr BlendFactors pairCopy{FactorOne, FactorZero};
inline constexpr BlendFactors pairOver{FactorOne, FactorOneLessSourceAlpha};
inline constexpr BlendFactors pairUnder{FactorOneLessTargetAlpha, FactorOne};
inline constexpr BlendFactors pairKeepInside{FactorZero, FactorSourceAlpha};
inline constexpr BlendFactors pairKeepOutside{FactorZero, FactorOneLessSourceAlpha};
inline constexpr BlendFactors pairReplaceInside{FactorTargetAlpha, FactorZero};
inline constexpr BlendFactors pairAdd{FactorOne, FactorOne};
// With a source of 255: the complement of one channel.
inline constexpr BlendFactors pairInvert{FactorOneLessTargetAlpha, FactorZero};

// Applied to each channel on its way in: value * scale + bias * 255, in float, cut to 0 to 255 and
// truncated. Red, green, blue, alpha; an image of one channel uses the first.
struct ScaleBias {
    std::array<float, 4> scale{1.0F, 1.0F, 1.0F, 1.0F};
    std::array<float, 4> bias{0.0F, 0.0F, 0.0F, 0.0F};
    [[nodiscard]] bool isNeutral() const { return *this == ScaleBias(); }
    friend bool operator==(const ScaleBias&, const ScaleBias&) = default;
};

struct PaintState {
    ScaleBias scaleBias;
    float zoomX = 1.0F, zoomY = 1.0F;
    bool writeEnable = true;
    BlendFactors factors;
    std::array<std::uint32_t, 4> color{};  // a word a channel, of which the low byte counts
};

// A span of whole pixels under a zoom. Both ends are multiplied in float and rounded, a half away
// from zero, so that neighbours stay neighbours: five pixels at 0.7 end at 3.5, which is 4.
struct ZoomedSpan {
    std::int32_t start = 0;
    std::int32_t extent = 0;
};
// False if the result doesn't fit 32 bits or the zoom is no number.
[[nodiscard]] inline bool zoomSpan(std::int32_t start, std::int32_t extent, float zoom,
                                   ZoomedSpan& span) {
    constexpr std::int64_t most = 1 << 30;
    std::int64_t from = start;
    std::int64_t to = from + extent;
    if (zoom != 1.0F) {  // a zoom of 1 keeps places that a float doesn't hold
        const float zoomedFrom = std::round(static_cast<float>(from) * zoom);
        const float zoomedTo = std::round(static_cast<float>(to) * zoom);
        constexpr auto bound = static_cast<float>(most);
        if (!(std::fabs(zoomedFrom) <= bound) || !(std::fabs(zoomedTo) <= bound)) return false;
        from = static_cast<std::int64_t>(zoomedFrom);
        to = static_cast<std::int64_t>(zoomedTo);
    }
    if (from < -most || from > most || to < -most || to > most || to - from > INT32_MAX)
        return false;
    span = {static_cast<std::int32_t>(from), static_cast<std::int32_t>(to - from)};
    return true;
}

}  // namespace brushwork
