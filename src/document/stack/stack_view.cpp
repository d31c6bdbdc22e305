#include "document/stack/stack_view.h"

#include <cmath>
#include <numbers>

namespace brushwork {
namespace {

constexpr float leastScale = 1.0e-6f;

struct Turn {
    float cosine, sine;
};

Turn turnOf(float degrees) {
    const double angle = static_cast<double>(degrees) * std::numbers::pi / 180.0;
    return {static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle))};
}

// Of one edge of the box: what lies on its inner side stays.
struct Edge {
    float x, y, limit;  // inside: x * px + y * py >= limit

    [[nodiscard]] float distance(ViewPoint point) const {
        return x * point.x + y * point.y - limit;
    }
};

std::vector<ViewPoint> cut(const std::vector<ViewPoint>& polygon, const Edge& edge) {
    std::vector<ViewPoint> kept;
    for (std::size_t n = 0; n < polygon.size(); ++n) {
        const ViewPoint from = polygon[n];
        const ViewPoint to = polygon[(n + 1) % polygon.size()];
        const float before = edge.distance(from);
        const float after = edge.distance(to);
        if (before >= 0.0f) kept.push_back(from);
        if ((before >= 0.0f) == (after >= 0.0f)) continue;
        const float share = before / (before - after);
        kept.push_back({from.x + (to.x - from.x) * share, from.y + (to.y - from.y) * share});
    }
    return kept;
}

}  // namespace

ViewPoint StackView::toView(ViewPoint document) const {
    if (!valid) return document;
    const Turn turn = turnOf(record.rotation);
    const float x = (document.x - record.pivotX) * record.scaleX;
    const float y = (document.y - record.pivotY) * record.scaleY;
    return {x * turn.cosine - y * turn.sine + record.pivotX + record.x,
            x * turn.sine + y * turn.cosine + record.pivotY + record.y};
}

ViewPoint StackView::toDocument(ViewPoint view) const {
    if (!valid || std::fabs(record.scaleX) < leastScale || std::fabs(record.scaleY) < leastScale)
        return view;
    const Turn turn = turnOf(record.rotation);
    const float x = view.x - record.x - record.pivotX;
    const float y = view.y - record.y - record.pivotY;
    return {(x * turn.cosine + y * turn.sine) / record.scaleX + record.pivotX,
            (y * turn.cosine - x * turn.sine) / record.scaleY + record.pivotY};
}

std::vector<ViewPoint> clipPolygon(const std::vector<ViewPoint>& polygon, const ilTile& box) {
    const auto low = [](std::int32_t place) { return static_cast<float>(place); };
    const Edge edges[] = {{1.0f, 0.0f, low(box.x)},
                          {-1.0f, 0.0f, -low(box.endX())},
                          {0.0f, 1.0f, low(box.y)},
                          {0.0f, -1.0f, -low(box.endY())}};
    std::vector<ViewPoint> kept = polygon;
    for (const Edge& edge : edges) kept = cut(kept, edge);
    return kept;
}

}  // namespace brushwork
