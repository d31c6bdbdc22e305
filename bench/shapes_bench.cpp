// Shapes on a layer of 2048 x 2048, one thread: masks of a large disc and of a tangle, a shape
// drawn whole, a stroke, and a warp of a picture. Prints medians and millions of pixels a second.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <numbers>
#include <random>
#include <vector>

#include "bench_clock.h"
#include "foundation/host/polyline_curves.h"
#include "image/smart/il_smart_image.h"
#include "shapes/outline_raster.h"
#include "shapes/shape.h"
#include "shapes/warp_render.h"

namespace {

using namespace brushwork;
using Places = std::vector<PolylineCurve::Place>;

constexpr int side = 2048;
constexpr ilTile whole = flatTile(0, 0, side, side);

struct BenchShape {
    std::vector<PolylineCurve> curves;
};

class Owner final : public ShapeOwner {
  public:
    Owner() {
        std::vector<std::uint8_t> pixels(std::size_t{side} * side * 4);
        std::mt19937 random(1);
        for (std::uint8_t& byte : pixels) byte = static_cast<std::uint8_t>(random());
        picture->writeRegion(whole, pixels.data(), whole);
    }
    [[nodiscard]] ilSmartImage* warpSource() override { return picture.get(); }
    [[nodiscard]] Place warpSourcePlace() const override { return {}; }
    [[nodiscard]] ilTile documentBox() const override { return whole; }
    void shapesChanged() override {}

    const Ref<ilSmartImage> picture = makeRef<ilSmartImage>(ilPixel(TypeUChar, 4));
};

Places disc(int corners) {
    Places places;
    for (int n = 0; n < corners; ++n) {
        const double angle = 2.0 * std::numbers::pi * n / corners + 0.001;
        places.push_back({1024 + 1000 * std::cos(angle), 1024 + 1000 * std::sin(angle)});
    }
    return places;
}

Places tangle(int corners) {
    std::mt19937 random(2);
    std::uniform_real_distribution<> anywhere(20, side - 20);
    Places places;
    for (int n = 0; n < corners; ++n) places.push_back({anywhere(random), anywhere(random)});
    return places;
}

Places wave(double height) {
    Places places;
    for (int n = 0; n <= 200; ++n)
        places.push_back({100.0 + 9 * n, 1024 + height * std::sin(n * 0.06)});
    return places;
}

BenchShape shapeOf(std::vector<Places> lines, PolylineCurve::Ends ends) {
    BenchShape shape;
    for (Places& line : lines) shape.curves.emplace_back(std::move(line), ends);
    return shape;
}

Ref<Shape> made(Owner& owner, BenchShape& lines, ShapeKind kind, bool stroked) {
    const auto parms = makeRef<ShapeImageParms>();
    parms->kind = kind;
    parms->fillActive = !stroked;
    parms->strokeActive = stroked;
    return makeRef<Shape>(&owner, &lines, nullptr, parms);
}

void serveShapes() {
    servePolylineCurves(hostCallTable());
    hostCallTable().shapeCurve = [](HostShape shape, std::int32_t index) -> HostCurve {
        auto& curves = static_cast<BenchShape*>(shape)->curves;
        const auto at = static_cast<std::size_t>(index);
        return at < curves.size() ? &curves[at] : nullptr;
    };
}

}  // namespace

int main() {
    serveShapes();
    Owner owner;
    BenchShape discLines = shapeOf({disc(400)}, PolylineCurve::Ends::Joined);
    BenchShape tangleLines = shapeOf({tangle(200)}, PolylineCurve::Ends::Joined);
    BenchShape strokeLines = shapeOf({wave(600)}, PolylineCurve::Ends::Open);
    BenchShape warpLines = shapeOf({wave(300), wave(360)}, PolylineCurve::Ends::Open);
    const Ref<ilSmartImage> layer = owner.picture->clone();
    std::vector<std::uint8_t> mask(std::size_t{side} * side);

    bench::Rounds rounds;
    const auto raster = [&](const char* name, BenchShape& lines) {
        const auto outline = std::make_shared<OutlineSegments>(lines.curves.front().segments());
        rounds.add(name, [outline, &mask] {
            std::fill(mask.begin(), mask.end(), std::uint8_t{0});
            (void)rasterizeOutline(*outline, whole, mask);
        });
    };
    raster("mask of a disc, 400 pieces", discLines);
    raster("mask of a tangle, 200 pieces", tangleLines);
    const auto drawn = [&](const char* name, const Ref<Shape>& shape) {
        rounds.add(name, [shape, &layer] {
            shape->changed();
            shape->draw(layer.get());
        });
    };
    const Ref<Shape> filled = made(owner, discLines, ShapeKind::Paint, false);
    drawn("disc, rendered and applied", filled);
    rounds.add("disc, applied", [filled, &layer] { filled->draw(layer.get()); });
    drawn("stroke of 40 pixels", made(owner, strokeLines, ShapeKind::Paint, true));
    const Ref<Shape> warp = made(owner, warpLines, ShapeKind::Warp, false);
    rounds.add("grid of a warp", [warp] {
        warp->changed();
        warp->warpRenderer().render(*warp);
    });
    rounds.add("warp, bilinear", [warp, &layer] { warp->draw(layer.get()); });
    rounds.run(5, 40);
    for (const bench::Job& job : rounds.jobs())
        std::printf("%-32s %8.2f ms %8.1f Mpixel/s\n", job.name.c_str(), job.median() * 1e3,
                    side * side / job.median() * 1e-6);
    clearHostCallTable();
    return 0;
}
