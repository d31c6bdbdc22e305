#include "fill/gradient_table.h"

#include <algorithm>

namespace brushwork {
namespace {

std::uint32_t boundedWhole(float value, float most) {
    return value > 0.0f ? static_cast<std::uint32_t>(std::min(value, most)) : 0;
}

template <class Entry>
GradientEnds fillTable(const GradientStops& stops, std::span<Entry> table,
                       Entry (*entryOf)(const GradientStops::Color&)) {
    const float step = 1.0f / static_cast<float>(table.size());
    float t = 0.0f;
    for (Entry& entry : table) {
        entry = entryOf(stops.at(t));
        t += step;
    }
    return {pixelOfColor(stops.at(0.0f)), pixelOfColor(stops.at(1.0f))};
}

}  // namespace

std::uint32_t pixelOfColor(const GradientStops::Color& color) {
    std::uint32_t word = 0;
    for (unsigned i = 0; i < 4; ++i)
        word |= boundedWhole(color[i] * 255.0f + 0.5f, 255.0f) << (8 * i);
    return word;
}

DeepColor deepColorOf(const GradientStops::Color& color) {
    const auto channel = [&](std::size_t i) {
        return static_cast<std::uint16_t>(boundedWhole(color[i] * 65535.0f, 65535.0f));
    };
    return {channel(3), channel(0), channel(1), channel(2)};
}

GradientEnds fillGradientTable(const GradientStops& stops, std::span<std::uint32_t> table) {
    return fillTable(stops, table, pixelOfColor);
}

GradientEnds fillGradientTable(const GradientStops& stops, std::span<DeepColor> table) {
    return fillTable(stops, table, deepColorOf);
}

}  // namespace brushwork
