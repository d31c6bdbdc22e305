#include "image/filter/adjust_hsl.h"

#include <cmath>

#include "image/filter/adjust_hsl_walk.h"

namespace brushwork {
namespace {

constexpr std::int32_t colorizeMode = 0;
constexpr std::int32_t colorizeStrongMode = 1;
constexpr std::int32_t shiftMode = 2;

// Less than a turn either way; what isn't finite is no turn.
float withinTurn(float degrees) {
    if (!std::isfinite(degrees)) return 0.0f;
    return std::fabs(degrees) <= 360.0f ? degrees : std::fmod(degrees, 360.0f);
}

float wrapped(float degrees) {
    const float turn = withinTurn(degrees);
    return turn < 0.0f ? turn + 360.0f : turn;
}

void setLightness(HslNumbers& numbers, float lightness) {
    numbers.lighten = lightness > 0.0f || lightness < 0.0f;
    numbers.lightness = lightness;
}

std::optional<HslNumbers> shiftNumbers(const ColorAdjustParm& parm) {
    const float hue = parm.hue.second, saturation = parm.saturation.second;
    if (hue == 0.0f && saturation == 0.0f && parm.lightness.second == 0.0f) return std::nullopt;
    HslNumbers numbers{};
    numbers.rebuild = hue != 0.0f || saturation != 0.0f;
    numbers.shift = withinTurn(hue);
    numbers.gain = saturation + 1.0f;
    setLightness(numbers, parm.lightness.second);
    return numbers;
}

std::optional<HslNumbers> colorizeNumbers(const ColorAdjustParm& parm, float leastSaturation) {
    const float saturation = parm.saturation.first;
    if (parm.colorizeAmount == 0.0f && saturation == 0.0f && parm.lightness.first == 0.0f)
        return std::nullopt;
    HslNumbers numbers{};
    numbers.rebuild = saturation != 0.0f;
    numbers.gain = saturation + 1.0f;
    numbers.colorize = parm.colorizeAmount > 0.0f;
    numbers.target = wrapped(parm.hue.first);
    numbers.leastSaturation = leastSaturation;
    numbers.share = parm.colorizeAmount;
    setLightness(numbers, parm.lightness.first);
    return numbers;
}

}  // namespace

std::optional<HslNumbers> HslNumbers::from(const ColorAdjustParm& parm) {
    switch (parm.hslMode) {
        case colorizeMode: return colorizeNumbers(parm, 0.0f);
        case colorizeStrongMode: return colorizeNumbers(parm, 0.5f);
        case shiftMode: return shiftNumbers(parm);
        default: return std::nullopt;
    }
}

void adjustHslScalar(const HslNumbers& numbers, std::uint32_t* pixels, std::size_t count) {
    HslWalk<PlainFloats>::run(numbers, pixels, count);
}

void adjustHsl(const HslNumbers& numbers, std::uint32_t* pixels, std::size_t count) {
    switch (vectorLevel()) {
        case VectorLevel::Scalar: return adjustHslScalar(numbers, pixels, count);
        case VectorLevel::Sse2: return adjustHslSse2(numbers, pixels, count);
        case VectorLevel::Avx2: return adjustHslAvx2(numbers, pixels, count);
    }
}

}  // namespace brushwork
