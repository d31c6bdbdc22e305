// brushwork_shape_sheet PHOTOGRAPH OUT.png: shapes on curves. Above, fills of outlines that cross
// themselves, fills with holes and a gradient, and strokes along curves, from a hair to a broad
// soft band; below, a photograph with the lines that pull it, dark where they lie and red where
// they go, and the warps that one pair and three pairs of them make.

#include <array>
#include <cmath>
#include <functional>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

#include "foundation/host/polyline_curves.h"
#include "image/smart/il_smart_image.h"
#include "photograph.h"
#include "shapes/shape.h"

namespace {

using namespace brushwork;
using Places = std::vector<PolylineCurve::Place>;
using Color = std::array<float, 4>;
using Picture = Ref<ilSPMemoryImg>;

constexpr std::int32_t cellX = 450, cellY = 300, margin = 8, across = 3, down = 2;
constexpr ilTile cellBox = flatTile(0, 0, cellX, cellY);
constexpr double turn = 2.0 * std::numbers::pi;

constexpr Color ink{0.12f, 0.12f, 0.18f, 1.0f}, red{0.85f, 0.15f, 0.1f, 1.0f},
    blue{0.1f, 0.35f, 0.75f, 1.0f}, ochre{0.8f, 0.55f, 0.1f, 1.0f}, green{0.1f, 0.5f, 0.3f, 0.6f};

// The host's side of a shape: its curves.
struct Outline {
    std::vector<PolylineCurve> curves;

    Outline& add(Places places, PolylineCurve::Ends ends = PolylineCurve::Ends::Joined) {
        curves.emplace_back(std::move(places), ends);
        return *this;
    }
};

class Cell final : public ShapeOwner {
  public:
    Cell() {
        const std::uint8_t paper[] = {0xF4, 0xF2, 0xEA, 255};
        layer->fillRegion(cellBox, ilPixel(TypeUChar, 4, paper));
    }
    explicit Cell(const Ref<ilSmartImage>& picture) : layer(picture->clone()), picture_(picture) {}

    [[nodiscard]] ilSmartImage* warpSource() override { return picture_.get(); }
    [[nodiscard]] Place warpSourcePlace() const override { return {}; }
    [[nodiscard]] ilTile documentBox() const override { return cellBox; }
    void shapesChanged() override {}

    void draw(Outline outline, const std::function<void(ShapeImageParms&)>& look) {
        const auto parms = makeRef<ShapeImageParms>();
        look(*parms);
        const auto shape = makeRef<Shape>(this, &outline, nullptr, parms);
        shape->warpRenderer().setFilter(SampleMode::Bicubic);
        shape->draw(layer.get());
        shape->setOwner(nullptr);
    }
    void fill(Outline outline, const Color& color) {
        draw(std::move(outline), [&](ShapeImageParms& parms) { parms.fillColor = color; });
    }
    void stroke(Places places, const Color& color, float width, float hardness) {
        draw(Outline().add(std::move(places), PolylineCurve::Ends::Open),
             [&](ShapeImageParms& parms) {
                 parms.fillActive = false;
                 parms.strokeActive = true;
                 parms.clipStroke = false;
                 parms.stroke = {color, width, 1.0f, hardness, 0.25f};
             });
    }

    const Ref<ilSmartImage> layer = makeRef<ilSmartImage>(ilPixel(TypeUChar, 4));

