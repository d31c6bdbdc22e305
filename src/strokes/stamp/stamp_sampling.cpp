#include "strokes/stamp/stamp_sampling.h"

#include <cstddef>
#include <cstring>

namespace brushwork::npc {
namespace {

// A place in a table: its cell and the 8-bit fractions behind the cell's corner.
struct Spot {
    std::size_t cell;
    std::uint32_t across, along;
};

bool isInside(const TableView& table, float u, float v) {
    return u > 0.0f && u < static_cast<float>(table.width + 1) && v > 0.0f &&
           v < static_cast<float>(table.height + 1);
}

Spot spotAt(const TableView& table, float u, float v) {
    const auto column = static_cast<std::int32_t>(u), row = static_cast<std::int32_t>(v);
    return {static_cast<std::size_t>(row) * static_cast<std::size_t>(table.cellsPerRow()) +
                static_cast<std::size_t>(column),
            static_cast<std::uint32_t>(256.0f * (u - static_cast<float>(column))),
            static_cast<std::uint32_t>(256.0f * (v - static_cast<float>(row)))};
}

// `corners` are those of one channel, `apart` bytes from each other.
std::uint32_t blended(const std::uint8_t* corners, std::size_t apart, const Spot& spot) {
    const std::uint32_t a = spot.across, b = spot.along;
    const std::uint32_t low = corners[0] * (256 - a) + corners[apart] * a;
    const std::uint32_t high = corners[2 * apart] * (256 - a) + corners[3 * apart] * a;
    return (low * (256 - b) + high * b) >> 16;
}

template <class Pixel>
void walk(const SamplingJob& job, const Pixel& pixel) {
    for (std::int32_t row = 0; row < job.rows; ++row) {
        std::uint8_t* const out = job.pixels + static_cast<std::ptrdiff_t>(row) * job.rowBytes;
        const auto j = static_cast<float>(job.firstRow + row);
        float u = job.map.xy * j + job.map.x0;
        float v = job.map.yy * j + job.map.y0;
        for (std::int32_t i = 0; i < job.width; ++i) {
            pixel(out, i, u, v);
            u += job.map.xx;
            v += job.map.yx;
        }
    }
}

}  // namespace

void multiplyShapeScalar(const SamplingJob& job) {
    noteKernelForm(VectorLevel::Scalar);
    walk(job, [&job](std::uint8_t* out, std::int32_t i, float u, float v) {
        std::uint32_t factor = 0;
        if (isInside(job.table, u, v)) {
            const Spot spot = spotAt(job.table, u, v);
            factor = blended(job.table.cells + spot.cell * 4, 1, spot) + 1;
        }
        out[i] = static_cast<std::uint8_t>((factor * out[i]) >> 8);
    });
}

void sampleColorsScalar(const SamplingJob& job) {
    noteKernelForm(VectorLevel::Scalar);
    for (std::int32_t row = 0; row < job.rows; ++row)
        std::memset(job.pixels + static_cast<std::ptrdiff_t>(row) * job.rowBytes, 0,
                    static_cast<std::size_t>(job.rowBytes));
    walk(job, [&job](std::uint8_t* out, std::int32_t i, float u, float v) {
        if (!isInside(job.table, u, v)) return;
        const Spot spot = spotAt(job.table, u, v);
        for (std::size_t c = 0; c < 4; ++c)
            out[static_cast<std::size_t>(i) * 4 + c] =
                static_cast<std::uint8_t>(blended(job.table.cells + spot.cell * 16 + c, 4, spot));
    });
}

void multiplyShape(const SamplingJob& job, VectorLevel level) {
    switch (level) {
        case VectorLevel::Avx2: multiplyShapeAvx2(job); break;
        case VectorLevel::Sse2: multiplyShapeSse2(job); break;
        default: multiplyShapeScalar(job);
    }
}

void sampleColors(const SamplingJob& job, VectorLevel level) {
    switch (level) {
        case VectorLevel::Avx2: sampleColorsAvx2(job); break;
        case VectorLevel::Sse2: sampleColorsSse2(job); break;
        default: sampleColorsScalar(job);
    }
}

}  // namespace brushwork::npc
