#include "fill/gradient_rows.h"

#include <algorithm>
#include <cmath>

namespace brushwork {
namespace {

// Bounded before it is cut off, so that every number has a whole one.
std::int32_t indexOf(float t, std::int32_t tableSize) {
    const float place = static_cast<float>(tableSize) * t;
    if (!(place > 0.0f)) return 0;
    return static_cast<std::int32_t>(std::min(place, static_cast<float>(tableSize - 1)));
}

std::uint32_t channelOf(std::uint32_t color, std::uint32_t noise) {
    const std::uint32_t raised = std::min<std::uint32_t>(color, 65408) + 127;
    return raised > noise ? (raised - noise) >> 8 : 0;
}

std::uint32_t ditheredAt(float t, const DitherTable& table, FillNoise& noise) {
    const std::int32_t index = indexOf(t, table.tableSize);
    if (index < 1) return table.ends.first;
    if (index >= table.tableSize - 1) return table.ends.last;
    return ditheredPixel(table.table[index], noise.next());
}

}  // namespace

void fillLinearRow(float t0, float step, std::uint32_t* pixels, std::size_t count,
                   const std::uint32_t* table, std::int32_t tableSize) {
    float t = t0;
    for (std::size_t n = 0; n < count; ++n, t += step) pixels[n] = table[indexOf(t, tableSize)];
}

float RadialRow::at(std::size_t n) const {
    const float x = static_cast<float>(first + static_cast<std::int32_t>(n)) - startX;
    return std::sqrt(x * x * scale + yPart);
}

void fillRadialRow(const RadialRow& row, std::uint32_t* pixels, std::size_t count,
                   const std::uint32_t* table, std::int32_t tableSize) {
    for (std::size_t n = 0; n < count; ++n) pixels[n] = table[indexOf(row.at(n), tableSize)];
}

void ditherLinearRow(float t0, float step, std::uint32_t* pixels, std::size_t count,
                     const DitherTable& table, FillNoise& noise) {
    float t = t0;
    for (std::size_t n = 0; n < count; ++n, t += step) pixels[n] = ditheredAt(t, table, noise);
}

void ditherRadialRow(const RadialRow& row, std::uint32_t* pixels, std::size_t count,
                     const DitherTable& table, FillNoise& noise) {
    for (std::size_t n = 0; n < count; ++n) pixels[n] = ditheredAt(row.at(n), table, noise);
}

std::uint32_t ditheredPixel(const DeepColor& color, std::uint32_t noise) {
    return channelOf(color.red, noise >> 16 & 0xFF) |
           channelOf(color.green, noise >> 8 & 0xFF) << 8 |
           channelOf(color.blue, noise & 0xFF) << 16 | channelOf(color.alpha, 0) << 24;
}

}  // namespace brushwork
