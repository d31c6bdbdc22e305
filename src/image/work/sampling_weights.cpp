#include "image/work/sampling_weights.h"

#include <cmath>
#include <cstddef>

namespace brushwork {
namespace {

void fillFour(std::size_t step, std::int16_t (&weights)[4]) {
    const double fraction = static_cast<double>(step) / 256.0;
    long sum = 0;
    for (std::size_t k = 0; k < 4; ++k) {
        const double distance = static_cast<double>(k) - 1.0 - fraction;
        const long weight = std::lround(cubicKernel(distance) * -32768.0);
        weights[k] = static_cast<std::int16_t>(weight);
        sum += weight;
    }
    // What rounding lost goes to the nearer pixel, where it weighs least.
    const std::size_t nearer = step <= 128 ? 1 : 2;
    weights[nearer] = static_cast<std::int16_t>(weights[nearer] - (sum + 32768));
}

SamplingWeights makeWeights() {
    SamplingWeights weights;
    for (std::size_t step = 0; step < 256; ++step) {
        std::int16_t(&four)[4] = weights.four[step];
        fillFour(step, four);
        for (std::size_t k = 0; k < 4; ++k) {
            const std::int32_t weight = four[k];
            weights.doubled[step][k] = weight * 65536 + (weight & 0xFFFF);
        }
        for (std::size_t k = 0; k < 16; ++k) {
            weights.pairs[step][k] = four[(k & 1) + (k >= 8 ? 2 : 0)];
            weights.spread[step][k] = four[k >> 2];
        }
        for (std::size_t k = 0; k < 8; ++k)
            weights.linear[step][k] = static_cast<std::int16_t>(k < 4 ? 256 - step : step);
    }
    return weights;
}

}  // namespace

double cubicKernel(double distance) {
    const double t = std::abs(distance);
    if (t <= 1.0) return (1.25 * t - 2.25) * t * t + 1.0;
    if (t < 2.0) return -0.75 * (((t - 5.0) * t + 8.0) * t - 4.0);
    return 0.0;
}

const SamplingWeights& samplingWeights() {
    static const SamplingWeights weights = makeWeights();
    return weights;
}

}  // namespace brushwork
