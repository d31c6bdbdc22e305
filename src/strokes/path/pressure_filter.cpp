#include "brushwork/pressure_filter.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "foundation/services/settings.h"

namespace brushwork {

namespace {

constexpr std::int32_t lowestBound = -32768;
constexpr std::int32_t highestBound = 65535;
constexpr std::int32_t usualSteps = 1024;
constexpr float mostSmoothness = 0.95f;

bool isPart(float value) {
    return value >= 0.0f && value <= 1.0f;
}

// A device with one step is a switch: its only pressure is the full one.
float curveAt(std::int32_t i, std::int32_t steps, float exponent) {
    if (steps == 1) return 1.0f;
    const float x = static_cast<float>(i) / static_cast<float>(steps - 1);
    return static_cast<float>(std::pow(static_cast<double>(x), static_cast<double>(exponent)));
}

// With under four steps the two limits cross, and the upper one holds; a switch has its threshold
// between its two states.
float thresholdWithin(std::int32_t steps, float threshold) {
    if (steps == 1) return 0.5f;
    const float n = static_cast<float>(steps);
    return std::min(std::max(threshold, 3.0f / n), 1.0f - 1.0f / n);
}

}  // namespace

PressureFilter::PressureFilter() : PressureFilter(0, usualSteps) {}

PressureFilter::PressureFilter(std::int32_t low, std::int32_t high) {
    setRange(low, high);
}

void PressureFilter::setRange(std::int32_t low, std::int32_t high) {
    low_ = std::clamp(low, lowestBound, highestBound);
    high_ = std::clamp(high, lowestBound, highestBound);
    if (low_ > high_) std::swap(low_, high_);
    if (low_ == high_) {
        low_ = 0;
        high_ = usualSteps;
    }
    table_.clear();
    previous_ = 0.0f;
}

void PressureFilter::setHardness(float hardness) {
    hardness_ = isPart(hardness) ? hardness : pressureSettings().hardness;
    table_.clear();
}

void PressureFilter::setThreshold(float threshold) {
    threshold_ = isPart(threshold) ? threshold : pressureSettings().threshold;
    table_.clear();
}

void PressureFilter::setSmoothness(float smoothness) {
    const bool high = smoothness > mostSmoothness;
    smoothness_ = high ? mostSmoothness : smoothness >= 0.0f ? smoothness : 0.0f;
}

void PressureFilter::buildTable() {
    const std::int32_t steps = high_ - low_;
    const float exponent = *hardness_ * 8.0f * *hardness_ + 0.1f;
    table_.resize(static_cast<std::size_t>(steps));
    for (std::int32_t i = 0; i < steps; ++i)
        table_[static_cast<std::size_t>(i)] = curveAt(i, steps, exponent);
}

void PressureFilter::applyThreshold() {
    usedThreshold_ = thresholdWithin(high_ - low_, *threshold_);
    rescale_ = 1.0f / (1.0f - usedThreshold_);
}

void PressureFilter::fillIn() {
    const PressureSettings& defaults = pressureSettings();
    if (!hardness_) hardness_ = defaults.hardness;
    if (!threshold_) threshold_ = defaults.threshold;
    if (!smoothness_) setSmoothness(defaults.smoothness);
    if (!table_.empty()) return;
    buildTable();
    applyThreshold();
}

float PressureFilter::filter(std::int32_t raw) {
    fillIn();
    const std::int32_t steps = high_ - low_;
    const std::int32_t p = std::clamp(raw, low_, high_) - low_;
    const float x = static_cast<float>(p) / static_cast<float>(steps);
    if (x >= usedThreshold_) {
        const auto place = static_cast<std::int32_t>((x - usedThreshold_) * rescale_ *
                                                     static_cast<float>(steps - 1));
        previous_ = blend(table_[static_cast<std::size_t>(std::min(place, steps - 1))]);
    } else {
        const float tail = previous_ * *smoothness_;
        previous_ = tail < usedThreshold_ ? 0.0f : tail;
    }
    return previous_;
}

float PressureFilter::blend(float pressure) {
    fillIn();
    return (previous_ - pressure) * *smoothness_ + pressure;
}

PressureFilter& pressureFilter() {
    static PressureFilter filter;
    return filter;
}

}  // namespace brushwork
