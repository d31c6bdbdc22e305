#include "document/layer/layer_text_obj.h"

#include <algorithm>

namespace brushwork {
namespace {

float componentOf(std::uint8_t byte) {
    const float value = static_cast<float>(byte) * 0.003921569f;
    if (value < 0.0001f) return 0.0f;
    return value > 0.9999f ? 1.0f : value;
}

// A name that fills its field has lost its end.
void endName(TextRun& run) {
    const auto last = run.fontName.end() - 1;
    std::fill(std::find(run.fontName.begin(), last, '\0'), run.fontName.end(), '\0');
}

}  // namespace

void TextRun::setColorBytes(std::uint8_t a, std::uint8_t b, std::uint8_t c, std::uint8_t d) {
    color = {componentOf(a), componentOf(b), componentOf(c), componentOf(d)};
}

void TextRun::setColorPacked(std::uint32_t packed) {
    const auto byte = [packed](int n) { return static_cast<std::uint8_t>(packed >> 8 * n); };
    setColorBytes(byte(0), byte(1), byte(2), byte(3));
}

LayerTextObj::LayerTextObj() = default;

LayerTextObj::LayerTextObj(const LayerTextObj& other)
    : Resource(),
      runTexts(other.runTexts),
      runs(other.runs),
      value0(other.value0),
      value1(other.value1),
      value2(other.value2),
      scaleX(other.scaleX),
      scaleY(other.scaleY),
      value3(other.value3),
      value4(other.value4) {
    runTexts.resize(runs.size());
    std::for_each(runs.begin(), runs.end(), endName);
}

LayerTextObj::~LayerTextObj() = default;

}  // namespace brushwork
