#include "shapes/sample_lines.h"

#include <cmath>
#include <cstddef>
#include <vector>

namespace brushwork {
namespace {

constexpr float linesPerPixel = 4.0f;
constexpr float aside = 0.003921569f;  // pixels

// Along one axis. Pieces that lie along its lines belong to the corner at either of their ends.
void passOnce(std::span<HostSegment> ring, float HostSegment::*start, float HostSegment::*run) {
    const std::size_t count = ring.size();
    std::vector<float> corners(count);
    for (std::size_t n = 0; n < count; ++n) corners[n] = ring[n].*start;
    const auto rise = [&](std::size_t n) { return corners[(n + 1) % count] - corners[n]; };
    // Of the pieces up to each one that run across the lines, the last one's; twice around, for
    // what lies before the first.
    std::vector<float> before(count), behind(count);
    float latest = 0.0f, next = 0.0f;
    for (std::size_t n = 0; n < 2 * count; ++n) {
        before[n % count] = latest;
        if (rise(n % count) != 0.0f) latest = rise(n % count);
        const std::size_t back = (2 * count - 1 - n) % count;
        if (rise(back) != 0.0f) next = rise(back);
        behind[back] = next;
    }
    const auto place = [&](std::size_t n) {
        const bool passes =
            (before[n] > 0.0f && behind[n] > 0.0f) || (before[n] < 0.0f && behind[n] < 0.0f);
        return passes ? offSampleLines(corners[n]) : corners[n];
    };
    for (std::size_t n = 0; n < count; ++n) {
        const float from = place(n), to = place((n + 1) % count);
        if (from == corners[n] && to == corners[(n + 1) % count]) continue;
        ring[n].*start = from;
        ring[n].*run = to - from;
    }
}

}  // namespace

float offSampleLines(float coordinate) {
    const float quarters = coordinate * linesPerPixel;
    return quarters == std::floor(quarters) ? coordinate + aside : coordinate;
}

void passSampleLinesOnce(std::span<HostSegment> ring) {
    passOnce(ring, &HostSegment::x, &HostSegment::dx);
    passOnce(ring, &HostSegment::y, &HostSegment::dy);
}

}  // namespace brushwork
