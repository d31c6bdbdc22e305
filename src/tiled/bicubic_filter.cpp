#include "tiled/bicubic_filter.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace brushwork {
namespace {

constexpr std::int32_t side = 4;
constexpr std::int32_t first = -1;

}  // namespace

double cubic(double t) {
    const double d = std::fabs(t);
    if (d <= 1) return 1.25 * (d * d * d) - 2.25 * (d * d) + 1;
    if (d <= 2) return -0.75 * (d * d * d - 5 * (d * d) + 8 * d - 4);
    return 0;
}

void cubicWeights(double place, std::int32_t base, std::int32_t firstOffset, double scale,
                  std::int32_t count, double* weights) {
    const double start = firstOffset - ((place - base) - 0.5);
    for (std::int32_t i = 0; i < count; ++i) weights[i] = cubic((start + i) * scale);
}

Ref<ResampleFilter> BicubicFilter::clone() const {
    Ref<ResampleFilter> copy = makeRef<BicubicFilter>(edgeMode());
    copy->setFootprint(footprintW(), footprintH());
    return copy;
}

void BicubicFilter::sample1(std::uint8_t* out, double x, double y) {
    const std::int32_t ix = floorOf(x - 0.5);
    const std::int32_t iy = floorOf(y - 0.5);
    std::uint8_t pixels[side * side];
    gather1(ix + first, iy + first, side, side, pixels);
    double wx[side], wy[side];
    cubicWeights(x, ix, first, 1.0, side, wx);
    cubicWeights(y, iy, first, 1.0, side, wy);
    double sum = 0;
    for (std::int32_t j = 0; j < side; ++j) {
        double row = 0;
        for (std::int32_t i = 0; i < side; ++i) row += pixels[j * side + i] * wx[i];
        sum += row * wy[j];
    }
    *out = roundedByte(sum);
}

void BicubicFilter::sample4(std::uint8_t* out, double x, double y) {
    const std::int32_t ix = floorOf(x - 0.5);
    const std::int32_t iy = floorOf(y - 0.5);
    std::uint8_t pixels[side * side * 4];
    gather4(ix + first, iy + first, side, side, pixels);
    double wx[side], wy[side];
    cubicWeights(x, ix, first, 1.0, side, wx);
    cubicWeights(y, iy, first, 1.0, side, wy);
    for (std::int32_t c = 0; c < 4; ++c) {
        double sum = 0;
        for (std::int32_t j = 0; j < side; ++j) {
            double row = 0;
            for (std::int32_t i = 0; i < side; ++i) row += pixels[(j * side + i) * 4 + c] * wx[i];
            sum += row * wy[j];
        }
        out[c] = roundedByte(sum + 1e-8);
    }
}

// What the rows don't settle once more in double.
void BicubicFilter::sampleRow4(std::uint8_t* out, const SampleRow& row) {
    const VectorLevel level = vectorLevel();
    const BicubicRows* const rows = bicubicRows(level);
    if (!rows || !isTame(row)) {
        noteKernelForm(VectorLevel::Scalar);
        ResampleFilter::sampleRow4(out, row);
        return;
    }
    double x = row.x;
    double y = row.y;
    BicubicChunk chunk;
    lookAhead(row, chunk);
    std::uint8_t sampled[4 * chunkPlaces];
    for (std::int32_t done = 0; done < row.count; done += chunkPlaces, out += 4 * chunkPlaces) {
        const int count = std::min(row.count - done, chunkPlaces);
        const int whole = (count + 7) & ~7;
        takePlaces(row, whole, x, y, chunk);
        rows->locate(chunk, whole);
        if (!placeBlocks(chunk, whole, {side, first, -0.5}, rows->point)) {
            std::memset(out, 0, static_cast<std::size_t>(count) * 4);
            continue;
        }
        std::uint8_t* const to = count == whole ? out : sampled;
        const Unsettled unsettled = rows->sum(chunk, whole, to);
        const CubicSums& sums = *cubicSums(level);
        const auto again = [&](std::uint64_t places, int odd) {
            for (; places != 0; places &= places - 1) {
                const int n = 2 * std::countr_zero(places) + odd;
                sampleExactly(sums, chunk, n, to + 4 * n);
            }
        };
        again(unsettled.even, 0);
        again(unsettled.odd, 1);
        if (to == sampled) std::memcpy(out, sampled, static_cast<std::size_t>(count) * 4);
    }
}

void BicubicFilter::sampleExactly(const CubicSums& sums, const BicubicChunk& chunk, int n,
                                  std::uint8_t* out) {
    sums.sample4({chunk.first[n], blockStride, first - ((chunk.x[n] - chunk.ix[n]) - 0.5),
                  first - ((chunk.y[n] - chunk.iy[n]) - 0.5)},
                 out);
}

}  // namespace brushwork
