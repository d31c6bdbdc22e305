#include "strokes/stamp/stamp_coverage.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

namespace brushwork::npc {
namespace {

constexpr float sixteenths = 16.0f;

std::uint8_t covered(const CoverageProfile& profile, float u, float v) {
    const float place = sixteenths * std::sqrt(u * u + v * v);
    if (!(place > 0.0f)) return profile.entries[0];
    return profile
        .entries[static_cast<std::int32_t>(std::min(place, static_cast<float>(profile.last)))];
}

}  // namespace

void coverRowsScalar(const CoverageJob& job) {
    noteKernelForm(VectorLevel::Scalar);
    for (std::int32_t row = 0; row < job.rows; ++row) {
        std::uint8_t* const out = job.pixels + static_cast<std::ptrdiff_t>(row) * job.rowBytes;
        const auto j = static_cast<float>(job.firstRow + row);
        float u = job.map.xy * j + job.map.x0;
        float v = job.map.yy * j + job.map.y0;
        for (std::int32_t i = 0; i < job.width; ++i) {
            out[i] = covered(job.profile, u, v);
            u += job.map.xx;
            v += job.map.yx;
        }
        std::memset(out + job.width, 0, static_cast<std::size_t>(job.rowBytes - job.width));
    }
}

void coverRows(const CoverageJob& job, VectorLevel level) {
    switch (level) {
        case VectorLevel::Avx2: coverRowsAvx2(job); break;
        case VectorLevel::Sse2: coverRowsSse2(job); break;
        default: coverRowsScalar(job);
    }
}

}  // namespace brushwork::npc
