// Rows of a gradient: where each pixel lies along it, and its colour from the table.
//
// The place t runs from 0 to 1; the index of a pixel is t times the table's size, cut off and
// bounded to the table, 0 for what isn't a number.
#pragma once

#include <cstddef>
#include <cstdint>

#include "fill/fill_noise.h"
#include "fill/gradient_table.h"

namespace brushwork {

// `count` pixels at t0, t0 + step, ..., each the one before plus the step.
void fillLinearRow(float t0, float step, std::uint32_t* pixels, std::size_t count,
                   const std::uint32_t* table, std::int32_t tableSize);

// A row across the rings of a radial gradient. Pixel n lies at
//     sqrt(x * x * scale + yPart), x = first + n - startX.
struct RadialRow {
    std::int32_t first;  // column of the row's first pixel
    float startX;
    float yPart;  // y * y * scale
    float scale;  // 1 over the square of the radius
    [[nodiscard]] float at(std::size_t n) const;
};
void fillRadialRow(const RadialRow& row, std::uint32_t* pixels, std::size_t count,
                   const std::uint32_t* table, std::int32_t tableSize);

// Pixels with noise. Places before the second entry have the first colour and those from the last
// entry on the last colour; these draw no noise.
struct DitherTable {
    const DeepColor* table;
    std::int32_t tableSize;
    GradientEnds ends;
};
void ditherLinearRow(float t0, float step, std::uint32_t* pixels, std::size_t count,
                     const DitherTable& table, FillNoise& noise);
void ditherRadialRow(const RadialRow& row, std::uint32_t* pixels, std::size_t count,
                     const DitherTable& table, FillNoise& noise);
// One pixel of it. Bytes 2, 1 and 0 of the noise are for red, green and blue; alpha has none.
[[nodiscard]] std::uint32_t ditheredPixel(const DeepColor& color, std::uint32_t noise);

}  // namespace brushwork
