// Symmetry: what n copies of a stroke cost, by one stream of stamps and by a renderer a copy. The
// figure is their time over that of n plain strokes at the same places: 1.05 is the bound. Both are
// painted in turn, the one that begins changing from round to round; time of the processor counts,
// and the median of what the rounds give. `symmetry_bench NAME` runs one brush.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>
#include <numbers>
#include <vector>

#include "image/smart/il_smart_image.h"
#include "strokes/stroke/brush_mode.h"
#include "strokes/stroke/symmetry_stroke_renderer.h"

namespace {

using namespace brushwork;

constexpr float side = 2048.0F, middle = 0.5F * side;
constexpr std::size_t leastRounds = 5;
constexpr double enoughSeconds = 0.3;  // of one figure
constexpr std::int32_t counts[] = {2, 4, 16, 64};

struct Medium {
    const char* name;
    npc::BrushKind kind;
    float radius;
    std::int32_t preset;
    bool picture = false;
};
constexpr Medium media[] = {{"hard 16", {}, 16.0F, BrushParameters::hardPreset},
                            {"soft 16", {}, 16.0F, 0},
                            {"soft 64", {}, 64.0F, 0},
                            {"marker 16", npc::BrushKind::Marker, 16.0F, 0},
                            {"picture 24", {}, 24.0F, BrushParameters::hardPreset, true},
                            {"smudge 24", npc::BrushKind::SmudgeCanvas, 24.0F, 0}};

Ref<ImagePaintObj> noiseTip() {
    const auto image = makeRef<ilSPMemoryImg>(256, 256, 1);
    std::uint32_t state = 1;
    for (std::size_t n = 0; n < image->byteSize(); ++n) {
        state = state * 1664525U + 1013904223U;
        image->data()[n] = static_cast<std::uint8_t>(state >> 24);
    }
    return makeRef<ImagePaintObj>(image, ImagePaintObj::Levels::Reduced);
}

struct Canvas {
    Ref<ilSmartImage> high{new ilSmartImage(ilPixel(TypeUChar, 4))};
    Ref<ilSmartImage> low{new ilSmartImage(ilPixel(TypeUChar, 4))};
};

void setMedium(npc::StrokeRenderer& renderer, const Medium& medium) {
    BrushParameters brush = BrushParameters::defaults();
    brush.color = {0.7F, 0.2F, 0.1F, 1.0F};
    brush.tipPreset = medium.preset;
    brush.radiusLow = brush.radiusHigh = medium.radius;
    brush.mixRate0 = brush.mixRate1 = brush.mixRate2 = 0.4F;
    if (medium.picture) {
        brush.proceduralTip = false;
        brush.shapeObject = noiseTip();
    }
    StrokeParameters stroke;
    stroke.interpolationKind = 0;
    stroke.brushKind = static_cast<std::int32_t>(medium.kind);
    stroke.isMarker = medium.kind == npc::BrushKind::Marker;
    stroke.followDirection = medium.picture;
    renderer.setParameters(stroke, &brush);
}

// A wave from near the centre outward, as copy n of a setup paints it.
void paint(npc::StrokeRenderer& renderer, float radius, const SymmetrySetup& setup,
           std::int32_t n) {
    const bool mirrors = !setup.rotationOnly && n % 2 == 1;
    const float axis = std::atan2(setup.axisY, setup.axisX);
    const float turn = 2.0F * std::numbers::pi_v<float> * static_cast<float>(mirrors ? n - 1 : n) /
                       static_cast<float>(setup.sectors);
    const float angle = mirrors ? 2.0F * axis + turn : turn, flip = mirrors ? -1.0F : 1.0F;
    const float c = std::cos(angle), s = std::sin(angle);
    renderer.beginStroke(false);
    for (std::int32_t step = 0; step <= 120; ++step) {
        const float part = static_cast<float>(step) / 120.0F;
        const float x = 120.3F + 700.0F * part;
        const float y = flip * (60.7F + 60.0F * std::sin(11.0F * part) + 200.0F * part);
        StampPoint point;
        point.x = middle + c * x - s * y;
        point.y = middle + s * x + c * y;
        point.radius = radius;
        point.opacity = 0.3F + 0.5F * part;
        point.flow = 0.9F;
        renderer.addPoint(point);
    }
    renderer.endStroke();
}

template <class Work>
double processorSeconds(const Work& work) {
    const std::clock_t start = std::clock();
    work();
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

double medianOf(std::vector<double> values) {
    const auto middleOne = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middleOne, values.end());
    return *middleOne;
}

// The time of all copies over that of as many plain strokes at the same places.
double costOf(const Medium& medium, const SymmetrySetup& setup, bool separate) {
    const Canvas canvas;
    npc::StrokeRenderer plain(canvas.high.get(), canvas.low.get());
    npc::SymmetryStrokeRenderer symmetric(canvas.high.get(), canvas.low.get());
    symmetric.setSeparateRenderers(separate);
    symmetric.setSymmetry(setup);
    setMedium(plain, medium);
    setMedium(symmetric, medium);
    const auto timeOfCopies = [&] {
        return processorSeconds([&] { paint(symmetric, medium.radius, setup, 0); });
    };
    const auto timeOfStrokes = [&] {
        return processorSeconds([&] {
            for (std::int32_t n = 0; n < setup.sectors; ++n) paint(plain, medium.radius, setup, n);
        });
    };
    timeOfCopies();
    timeOfStrokes();
    std::vector<double> costs;
    for (double spent = 0.0; costs.size() < leastRounds || spent < enoughSeconds;) {
        const bool copiesFirst = costs.size() % 2 == 0;
        double copies = copiesFirst ? timeOfCopies() : 0.0;
        const double strokes = timeOfStrokes();
        if (!copiesFirst) copies = timeOfCopies();
        costs.push_back(copies / strokes);
        spent += copies + strokes;
    }
    return medianOf(costs);
}

void compare(const Medium& medium, bool mirrors, bool separate) {
    std::printf("%-11s %-8s %-9s", medium.name, mirrors ? "mirrored" : "turned",
                separate ? "each" : "one");
    for (const std::int32_t count : counts) {
        SymmetrySetup setup;
        setup.rotationOnly = !mirrors;
        setup.sectors = count;
        setup.centerX = setup.centerY = middle;
        setup.axisX = std::cos(0.3F);
        setup.axisY = std::sin(0.3F);
        std::printf(" %7.3f", costOf(medium, setup, separate));
        std::fflush(stdout);
    }
    std::printf("\n");
}

}  // namespace

int main(int argc, char** argv) {
    std::printf("%-11s %-8s %-9s", "brush", "copies", "renderers");
    for (const std::int32_t count : counts) std::printf("   n = %-2d", count);
    std::printf("\n");
    for (const Medium& medium : media) {
        if (argc > 1 && std::strcmp(argv[1], medium.name) != 0) continue;
        for (const bool mirrors : {true, false})
            for (const bool separate : {false, true}) {
                // Brushes that carry paint have a renderer a copy in any case.
                if (!separate && medium.kind == npc::BrushKind::SmudgeCanvas) continue;
                compare(medium, mirrors, separate);
            }
    }
    return 0;
}
