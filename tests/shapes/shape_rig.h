// Shapes of straight lines behind the host table, and an owner for them.
#pragma once

#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <numbers>
#include <vector>

#include "foundation/host/polyline_curves.h"
#include "image/smart/il_smart_image.h"
#include "shapes/outline_segments.h"
#include "shapes/shape_owner.h"

namespace brushwork::test {

using Place = PolylineCurve::Place;
using Places = std::vector<Place>;

// What the host knows of a shape.
struct TestShape {
    std::vector<PolylineCurve> curves;
    std::int32_t tipWidth = 0, tipHeight = 0;
    std::vector<std::uint8_t> tip;

    TestShape& ring(Places places) {
        curves.emplace_back(std::move(places), PolylineCurve::Ends::Joined);
        return *this;
    }
    TestShape& line(Places places) {
        curves.emplace_back(std::move(places), PolylineCurve::Ends::Open);
        return *this;
    }
};

// Serves TestShape through the host table for as long as it lives.
class ShapeHost {
  public:
    ShapeHost() {
        HostCallTable& table = hostCallTable();
        servePolylineCurves(table);
        table.shapeCurve = [](HostShape shape, std::int32_t index) -> HostCurve {
            auto& curves = static_cast<TestShape*>(shape)->curves;
            const auto at = static_cast<std::size_t>(index);
            return at < curves.size() ? &curves[at] : nullptr;
        };
        table.shapeStamp = [](HostShape shape, std::int32_t* width,
                              std::int32_t* height) -> const std::uint8_t* {
            const auto& own = *static_cast<TestShape*>(shape);
            *width = own.tipWidth;
            *height = own.tipHeight;
            return own.tip.empty() ? nullptr : own.tip.data();
        };
    }
    ~ShapeHost() { clearHostCallTable(); }
    ShapeHost(const ShapeHost&) = delete;
    ShapeHost& operator=(const ShapeHost&) = delete;
};

class TestOwner final : public ShapeOwner {
  public:
    [[nodiscard]] ilSmartImage* warpSource() override { return picture.get(); }
    [[nodiscard]] Place warpSourcePlace() const override { return place; }
    [[nodiscard]] ilTile documentBox() const override { return document; }
    void shapesChanged() override { ++changes; }

    Ref<ilSmartImage> picture;
    Place place;
    ilTile document;
    int changes = 0;
};

inline Places circle(double x, double y, double radius, int corners, double turn = 0.1) {
    Places places;
    for (int n = 0; n < corners; ++n) {
        const double angle = turn + 2.0 * std::numbers::pi * n / corners;
        places.push_back({x + radius * std::cos(angle), y + radius * std::sin(angle)});
    }
    return places;
}

inline std::vector<HostCurve> curvesOf(TestShape& shape) {
    std::vector<HostCurve> curves;
    for (PolylineCurve& curve : shape.curves) curves.push_back(&curve);
    return curves;
}

inline std::vector<std::uint8_t> bytesOf(ilImage& image, const ilTile& box) {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(box.nx) *
                                    static_cast<std::size_t>(box.ny) *
                                    static_cast<std::size_t>(image.channels()));
    (void)image.readRegion(box, bytes.data(), box);
    return bytes;
}

}  // namespace brushwork::test
