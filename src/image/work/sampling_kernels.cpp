#include "image/work/sampling_kernels.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "image/work/sampling_weights.h"

namespace brushwork {
namespace {

// `Reach` by `Reach` pixels around a place, clamped at the edges.
template <int Reach, std::size_t Channels>
struct Window {
    const std::uint8_t* rows[Reach];
    std::size_t columns[Reach];

    Window(const SampleSource& source, std::int32_t x, std::int32_t y) {
        for (int k = 0; k < Reach; ++k) {
            const int step = k - (Reach / 2 - 1);
            const auto row = std::clamp((y >> 16) + step, 0, source.height - 1);
            const auto column = std::clamp((x >> 16) + step, 0, source.width - 1);
            rows[k] = source.pixels + row * source.rowBytes;
            columns[k] = static_cast<std::size_t>(column) * Channels;
        }
    }
    [[nodiscard]] std::int32_t at(int row, int column, std::size_t channel) const {
        return rows[row][columns[column] + channel];
    }
};

std::int32_t fractionOf(std::int32_t place) {
    return (place >> 8) & 0xFF;
}

template <std::size_t Channels>
void nearest(const SampleSource& source, const std::int32_t* x, const std::int32_t* y,
             std::size_t count, std::uint8_t* out) {
    noteKernelForm(VectorLevel::Scalar);
    for (std::size_t n = 0; n < count; ++n, out += Channels) {
        const std::int32_t column = x[n] >> 16;
        const std::int32_t row = y[n] >> 16;
        const bool inside = column >= 0 && column < source.width && row >= 0 && row < source.height;
        const std::uint8_t* from = inside ? source.pixels + row * source.rowBytes +
                                                column * static_cast<std::ptrdiff_t>(Channels)
                                          : source.fill;
        std::memcpy(out, from, Channels);
    }
}

template <std::size_t Channels>
void bilinear(const SampleSource& source, const std::int32_t* x, const std::int32_t* y,
              std::size_t count, std::uint8_t* out) {
    noteKernelForm(VectorLevel::Scalar);
    for (std::size_t n = 0; n < count; ++n, out += Channels) {
        const Window<2, Channels> p(source, x[n], y[n]);
        const std::int32_t fx = fractionOf(x[n]);
        const std::int32_t fy = fractionOf(y[n]);
        for (std::size_t c = 0; c < Channels; ++c) {
            const std::int32_t total =
                (p.at(0, 0, c) * (256 - fx) + p.at(0, 1, c) * fx) * (256 - fy) +
                (p.at(1, 0, c) * (256 - fx) + p.at(1, 1, c) * fx) * fy;
            out[c] = static_cast<std::uint8_t>(total >> 16);
        }
    }
}

template <std::size_t Channels>
void bicubic(const SampleSource& source, const std::int32_t* x, const std::int32_t* y,
             std::size_t count, std::uint8_t* out) {
    noteKernelForm(VectorLevel::Scalar);
    const SamplingWeights& weights = samplingWeights();
    for (std::size_t n = 0; n < count; ++n, out += Channels) {
        const Window<4, Channels> p(source, x[n], y[n]);
        const std::int16_t* wx = weights.four[fractionOf(x[n])];
        const std::int16_t* wy = weights.four[fractionOf(y[n])];
        for (std::size_t c = 0; c < Channels; ++c) {
            std::int32_t total = cubicRounding;
            for (int column = 0; column < 4; ++column) {
                std::int32_t sum = 0;
                for (int row = 0; row < 4; ++row)
                    sum +=
                        ((p.at(row, column, c) << cubicByteShift) * wy[row]) >> cubicProductShift;
                total += sum * wx[column];
            }
            out[c] = static_cast<std::uint8_t>(std::clamp(total >> cubicTotalShift, 0, 255));
        }
    }
}

SamplingKernels filledUp(SamplingKernels kernels, const SamplingKernels& narrower) {
    for (int mode = 0; mode < 3; ++mode) {
        if (!kernels.four[mode]) kernels.four[mode] = narrower.four[mode];
        if (!kernels.one[mode]) kernels.one[mode] = narrower.one[mode];
    }
    return kernels;
}

}  // namespace

std::int32_t toFixed(float place) {
    if (std::isnan(place)) return 0;
    const float bounded = std::clamp(place, -32768.0f, 32767.998f);
    const float whole = std::floor(bounded);
    const auto fraction = static_cast<std::int32_t>((bounded - whole) * fixedOfFraction);
    return static_cast<std::int32_t>(whole) * 65536 + fraction;
}

float fromFixed(std::int32_t place) {
    return static_cast<float>(place >> 16) + static_cast<float>(place & 0xFFFF) * fractionOfFixed;
}

const SamplingKernels samplingKernelsScalar = {{nearest<4>, bilinear<4>, bicubic<4>},
                                               {nearest<1>, bilinear<1>, bicubic<1>}};

const SamplingKernels& samplingKernels(VectorLevel level) {
    static const SamplingKernels sse2 = filledUp(samplingKernelsSse2, samplingKernelsScalar);
    static const SamplingKernels avx2 = filledUp(samplingKernelsAvx2, sse2);
    switch (level) {
        case VectorLevel::Avx2: return avx2;
        case VectorLevel::Sse2: return sse2;
        default: return samplingKernelsScalar;
    }
}

void copyClamped(const SampleSource& source, std::int32_t left, std::int32_t bottom,
                 std::int32_t side, std::size_t channels, std::uint8_t* block) {
    for (std::int32_t j = 0; j < side; ++j) {
        const auto row = std::clamp(bottom + j, 0, source.height - 1);
        const std::uint8_t* from = source.pixels + row * source.rowBytes;
        for (std::int32_t i = 0; i < side; ++i, block += channels) {
            const auto column = std::clamp(left + i, 0, source.width - 1);
            std::memcpy(block, from + static_cast<std::size_t>(column) * channels, channels);
        }
    }
}

}  // namespace brushwork
