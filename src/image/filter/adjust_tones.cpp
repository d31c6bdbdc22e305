#include "image/filter/adjust_tones.h"

#include <algorithm>

#include "image/filter/adjust_tones_walk.h"
#include "image/filter/color_convert.h"

namespace brushwork {
namespace {

constexpr float primaries[6][3] = {{255, 0, 0},   {255, 255, 0}, {0, 255, 0},
                                   {0, 255, 255}, {0, 0, 255},   {255, 0, 255}};

bool isNeutral(const ColorAdjustTones& a, const ColorAdjustTones& b) {
    const auto isOne = [](float number) { return number == 1.0f; };
    return std::all_of(a.begin(), a.end(), isOne) && std::all_of(b.begin(), b.end(), isOne);
}

float mixedHue(const ColorAdjustTint& weights) {
    float sum[3] = {};
    for (std::size_t i = 0; i < weights.size(); ++i)
        for (std::size_t c = 0; c < 3; ++c) sum[c] += weights[i] * primaries[i][c];
    const ColorOf<PlainFloats> mix = clampedColor<PlainFloats>({sum[0], sum[1], sum[2]});
    return rgbToHsv({mix.red.v, mix.green.v, mix.blue.v}).hue;
}

}  // namespace

std::optional<ToneBalance> ToneBalance::from(const ColorAdjustParm& parm) {
    if (isNeutral(parm.toneBrightness, parm.toneSaturation)) return std::nullopt;
    ToneBalance numbers{};
    for (std::size_t i = 0; i < 3; ++i) {
        const float change = parm.toneBrightness[i] - 1.0f;
        const float shift = change * change * 127.5f;
        numbers.shift[i] = change < 0.0f ? -shift : shift;
        numbers.saturation[i] = parm.toneSaturation[i];
    }
    const auto& s = parm.toneSaturation;
    numbers.slope = (0.25f * s[0] + 0.5f * s[1] + 0.25f * s[2]) * 255.0f;
    numbers.base = 128.0f - numbers.slope * 0.5019608f;
    return numbers;
}

std::optional<ToneGain> ToneGain::from(const ColorAdjustParm& parm) {
    if (isNeutral(parm.toneSatGain, parm.toneValueGain)) return std::nullopt;
    ToneGain numbers{};
    std::copy_n(parm.toneSatGain.begin(), 3, numbers.saturation);
    std::copy_n(parm.toneValueGain.begin(), 3, numbers.value);
    return numbers;
}

std::optional<ToneTint> ToneTint::from(const ColorAdjustParm& parm) {
    float sum = 0.0f;
    for (const ColorAdjustTint& weights : parm.toneTint)
        for (const float weight : weights) sum += weight;
    if (sum == 0.0f) return std::nullopt;
    ToneTint numbers{};
    for (std::size_t i = 0; i < 3; ++i) numbers.hue[i] = mixedHue(parm.toneTint[i]);
    numbers.boost = parm.toneTintBoost != 0;
    return numbers;
}

const ToneKernels toneKernelsScalar = toneKernelsOf<PlainFloats>;

const ToneKernels& toneKernels() {
    switch (vectorLevel()) {
        case VectorLevel::Scalar: return toneKernelsScalar;
        case VectorLevel::Sse2: return toneKernelsSse2;
        case VectorLevel::Avx2: break;
    }
    return toneKernelsAvx2;
}

}  // namespace brushwork
