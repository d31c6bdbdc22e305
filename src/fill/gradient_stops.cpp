#include "fill/gradient_stops.h"

#include <algorithm>
#include <cstddef>

namespace brushwork {
namespace {

float bounded(float value) {
    return value > 0.0f ? std::min(value, 1.0f) : 0.0f;
}

}  // namespace

void GradientStops::add(float place, const Color& color) {
    Stop stop{bounded(place), {}};
    stop.color[3] = bounded(color[3]);
    for (std::size_t i = 0; i < 3; ++i) stop.color[i] = bounded(color[i]) * stop.color[3];
    const auto behind =
        std::upper_bound(stops_.begin(), stops_.end(), stop.place,
                         [](float value, const Stop& other) { return value < other.place; });
    stops_.insert(behind, stop);
}

GradientStops::Color GradientStops::at(float t) const {
    if (stops_.empty()) return {};
    const auto next =
        std::upper_bound(stops_.begin(), stops_.end(), t,
                         [](float value, const Stop& stop) { return value < stop.place; });
    if (next == stops_.begin()) return stops_.front().color;
    if (next == stops_.end()) return stops_.back().color;
    const Stop& before = *(next - 1);
    const float share = (t - before.place) / (next->place - before.place);
    Color color{};
    for (std::size_t i = 0; i < 4; ++i)
        color[i] = before.color[i] + (next->color[i] - before.color[i]) * share;
    return color;
}

}  // namespace brushwork
