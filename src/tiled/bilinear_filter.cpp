#include "tiled/bilinear_filter.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "tiled/bilinear_rows.h"

namespace brushwork {
namespace {

// The low eight bits of the distance in 255ths, which is negative left of the corner.
std::uint32_t fractionOf(double place, std::int32_t corner) {
    const double steps = (place - corner) * 255;
    if (std::isnan(steps)) return 0;
    const double held = std::clamp(steps, -2147483648.0, 2147483647.0);
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(held)) & 255u;
}

struct Fractions {
    std::uint32_t x, y;
    [[nodiscard]] std::uint8_t mix(std::uint32_t p00, std::uint32_t p01, std::uint32_t p10,
                                   std::uint32_t p11) const {
        const std::uint32_t low = p00 * (256 - x) + p01 * x;
        const std::uint32_t high = p10 * (256 - x) + p11 * x;
        return static_cast<std::uint8_t>((low * (256 - y) + high * y) >> 16);
    }
};

}  // namespace

Ref<ResampleFilter> BilinearFilter::clone() const {
    Ref<ResampleFilter> copy = makeRef<BilinearFilter>(edgeMode());
    copy->setFootprint(footprintW(), footprintH());
    return copy;
}

void BilinearFilter::sample1(std::uint8_t* out, double x, double y) {
    const std::int32_t ix = floorOf(x + 0.5);
    const std::int32_t iy = floorOf(y + 0.5);
    std::uint8_t p[4];
    gather1(ix - 1, iy - 1, 2, 2, p);
    *out = Fractions{fractionOf(x, ix), fractionOf(y, iy)}.mix(p[0], p[1], p[2], p[3]);
}

void BilinearFilter::sample4(std::uint8_t* out, double x, double y) {
    const std::int32_t ix = floorOf(x + 0.5);
    const std::int32_t iy = floorOf(y + 0.5);
    std::uint8_t p[16];
    gather4(ix - 1, iy - 1, 2, 2, p);
    const Fractions fractions{fractionOf(x, ix), fractionOf(y, iy)};
    for (int c = 0; c < 4; ++c) out[c] = fractions.mix(p[c], p[4 + c], p[8 + c], p[12 + c]);
}

void BilinearFilter::sampleRow4(std::uint8_t* out, const SampleRow& row) {
    const BilinearRows* const rows = bilinearRows();
    if (!rows || !isTame(row)) {
        noteKernelForm(VectorLevel::Scalar);
        ResampleFilter::sampleRow4(out, row);
        return;
    }
    double x = row.x;
    double y = row.y;
    BilinearChunk chunk;
    lookAhead(row, chunk);
    std::uint8_t mixed[4 * chunkPlaces];
    for (std::int32_t done = 0; done < row.count; done += chunkPlaces, out += 4 * chunkPlaces) {
        const int count = std::min(row.count - done, chunkPlaces);
        const int whole = (count + 7) & ~7;
        takePlaces(row, whole, x, y, chunk);
        rows->locate(chunk, whole);
        if (!placeBlocks(chunk, whole, {2, -1, 0.5}, rows->point)) {
            std::memset(out, 0, static_cast<std::size_t>(count) * 4);
            continue;
        }
        std::uint8_t* const to = count == whole ? out : mixed;
        rows->mix(chunk, whole, to);
        if (to == mixed) std::memcpy(out, mixed, static_cast<std::size_t>(count) * 4);
    }
}

}  // namespace brushwork
