#include "shapes/line_crossings.h"

#include <algorithm>

namespace brushwork {
namespace {

constexpr int retries = 19;
constexpr float retryStart = 0.01f;
constexpr float retryStep = 0.001f;
constexpr float reach = 0.02f;  // more than any retry strays

}  // namespace

LineCrossings::LineCrossings(const OutlineSegments& outline, Lines lines, const ilTile& box) {
    const bool horizontal = lines == Lines::Horizontal;
    origin_ = static_cast<float>(horizontal ? box.x : box.y);
    last_ = static_cast<float>((horizontal ? box.nx : box.ny) - 1);
    edges_.reserve(outline.count());
    for (std::size_t i = 0; i < outline.count(); ++i) {
        const HostSegment& s = outline.pieces()[i];
        const OutlineSegments::Reciprocal& r = outline.reciprocals()[i];
        Edge edge = horizontal ? Edge{s.y, s.dy, r.dy, s.x, s.dx, 0.0f, 0.0f}
                               : Edge{s.x, s.dx, r.dx, s.y, s.dy, 0.0f, 0.0f};
        if (edge.rise == 0.0f) continue;  // one that lies along the lines crosses none
        edge.low = std::min(edge.start, edge.start + edge.rise);
        edge.high = std::max(edge.start, edge.start + edge.rise);
        edges_.push_back(edge);
    }
    std::stable_sort(edges_.begin(), edges_.end(),
                     [](const Edge& a, const Edge& b) { return a.low < b.low; });
}

std::span<const float> LineCrossings::at(float place) {
    follow(place);
    cross(place);
    float tried = place - retryStart;
    for (int n = 0; n < retries && found_.size() % 2 != 0; ++n) {
        cross(tried);
        tried += retryStep;
    }
    return found_;
}

void LineCrossings::follow(float place) {
    for (; next_ < edges_.size() && edges_[next_].low <= place + reach; ++next_)
        active_.push_back(edges_[next_]);
    std::erase_if(active_, [place](const Edge& edge) { return edge.high < place - reach; });
}

void LineCrossings::cross(float place) {
    found_.clear();
    for (const Edge& edge : active_) {
        if (place < edge.low || place > edge.high) continue;
        const float along = (place - edge.start) * edge.reciprocal * edge.run + edge.from - origin_;
        // Not-a-number, from a piece too flat to have a reciprocal, counts as the low edge.
        found_.push_back(along > 0.0f ? std::min(along, last_) : 0.0f);
    }
    std::sort(found_.begin(), found_.end());
}

}  // namespace brushwork
