#include "tiled/bicubic_filter.h"

#include <algorithm>
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

// Eight at a time; what single precision doesn't settle once more by the definition.
void BicubicFilter::sampleRow4(std::uint8_t* out, const SampleRow& row) {
    const BicubicRows* const rows = bicubicRows();
    noteKernelForm(rows ? VectorLevel::Avx2 : VectorLevel::Scalar);
    if (!rows) {
        ResampleFilter::sampleRow4(out, row);
        return;
    }
    double x = row.x;
    double y = row.y;
    BicubicPlaces places;
    for (std::int32_t done = 0; done < row.count; done += bicubicPlaces) {
        const std::int32_t count = std::min<std::int32_t>(row.count - done, bicubicPlaces);
        const std::int32_t whole = (count + bicubicLanes - 1) / bicubicLanes * bicubicLanes;
        for (int n = 0; n < whole; ++n, x += row.dx, y += row.dy) {
            places.x[n] = x;
            places.y[n] = y;
        }
        rows->locate(places, whole);
        for (int n = 0; n < count; n += bicubicLanes, out += 4 * bicubicLanes)
            sampleLanes(*rows, places, n, std::min(count - n, bicubicLanes), out);
    }
}

// What lies behind the last sample is computed, too, and not written.
void BicubicFilter::sampleLanes(const BicubicRows& rows, const BicubicPlaces& places, int start,
                                int count, std::uint8_t* out) {
    BicubicBlocks blocks;
    std::uint8_t gathered[bicubicLanes][side * side * 4];
    std::uint8_t sampled[bicubicLanes * 4];
    for (int n = 0; n < bicubicLanes; ++n) {
        const std::int32_t left = places.ix[start + n] + first;
        const std::int32_t bottom = places.iy[start + n] + first;
        blocks.first[n] = block4(left, bottom, side, side);
        blocks.stride[n] = std::size_t{znTiledImage::tileSide} * 4;
        if (blocks.first[n]) continue;
        gather4(left, bottom, side, side, gathered[n]);
        blocks.first[n] = gathered[n];
        blocks.stride[n] = std::size_t{side} * 4;
    }
    std::uint32_t unsettled = rows.sum(places, start, blocks, sampled);
    for (int n = 0; n < count; ++n, unsettled >>= 1)
        if (unsettled & 1u) sample4(sampled + 4 * n, places.x[start + n], places.y[start + n]);
    if (count == bicubicLanes)
        std::memcpy(out, sampled, sizeof sampled);
    else
        std::memcpy(out, sampled, static_cast<std::size_t>(count) * 4);
}

}  // namespace brushwork