  private:
    Ref<ilSmartImage> picture_;
};

// A point every `step` corners of a circle: above 1 the outline crosses itself.
Places star(double x, double y, double radius, int corners, int step, double from = 0.25) {
    Places places;
    for (int n = 0; n < corners; ++n) {
        const double angle = turn * (from + static_cast<double>(n * step) / corners);
        places.push_back({x + radius * std::cos(angle), y + radius * std::sin(angle)});
    }
    return places;
}

Places disc(double x, double y, double radius) {
    return star(x, y, radius, 180, 1);
}

Places along(int pieces, const std::function<PolylineCurve::Place(double share)>& place) {
    Places places;
    for (int n = 0; n <= pieces; ++n) places.push_back(place(static_cast<double>(n) / pieces));
    return places;
}

// A curve that winds around a middle and through it.
Places knot(double x, double y, double radius) {
    return along(600, [=](double share) {
        const double angle = turn * 2.0 * share;
        const double far = radius * (0.55 + 0.45 * std::cos(2.5 * angle));
        return PolylineCurve::Place{x + far * std::cos(angle), y + far * std::sin(angle)};
    });
}

Ref<ilSmartImage> crossing() {
    Cell cell;
    cell.fill(Outline().add(star(90, 200, 80, 5, 2)), red);
    cell.fill(Outline().add(star(90, 65, 58, 7, 3)), ochre);
    cell.fill(Outline().add(knot(305, 150, 135)), blue);
    cell.fill(Outline().add(star(200, 60, 45, 9, 4)), green);
    return cell.layer;
}

Ref<ilSmartImage> holes() {
    Cell cell;
    Outline rings;
    for (int n = 0; n < 7; ++n) rings.add(disc(110 + 3.0 * n, 165 - 2.0 * n, 100 - 14.0 * n));
    cell.fill(std::move(rings), ink);
    Outline eight;
    eight.add(star(320, 150, 125, 6, 1)).add(disc(320, 205, 40)).add(disc(320, 100, 48));
    cell.draw(std::move(eight), [](ShapeImageParms& parms) {
        ShapeGradient gradient;
        gradient.startX = 200.0f;
        gradient.startY = 40.0f;
        gradient.endX = 430.0f;
        gradient.endY = 260.0f;
        gradient.stops = {{0.0f, red}, {0.5f, ochre}, {1.0f, blue}};
        parms.setFillGradient(gradient);
    });
    return cell.layer;
}

Ref<ilSmartImage> strokes() {
    Cell cell;
    const auto wave = [](double y, double height, double waves) {
        return along(300, [=](double share) {
            return PolylineCurve::Place{25 + 250 * share,
                                        y + height * std::sin(turn * waves * share)};
        });
    };
    cell.stroke(wave(270, 14, 2), ink, 1.0f, 1.0f);
    cell.stroke(wave(230, 14, 2), ink, 4.0f, 1.0f);
    cell.stroke(wave(180, 16, 2), red, 14.0f, 1.0f);
    cell.stroke(wave(120, 16, 2), blue, 24.0f, 0.5f);
    cell.stroke(wave(45, 16, 2), ochre, 44.0f, 0.0f);
    cell.stroke(along(500,
                      [](double share) {
                          const double angle = turn * 4.0 * share, far = 70.0 * share;
                          return PolylineCurve::Place{365 + far * std::cos(angle),
                                                      215 + far * std::sin(angle)};
                      }),
                green, 9.0f, 0.8f);
    cell.stroke(star(370, 70, 62, 5, 2), ink, 7.0f, 1.0f);
    return cell.layer;
}

// Where lines of the photograph lie, and where they go.
std::vector<std::pair<Places, Places>> pulls(int count) {
    const auto line = [](double x0, double y0, double x1, double y1, double bend) {
        return along(80, [=](double share) {
            return PolylineCurve::Place{
                x0 + (x1 - x0) * share,
                y0 + (y1 - y0) * share + bend * std::sin(std::numbers::pi * share)};
        });
    };
    std::vector<std::pair<Places, Places>> pairs;
    if (count == 1) {
        pairs.emplace_back(line(90, 150, 360, 150, 0), line(90, 150, 360, 150, 60));
        return pairs;
    }
    pairs.emplace_back(line(150, 60, 300, 60, 0), line(140, 60, 310, 60, -28));
    pairs.emplace_back(line(130, 190, 200, 190, 0), line(125, 190, 205, 190, 26));
    pairs.emplace_back(line(250, 190, 320, 190, 0), line(245, 190, 325, 190, 26));
    return pairs;
}

Ref<ilSmartImage> warped(const Ref<ilSmartImage>& photograph, int count) {
    Cell cell(photograph);
    Outline wires;
    for (auto& [lies, goes] : pulls(count)) {
        wires.add(lies, PolylineCurve::Ends::Open);
        wires.add(goes, PolylineCurve::Ends::Open);
    }
    cell.draw(std::move(wires), [](ShapeImageParms& parms) { parms.kind = ShapeKind::Warp; });
    return cell.layer;
}

Ref<ilSmartImage> wired(const Ref<ilSmartImage>& photograph) {
    Cell cell(photograph);
    for (const int count : {1, 3})
        for (auto& [lies, goes] : pulls(count)) {
            cell.stroke(lies, ink, 3.0f, 1.0f);
            cell.stroke(goes, red, 3.0f, 1.0f);
        }
    return cell.layer;
}

Picture sheetOf(ilSPMemoryImg& photograph) {
    const auto picture = makeRef<ilSmartImage>(ilPixel(TypeUChar, 4));
    const std::uint8_t paper[] = {0x38, 0x38, 0x38, 255};
    picture->fillRegion(cellBox, ilPixel(TypeUChar, 4, paper));
    picture->copyRegion(intersection(photograph.box(), cellBox), photograph, 0, 0, 0, nullptr,
                        CopyDirection::FromOther);
    const Ref<ilSmartImage> cells[] = {
        wired(picture), warped(picture, 1), warped(picture, 3), crossing(), holes(), strokes()};
    auto sheet = makeRef<ilSPMemoryImg>(across * (cellX + margin) + margin,
                                        down * (cellY + margin) + margin, 4);
    if (!sheet->data()) return {};
    const std::uint8_t grey[] = {0x60, 0x60, 0x60, 255};
    sheet->fillRegion(sheet->box(), ilPixel(TypeUChar, 4, grey));
    std::int32_t n = 0;
    for (const Ref<ilSmartImage>& cell : cells) {
        const std::int32_t left = margin + n % across * (cellX + margin);
        const std::int32_t bottom = margin + n / across * (cellY + margin);
        sheet->copyRegion(flatTile(left, bottom, cellX, cellY), *cell, 0, 0, 0, nullptr,
                          CopyDirection::FromOther);
        ++n;
    }
    return sheet;
}

void serveShapes() {
    servePolylineCurves(hostCallTable());
    hostCallTable().shapeCurve = [](HostShape shape, std::int32_t index) -> HostCurve {
        auto& curves = static_cast<Outline*>(shape)->curves;
        const auto at = static_cast<std::size_t>(index);
        return at < curves.size() ? &curves[at] : nullptr;
    };
}

}  // namespace

int main(int argc, char** argv) {
    serveShapes();
    const int code = sheet::runSheet(
        argc, argv, 0x38, [](const Picture& photograph) { return sheetOf(*photograph); });
    clearHostCallTable();
    return code;
}
