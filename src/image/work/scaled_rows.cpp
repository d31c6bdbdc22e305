#include "image/work/scaled_rows.h"

#include <algorithm>

#include "image/work/sampling_weights.h"

namespace brushwork {
namespace {

// Values of one column, in the linear kind.
template <int Channels>
struct Pixels {
    const ColumnJob& job;
    [[nodiscard]] std::int32_t at(std::int32_t index, int channel) const {
        const std::ptrdiff_t inside = std::clamp(index, 0, job.width - 1);
        return job.row[inside * Channels + channel];
    }
    [[nodiscard]] std::int32_t nearest(const SamplePlace& place, int channel) const {
        return at(place.nearest, channel) << 8;
    }
    [[nodiscard]] std::int32_t linear(const SamplePlace& place, int channel) const {
        return at(place.lower, channel) * (256 - place.step) +
               at(place.lower + 1, channel) * place.step;
    }
};

enum class Kind { Linear, Cubic };

template <int Channels, Kind Result,
          std::int32_t (Pixels<Channels>::*Value)(const SamplePlace&, int) const>
void columns(const ColumnJob& job) {
    noteKernelForm(VectorLevel::Scalar);
    const Pixels<Channels> pixels{job};
    std::int16_t* out = job.out;
    for (std::int32_t n = 0; n < job.count; ++n)
        for (int c = 0; c < Channels; ++c) {
            const std::int32_t value = (pixels.*Value)(job.places[n], c);
            *out++ =
                static_cast<std::int16_t>(Result == Kind::Linear ? value : -((value + 2) >> 2));
        }
}

template <int Channels>
void cubicColumns(const ColumnJob& job) {
    noteKernelForm(VectorLevel::Scalar);
    const Pixels<Channels> pixels{job};
    const SamplingWeights& weights = samplingWeights();
    std::int16_t* out = job.out;
    for (std::int32_t n = 0; n < job.count; ++n) {
        const SamplePlace& place = job.places[n];
        const std::int16_t* w = weights.four[place.step];
        for (int c = 0; c < Channels; ++c) {
            std::int32_t sum = 0;
            for (int k = 0; k < 4; ++k)
                sum += ((pixels.at(place.lower - 1 + k, c) << cubicByteShift) * w[k]) >>
                       cubicProductShift;
            *out++ = static_cast<std::int16_t>(sum);
        }
    }
}

std::int32_t unsignedOf(std::int16_t value) {
    return static_cast<std::uint16_t>(value);
}
std::uint8_t byteOf(std::int32_t value) {
    return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

void linearNearest(const RowJob& job) {
    noteKernelForm(VectorLevel::Scalar);
    for (std::size_t n = 0; n < job.values; ++n)
        job.out[n] = static_cast<std::uint8_t>(unsignedOf(job.rows[0][n]) >> 8);
}

void linearLinear(const RowJob& job) {
    noteKernelForm(VectorLevel::Scalar);
    for (std::size_t n = 0; n < job.values; ++n) {
        const std::int32_t total =
            unsignedOf(job.rows[0][n]) * (256 - job.step) + unsignedOf(job.rows[1][n]) * job.step;
        job.out[n] = static_cast<std::uint8_t>(total >> 16);
    }
}

void cubicNearest(const RowJob& job) {
    noteKernelForm(VectorLevel::Scalar);
    for (std::size_t n = 0; n < job.values; ++n)
        job.out[n] = byteOf((job.rounding - job.rows[0][n]) >> 6);
}

void cubicLinear(const RowJob& job) {
    noteKernelForm(VectorLevel::Scalar);
    for (std::size_t n = 0; n < job.values; ++n) {
        const std::int32_t total = job.rows[0][n] * (256 - job.step) + job.rows[1][n] * job.step;
        job.out[n] = byteOf((job.rounding * 256 - total) >> 14);
    }
}

void cubicCubic(const RowJob& job) {
    noteKernelForm(VectorLevel::Scalar);
    const std::int16_t* w = samplingWeights().four[job.step];
    for (std::size_t n = 0; n < job.values; ++n) {
        std::int32_t total = job.rounding * 32768;
        for (int k = 0; k < 4; ++k) total += job.rows[k][n] * w[k];
        job.out[n] = byteOf(total >> cubicTotalShift);
    }
}

template <std::size_t Count, class Pass>
void fillUp(Pass (&passes)[Count], const Pass (&narrower)[Count]) {
    for (std::size_t k = 0; k < Count; ++k)
        if (!passes[k]) passes[k] = narrower[k];
}

ScaledPasses filledUp(ScaledPasses passes, const ScaledPasses& narrower) {
    fillUp(passes.linearFour, narrower.linearFour);
    fillUp(passes.linearOne, narrower.linearOne);
    fillUp(passes.cubicFour, narrower.cubicFour);
    fillUp(passes.cubicOne, narrower.cubicOne);
    fillUp(passes.linearRows, narrower.linearRows);
    fillUp(passes.cubicRows, narrower.cubicRows);
    return passes;
}

}  // namespace

const ScaledPasses scaledPassesScalar = {
    {columns<4, Kind::Linear, &Pixels<4>::nearest>, columns<4, Kind::Linear, &Pixels<4>::linear>},
    {columns<1, Kind::Linear, &Pixels<1>::nearest>, columns<1, Kind::Linear, &Pixels<1>::linear>},
    {columns<4, Kind::Cubic, &Pixels<4>::nearest>, columns<4, Kind::Cubic, &Pixels<4>::linear>,
     cubicColumns<4>},
    {columns<1, Kind::Cubic, &Pixels<1>::nearest>, columns<1, Kind::Cubic, &Pixels<1>::linear>,
     cubicColumns<1>},
    {linearNearest, linearLinear},
    {cubicNearest, cubicLinear, cubicCubic}};

const ScaledPasses& scaledPasses(VectorLevel level) {
    static const ScaledPasses sse2 = filledUp(scaledPassesSse2, scaledPassesScalar);
    static const ScaledPasses avx2 = filledUp(scaledPassesAvx2, sse2);
    switch (level) {
        case VectorLevel::Avx2: return avx2;
        case VectorLevel::Sse2: return sse2;
        default: return scaledPassesScalar;
    }
}

}  // namespace brushwork
