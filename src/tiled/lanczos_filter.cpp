#include "tiled/lanczos_filter.h"

#include <algorithm>
#include <span>

#include "tiled/bicubic_filter.h"
#include "tiled/cubic_sums.h"

namespace brushwork {
namespace {

double scaleFor(std::int32_t size) {
    return 5.0 / (size < 4 ? 5 : size | 1);
}

}  // namespace

LanczosFilter::LanczosFilter(EdgeMode edge) : ResampleFilter(FilterLanczos, edge, 4, 4) {
    LanczosFilter::setFootprint(4, 4);
}

Ref<ResampleFilter> LanczosFilter::clone() const {
    Ref<LanczosFilter> copy = makeRef<LanczosFilter>(edgeMode());
    copy->setFootprint(footprintW(), footprintH());
    copy->weightsX_ = weightsX_;
    copy->weightsY_ = weightsY_;
    copy->scaleX_ = scaleX_;
    copy->scaleY_ = scaleY_;
    copy->normaliser_ = normaliser_;
    return copy;
}

void LanczosFilter::setFootprint(std::int32_t w, std::int32_t h) {
    const std::int32_t sizeX = std::clamp(w, 4, mostFootprint);
    const std::int32_t sizeY = std::clamp(h, 4, mostFootprint);
    ResampleFilter::setFootprint(sizeX, sizeY);
    firstX_ = 1 - ((sizeX + 1) >> 1);
    firstY_ = 1 - ((sizeY + 1) >> 1);
    scaleX_ = scaleFor(std::min(w, mostFootprint));
    scaleY_ = scaleFor(std::min(h, mostFootprint));
    normaliser_ = scaleX_ * scaleY_;
    // Weights are computed four at a time.
    weightsX_.assign((static_cast<std::size_t>(sizeX) + 3) & ~std::size_t{3}, 0.0);
    weightsY_.assign((static_cast<std::size_t>(sizeY) + 3) & ~std::size_t{3}, 0.0);
    block_.assign(static_cast<std::size_t>(sizeX) * static_cast<std::size_t>(sizeY) * 4, 0);
}

LanczosFilter::Corner LanczosFilter::weigh(double x, double y) {
    const std::int32_t ix = floorOf(x - 0.5);
    const std::int32_t iy = floorOf(y - 0.5);
    cubicWeights(x, ix, firstX_, scaleX_, footprintW(), weightsX_.data());
    cubicWeights(y, iy, firstY_, scaleY_, footprintH(), weightsY_.data());
    return {ix + firstX_, iy + firstY_};
}

double LanczosFilter::sumOf(std::size_t channel, std::size_t channels) const {
    const std::uint8_t* pixel = block_.data() + channel;
    const std::span wx(weightsX_.data(), static_cast<std::size_t>(footprintW()));
    const std::span wy(weightsY_.data(), static_cast<std::size_t>(footprintH()));
    double sum = 0;
    for (const double weightY : wy) {
        double row = 0;
        for (const double weightX : wx) {
            row += *pixel * weightX;
            pixel += channels;
        }
        sum += row * weightY;
    }
    return sum;
}

void LanczosFilter::sample1(std::uint8_t* out, double x, double y) {
    const Corner corner = weigh(x, y);
    gather1(corner.x, corner.y, footprintW(), footprintH(), block_.data());
    *out = roundedByte(sumOf(0, 1));
}

void LanczosFilter::sample4(std::uint8_t* out, double x, double y) {
    const Corner corner = weigh(x, y);
    gather4(corner.x, corner.y, footprintW(), footprintH(), block_.data());
    for (std::size_t c = 0; c < 4; ++c) out[c] = roundedByte(sumOf(c, 4) * normaliser_ + 1e-8);
}

void LanczosFilter::sampleRow4(std::uint8_t* out, const SampleRow& row) {
    const CubicSums* const sums = cubicSums();
    if (!sums || !isTame(row)) {
        noteKernelForm(VectorLevel::Scalar);
        ResampleFilter::sampleRow4(out, row);
        return;
    }
    const std::int32_t w = footprintW();
    const std::int32_t h = footprintH();
    double x = row.x;
    double y = row.y;
    for (std::int32_t n = 0; n < row.count; ++n, x += row.dx, y += row.dy, out += 4) {
        const std::int32_t ix = floorOf(x - 0.5);
        const std::int32_t iy = floorOf(y - 0.5);
        sums->weigh(firstX_ - ((x - ix) - 0.5), scaleX_, w, weightsX_.data());
        sums->weigh(firstY_ - ((y - iy) - 0.5), scaleY_, h, weightsY_.data());
        CubicBlock block{block4(ix + firstX_, iy + firstY_, w, h),
                         blockStride,
                         w,
                         h,
                         weightsX_.data(),
                         weightsY_.data(),
                         normaliser_};
        if (!block.first) {
            gather4(ix + firstX_, iy + firstY_, w, h, block_.data());
            block.first = block_.data();
            block.stride = static_cast<std::size_t>(w) * 4;
        }
        sums->sum4(block, out);
    }
}

}  // namespace brushwork
