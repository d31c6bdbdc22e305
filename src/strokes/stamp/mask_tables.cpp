#include "strokes/stamp/mask_tables.h"

#include <algorithm>
#include <cmath>

namespace brushwork::npc {
namespace {

constexpr double gaussianStep = 9.042409e-5;  // one over the number of entries
constexpr double deviations = 3.5;
constexpr float sixteenths = 16.0f;
constexpr float smallRadius = 8.0f;  // below: masks are averaged over a pixel
constexpr std::int32_t lastRadiusEntry = 11058;
constexpr std::int32_t halfPixel = 8;

// Where the solid part of a fully hard tip ends: the rim of a large one is three pixels wide.
float hardCore(float radius) {
    if (radius > 6.0f) return radius - 3.0f;
    if (radius > 4.0f) return 0.5f * radius;
    if (radius > 3.0f) return 0.375f * radius;
    if (radius > 2.0f) return 0.25f * radius;
    return 0.125f * radius;
}

// The first `solid` entries are known to be 255.
CoverageProfile profileOf(const std::uint8_t* entries, std::int32_t last, std::int32_t solid) {
    CoverageProfile profile{entries, last, solid, last + 1};
    while (profile.solidEnd <= last && entries[profile.solidEnd] == 255) ++profile.solidEnd;
    while (profile.emptyBegin > 0 && entries[profile.emptyBegin - 1] == 0) --profile.emptyBegin;
    return profile;
}

}  // namespace

GaussianFalloffTable::GaussianFalloffTable() {
    for (std::int32_t i = 0; i < count; ++i) {
        const double x = i * gaussianStep * deviations;
        entries_[static_cast<std::size_t>(i)] =
            static_cast<std::uint16_t>(std::exp(-0.5 * (x * x)) * 65535.0);
    }
}

const GaussianFalloffTable& GaussianFalloffTable::instance() {
    static const GaussianFalloffTable table;
    return table;
}

CoverageHistogram::CoverageHistogram() {
    for (std::int32_t d = 0; d < rows; ++d)
        for (std::int32_t a = -halfPixel; a < halfPixel; ++a)
            for (std::int32_t b = -halfPixel; b < halfPixel; ++b) {
                const double x = a + d + 0.5, y = b + 0.5;
                ++rows_[static_cast<std::size_t>(d)]
                       [static_cast<std::size_t>(std::sqrt(x * x + y * y))];
            }
}

const CoverageHistogram& CoverageHistogram::instance() {
    static const CoverageHistogram histogram;
    return histogram;
}

StampMaskTable::StampMaskTable() : entries_(static_cast<std::size_t>(count) + slack) {}

void StampMaskTable::build(float radius, float hardness) {
    if (radius == radius_ && hardness == hardness_) return;
    radius_ = radius;
    hardness_ = hardness;
    filteredProfile_ = {};
    const std::int32_t oldRim = rim_;
    const float limited =
        std::clamp(radius, 0.0f, static_cast<float>(lastRadiusEntry) / sixteenths);
    rim_ = static_cast<std::int32_t>(sixteenths * limited);
    const float share = hardness > 0.0f ? std::min(hardness, 1.0f) : 0.0f;
    const float core = hardCore(limited) * share * sixteenths;
    const std::int32_t solid = std::min(static_cast<std::int32_t>(core), rim_);
    const std::int32_t width = rim_ - solid;

    std::uint8_t* const table = entries_.data();
    std::fill(table, table + solid, std::uint8_t{255});
    const GaussianFalloffTable& falloff = GaussianFalloffTable::instance();
    // In double, as numbers without a float among them are.
    const double perStep = width > 1 ? static_cast<double>(lastRadiusEntry) / (2.0 * width) : 0.0;
    for (std::int32_t i = solid, n = 1; i < rim_; ++i, n += 2) {
        const std::int32_t value = falloff.at(static_cast<std::int32_t>(n * perStep)) + 128;
        table[i] = static_cast<std::uint8_t>(std::min(value, 65535) >> 8);
    }
    if (oldRim > rim_) std::fill(table + rim_, table + oldRim, std::uint8_t{0});
    plain_ = profileOf(table, rim_, solid);
}

const CoverageProfile& StampMaskTable::filtered() {
    if (filteredProfile_.entries) return filteredProfile_;
    buildFiltered();
    const auto entries = static_cast<std::int32_t>(filtered_.size() - slack);
    filteredProfile_ = profileOf(filtered_.data(), entries - 1, 0);
    return filteredProfile_;
}

void StampMaskTable::buildFiltered() {
    const std::int32_t filled = rim_ + halfPixel;
    filtered_.assign(static_cast<std::size_t>(std::max(filled + 1, filteredCount)) + slack, 0);
    const std::uint8_t* const table = entries_.data();
    if (rim_ > 16) {
        // A window one pixel wide, which takes one entry in and lets one out a step.
        const auto at = [table](std::int32_t n) { return std::int32_t{table[n < 0 ? -n - 1 : n]}; };
        std::int32_t sum = 0;
        for (std::int32_t n = -halfPixel; n < halfPixel; ++n) sum += at(n);
        for (std::int32_t i = 0; i < filled; ++i) {
            filtered_[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>((sum + 15) >> 4);
            sum += at(i + halfPixel) - at(i - halfPixel);
        }
        return;
    }
    const CoverageHistogram& histogram = CoverageHistogram::instance();
    for (std::int32_t i = 0; i < filled; ++i) {
        std::int32_t sum = 0;
        for (std::int32_t j = 0; j < rim_; ++j)
            sum += histogram.row(i)[static_cast<std::size_t>(j)] * table[j];
        filtered_[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>((sum + 255) >> 8);
    }
}

const CoverageProfile& StampMaskTable::profileFor(float scaleX, float scaleY) {
    const float reach = std::max(std::fabs(radius_ * scaleY), std::fabs(radius_ * scaleX));
    return reach < smallRadius ? filtered() : plain();
}

}  // namespace brushwork::npc
