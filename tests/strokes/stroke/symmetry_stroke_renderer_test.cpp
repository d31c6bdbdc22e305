#include "strokes/stroke/symmetry_stroke_renderer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <numbers>

#include "foundation/host/host_calls.h"
#include "foundation/services/random_source.h"
#include "strokes/stroke/brush_set.h"
#include "strokes/stroke/stroke_replay.h"

namespace brushwork::npc {
namespace {

using test::TestBrush;
constexpr std::int32_t side = 320;  // its middle is the centre of all symmetries here
constexpr float middle = 0.5f * side;

// Two planes of a square, and what is painted there.
struct Canvas {
    Canvas() : high(new ilSPMemoryImg(side, side, 4)), low(new ilSPMemoryImg(side, side, 4)) {
        for (const auto& plane : {high, low})
            plane->fillRegion(plane->box(), ilPixel(TypeUChar, 4));
    }
    const Ref<ilSPMemoryImg> high, low;
};

using Place = std::pair<std::int32_t, std::int32_t>;
using PlaceMap = std::function<Place(Place)>;

// Bytes of both planes that differ from those at the mapped place; of the upper plane the largest
// difference and the sum of all.
struct Difference {
    int bytes = 0;
    int most = 0;
    double sum = 0.0;
};
Difference differenceUnder(const Canvas& canvas, const PlaceMap& map) {
    Difference difference;
    for (std::int32_t y = 0; y < side; ++y)
        for (std::int32_t x = 0; x < side; ++x) {
            const auto [mx, my] = map({x, y});
            for (std::int32_t c = 0; c < 4; ++c) {
                const auto here = static_cast<std::size_t>(4 * (y * side + x) + c);
                const auto there = static_cast<std::size_t>(4 * (my * side + mx) + c);
                const std::uint8_t* const high = canvas.high->data();
                const std::uint8_t* const low = canvas.low->data();
                difference.bytes += high[here] != high[there] || low[here] != low[there];
                difference.most = std::max(difference.most, std::abs(high[here] - high[there]));
                difference.sum += std::abs(high[here] - high[there]);
            }
        }
    return difference;
}

int paintedPixels(const Canvas& canvas) {
    int painted = 0;
    for (std::size_t n = 3; n < canvas.high->byteSize(); n += 4)
        painted += canvas.high->data()[n] != 0;
    return painted;
}

// A curve in a wedge above the x axis, clear of the axes for radii up to 12.
std::vector<StampPoint> penInWedge(float firstDegrees, float lastDegrees, float tipAngle = 0.0f) {
    std::vector<StampPoint> pen;
    for (int n = 0; n <= 16; ++n) {
        const float part = static_cast<float>(n) / 16.0f;
        const float degrees = firstDegrees + part * (lastDegrees - firstDegrees);
        const float angle = degrees * std::numbers::pi_v<float> / 180.0f;
        const float reach = 95.3f + 40.0f * std::sin(7.0f * part);
        StampPoint point{middle + reach * std::cos(angle), middle + reach * std::sin(angle)};
        point.radius = 3.1f + 6.0f * part;
        point.opacity = 0.3f + 0.5f * part;
        point.flow = 0.7f;
        point.angle = tipAngle;
        point.textureStrength = 1.0f;
        pen.push_back(point);
    }
    return pen;
}

SymmetrySetup setupOf(bool rotationOnly, std::int32_t sectors, double axisDegrees) {
    const double axis = axisDegrees * std::numbers::pi / 180.0;
    return {rotationOnly,
            sectors,
            middle,
            middle,
            static_cast<float>(std::cos(axis)),
            static_cast<float>(std::sin(axis)),
            false};
}

void paint(SymmetryStrokeRenderer& renderer, const TestBrush& with, const SymmetrySetup& setup,
           const std::vector<StampPoint>& pen) {
    seedRandom(7);
    renderer.setSymmetry(setup);
    renderer.setParameters(with.stroke, &with.brush);
    renderer.beginStroke(false);
    for (const StampPoint& point : pen) renderer.addPoint(point);
    renderer.endStroke();
}

void paint(Canvas& canvas, const TestBrush& with, const SymmetrySetup& setup,
           const std::vector<StampPoint>& pen) {
    SymmetryStrokeRenderer renderer(canvas.high.get(), canvas.low.get());
    paint(renderer, with, setup, pen);
}

Place mirroredX(Place p) {
    return {p.first, side - 1 - p.second};
}
Place mirroredY(Place p) {
    return {side - 1 - p.first, p.second};
}
Place turnedHalf(Place p) {
    return {side - 1 - p.first, side - 1 - p.second};
}
Place turnedQuarter(Place p) {
    return {side - 1 - p.second, p.first};
}
Place exchanged(Place p) {
    return {p.second, p.first};
}

struct ExactCase {
    const char* name;
    SymmetrySetup setup;
    std::vector<PlaceMap> maps;
    float wedge;  // degrees of the smallest sector between mirrors
};
std::vector<ExactCase> exactCases() {
    return {{"mirrorX", setupOf(false, 2, 0), {mirroredX}, 170.0f},
            {"mirrorY", setupOf(false, 2, 90), {mirroredY}, 80.0f},
            {"both", setupOf(false, 4, 0), {mirroredX, mirroredY, turnedHalf}, 80.0f},
            {"half turn", setupOf(true, 2, 30), {turnedHalf}, 170.0f},
            {"quarter turns", setupOf(true, 4, 11), {turnedQuarter, turnedHalf}, 80.0f},
            {"diagonal", setupOf(false, 2, 45), {exchanged}, 35.0f},
            {"both diagonals", setupOf(false, 4, 45), {exchanged, turnedHalf}, 35.0f}};
}

bool staysDry(const TestBrush& brush) {
    return !carriesPaint(brushModeOf(brush.stroke, brush.brush).mode) && !brush.brush.smearEnabled;
}

// About the axes of the grid. Masks of turned tips and pictures are walked in one direction, so
// that a trace may differ.
TEST(SymmetryStrokeRenderer, PicturesOfRoundTipsAreExactAndThoseOfOthersNearly) {
    for (const TestBrush& brush : test::brushSet())
        for (const ExactCase& which : exactCases())
            for (const float angle : {0.0f, 30.5f}) {
                if (!staysDry(brush)) continue;
                Canvas canvas;
                paint(canvas, brush, which.setup, penInWedge(8.0f, which.wedge, angle));
                EXPECT_GT(paintedPixels(canvas), 1500 * which.setup.sectors) << which.name;
                const bool exact = angle == 0.0f && brush.brush.proceduralTip;
                for (const PlaceMap& map : which.maps) {
                    const Difference difference = differenceUnder(canvas, map);
                    EXPECT_LE(exact ? difference.bytes : difference.most, exact ? 0 : 10)
                        << brush.name << ", " << which.name << ", " << angle;
                }
            }
}

// A channel between four pixels; 0 outside.
double sampled(const ilSPMemoryImg& plane, double x, double y, std::int32_t channel) {
    const double left = std::floor(x - 0.5), bottom = std::floor(y - 0.5);
    double sum = 0.0;
    for (int corner = 0; corner < 4; ++corner) {
        const double px = left + corner % 2, py = bottom + corner / 2;
        if (px < 0.0 || py < 0.0 || px >= side || py >= side) continue;
        const double weight = (1.0 - std::fabs(x - 0.5 - px)) * (1.0 - std::fabs(y - 0.5 - py));
        const auto at =
            static_cast<std::size_t>(4.0 * (py * side + px)) + static_cast<std::size_t>(channel);
        sum += weight * plane.data()[at];
    }
    return sum;
}

// The largest difference between the picture and itself, turned by an angle or mirrored about the
// line at half of it.
double differenceAfter(const ilSPMemoryImg& plane, double angle, bool mirrors) {
    const double c = std::cos(angle), s = std::sin(angle), flip = mirrors ? -1.0 : 1.0;
    double most = 0.0;
    for (std::int32_t y = 0; y < side; ++y)
        for (std::int32_t x = 0; x < side; ++x) {
            const double dx = x + 0.5 - middle, dy = flip * (y + 0.5 - middle);
            const double there =
                sampled(plane, middle + c * dx - s * dy, middle + s * dx + c * dy, 3);
            const double here = plane.data()[4 * (y * side + x) + 3];
            most = std::max(most, std::fabs(there - here));
        }
    return most;
}

TEST(SymmetryStrokeRenderer, EveryPictureIsItsOwnMirrorImageOrTurnsIntoItself) {
    const TestBrush soft = test::brushSet()[1];
    const double wholeTurn = 2.0 * std::numbers::pi;
    for (std::int32_t sectors = 2; sectors <= 64; ++sectors)
        for (const bool rotates : {false, true}) {
            if (!rotates && sectors % 2 != 0) continue;
            const double axisDegrees = 17.3 * sectors + (rotates ? 5.0 : 0.0);
            Canvas canvas;
            paint(canvas, soft, setupOf(rotates, sectors, axisDegrees), penInWedge(20.0f, 40.0f));
            const auto& plane = *canvas.high;
            const double step = wholeTurn / sectors * (rotates ? 1 : 2);
            EXPECT_LT(differenceAfter(plane, step, false), 20.0) << sectors << ", " << rotates;
            if (!rotates) {
                const double twice = 2.0 * wholeTurn * axisDegrees / 360.0;
                EXPECT_LT(differenceAfter(plane, twice, true), 20.0) << sectors;
            }
            // Half a pixel further it would show.
            EXPECT_GT(differenceAfter(plane, step + 0.5 / 95.0, false), 30.0) << sectors;
        }
}

// All around, at whole degrees and between them.
TEST(SymmetryStrokeRenderer, AnyAxisWillDo) {
    const TestBrush soft = test::brushSet()[1];
    for (int n = 0; n < 60; ++n) {
        const double axisDegrees = 6.0 * n + 0.29 * (n % 4);
        Canvas canvas;
        paint(canvas, soft, setupOf(false, 6, axisDegrees), penInWedge(20.0f, 40.0f));
        const double twice = 2.0 * axisDegrees * std::numbers::pi / 180.0;
        EXPECT_LT(differenceAfter(*canvas.high, twice, true), 20.0) << axisDegrees;
        EXPECT_GT(differenceAfter(*canvas.high, twice + 0.5 / 95.0, true), 30.0) << axisDegrees;
    }
}

// Rings about the middle.
void drawRings(const Canvas& canvas) {
    for (std::int32_t y = 0; y < side; ++y)
        for (std::int32_t x = 0; x < side; ++x) {
            const auto reach = static_cast<std::int32_t>(std::hypot(
                static_cast<float>(x) + 0.5f - middle, static_cast<float>(y) + 0.5f - middle));
            const std::uint8_t pixel[] = {static_cast<std::uint8_t>(reach * 3 % 200),
                                          static_cast<std::uint8_t>(200 - reach), 60, 200};
            std::copy_n(pixel, 4, canvas.high->data() + 4 * (y * side + x));
        }
}

TEST(SymmetryStrokeRenderer, BrushesThatCarryOrDragPaintDoSoAlikeInEveryCopy) {
    for (TestBrush& brush : test::brushSet())
        for (const ExactCase& which : exactCases()) {
            if (staysDry(brush)) continue;
            brush.brush.tipPreset = 0;
            brush.stroke.radiusJitter = 4.0f;
            brush.stroke.spacingJitter = 0.2f;
            Canvas canvas, before;
            drawRings(canvas);
            drawRings(before);
            paint(canvas, brush, which.setup, penInWedge(8.0f, which.wedge));
            int changed = 0;
            for (std::size_t n = 0; n < canvas.high->byteSize(); ++n)
                changed += canvas.high->data()[n] != before.high->data()[n];
            EXPECT_GT(changed, 2000 * which.setup.sectors) << brush.name;
            for (const PlaceMap& map : which.maps) {
                // What is carried or dragged lies on whole pixels, with a rounding of its own.
                const Difference difference = differenceUnder(canvas, map);
                EXPECT_LE(difference.most, brush.brush.smearEnabled ? 128 : 16)
                    << brush.name << ", " << which.name;
                EXPECT_LT(difference.sum / changed, 0.4) << brush.name << ", " << which.name;
            }
        }
}

// Each quarter has a colour channel of its own around the middle; the pen drags it outward.
TEST(SymmetryStrokeRenderer, EachCopyCarriesItsOwnPaint) {
    for (const int kind : {2, 4}) {
        Canvas canvas;
        const ilTile quarters[] = {flatTile(160, 160, 60, 60), flatTile(160, 100, 60, 60),
                                   flatTile(100, 100, 60, 60), flatTile(100, 160, 60, 60)};
        const std::uint8_t colors[4][4] = {
            {255, 0, 0, 255}, {0, 255, 0, 255}, {0, 0, 255, 255}, {255, 255, 255, 255}};
        for (std::size_t n = 0; n < 4; ++n)
            canvas.high->fillRegion(quarters[n], ilPixel(TypeUChar, 4, colors[n]));
        TestBrush brush = test::brushSet()[5];
        brush.stroke.brushKind = kind;
        std::vector<StampPoint> pen(12);
        for (std::size_t n = 0; n < pen.size(); ++n) {
            pen[n].x = pen[n].y = 190.0f + 6.0f * static_cast<float>(n);
            pen[n].radius = 8.0f;
        }
        SymmetryStrokeRenderer renderer(canvas.high.get(), canvas.low.get());
        paint(renderer, brush, setupOf(false, 4, 0), pen);
        EXPECT_EQ(renderer.children().size(), 4u);
        int dragged = 0, strange = 0;
        for (std::int32_t y = 0; y < side; ++y)
            for (std::int32_t x = 0; x < side; ++x) {
                const std::uint8_t* const pixel = canvas.high->data() + 4 * (y * side + x);
                const std::size_t quarter = x >= 160 ? (y >= 160 ? 0 : 1) : (y < 160 ? 2 : 3);
                const bool outside = !quarters[quarter].contains(flatTile(x, y, 1, 1));
                dragged += outside && pixel[3] > 20;
                for (std::size_t c = 0; c < 3; ++c)
                    strange += colors[quarter][c] == 0 && pixel[c] != 0;
            }
        EXPECT_GT(dragged, 400) << kind;
        EXPECT_EQ(strange, 0) << kind;
    }
}

TEST(SymmetryStrokeRenderer, SeparateChildrenShareTheRandomChangesOfTheStroke) {
    TestBrush jittering = test::brushSet()[9];
    jittering.stroke.spacingJitter = 0.3f;
    const ExactCase both = exactCases()[2];
    Canvas canvas;
    SymmetryStrokeRenderer renderer(canvas.high.get(), canvas.low.get());
    renderer.setSeparateRenderers(true);
    std::vector<int> random;
    for (int n = 0; n < 2; ++n) {
        for (const auto& plane : {canvas.high, canvas.low})
            plane->fillRegion(plane->box(), ilPixel(TypeUChar, 4));
        paint(renderer, jittering, both.setup, penInWedge(8.0f, 80.0f));
        EXPECT_EQ(renderer.children().size(), 4u);
        EXPECT_GT(paintedPixels(canvas), 6000);
        for (const PlaceMap& map : both.maps) EXPECT_LE(differenceUnder(canvas, map).most, 10);
        random.push_back(randomValue());
    }
    EXPECT_EQ(random[0], random[1]);
    EXPECT_NE(random[0], randomValue());
}

// Places of round dots, as many as were painted.
int dotsAt(const Canvas& canvas, const std::vector<Place>& places) {
    int dots = 0;
    for (const auto& [x, y] : places) dots += canvas.high->data()[4 * (y * side + x) + 3] > 100;
    return dots;
}

TEST(SymmetryStrokeRenderer, ATapLeavesADotInEveryCopyOnce) {
    for (const bool separate : {false, true}) {
        Canvas canvas;
        SymmetryStrokeRenderer renderer(canvas.high.get(), canvas.low.get());
        renderer.setSeparateRenderers(separate);
        int tiles = 0;
        renderer.setTileCallback([&](const ilTile&) { ++tiles; });
        StampPoint tap{200.0f, 180.0f, 6.0f};
        paint(renderer, test::brushSet()[0], setupOf(false, 4, 0), {tap});
        EXPECT_EQ(tiles, 4) << separate;
        EXPECT_EQ(dotsAt(canvas, {{200, 180}, {119, 180}, {200, 139}, {119, 139}}), 4) << separate;
        // Beside the path, too.
        renderer.beginStroke(false);
        tap.x = 240.0f;
        renderer.addPointNoSmoothing(tap);
        renderer.endStroke();
        EXPECT_EQ(tiles, 8) << separate;
        EXPECT_EQ(dotsAt(canvas, {{240, 180}, {79, 180}, {240, 139}, {79, 139}}), 4) << separate;
    }
}

struct Timers {
    static inline int running = 0;
    static inline HostTimerCallback callback = nullptr;
    static inline void* user = nullptr;
    Timers() {
        hostCallTable().startTimer = [](std::int32_t, HostTimerCallback call, void* with) {
            ++running;
            callback = call;
            user = with;
            return HostTimerId{1};
        };
        hostCallTable().stopTimer = [](HostTimerId) { --running; };
    }
    ~Timers() {
        hostCallTable().startTimer = nullptr;
        hostCallTable().stopTimer = nullptr;
    }
    static void fire() {
        --running;
        callback(user);
    }
};

TEST(SymmetryStrokeRenderer, ARestingAirbrushSpraysInEveryCopyByOneTimer) {
    for (const bool separate : {false, true}) {
        const Timers timers;
        Canvas canvas;
        SymmetryStrokeRenderer renderer(canvas.high.get(), canvas.low.get());
        renderer.setSeparateRenderers(separate);
        TestBrush brush = test::brushSet()[0];
        brush.stroke.airbrush = true;
        brush.stroke.interpolationKind = 0;
        int tiles = 0;
        renderer.setTileCallback([&](const ilTile&) { ++tiles; });
        renderer.setSymmetry(setupOf(true, 5, 0.0));
        renderer.setParameters(brush.stroke, &brush.brush);
        renderer.beginStroke(false);
        renderer.addPoint({200.0f, 180.0f, 6.0f});
        renderer.addPoint({220.0f, 180.0f, 6.0f});
        EXPECT_EQ(Timers::running, 1);
        Timers::fire();  // the pen rests
        for (int tick = 1; tick <= 3; ++tick) {
            tiles = 0;
            Timers::fire();
            EXPECT_EQ(tiles, 5) << separate;
        }
        renderer.endStroke();
        EXPECT_EQ(Timers::running, 0);
    }
}

TEST(SymmetryStrokeRenderer, SettingsHoldFromTheNextStrokeAndGoToAClone) {
    const TestBrush brush = test::brushSet()[1];
    const SymmetrySetup six = setupOf(false, 6, 20.0);
    Canvas expected;
    paint(expected, brush, six, penInWedge(30.0f, 70.0f));

    Canvas canvas, other;
    SymmetryStrokeRenderer renderer(canvas.high.get(), canvas.low.get());
    paint(renderer, brush, setupOf(true, 9, 0.0), penInWedge(30.0f, 70.0f));
    renderer.setSymmetry(six);
    const auto clone = renderer.clone();
    const auto stamps = std::make_shared<StampRenderer>(other.high.get(), other.low.get());
    stamps->setParameters(&brush.brush);
    clone->setStampRenderer(stamps);
    seedRandom(7);
    clone->beginStroke(false);
    for (const StampPoint& point : penInWedge(30.0f, 70.0f)) clone->addPoint(point);
    clone->endStroke();
    EXPECT_EQ(std::memcmp(other.high->data(), expected.high->data(), other.high->byteSize()), 0);

    for (const auto& plane : {canvas.high, canvas.low})
        plane->fillRegion(plane->box(), ilPixel(TypeUChar, 4));
    paint(renderer, brush, six, penInWedge(30.0f, 70.0f));
    EXPECT_EQ(std::memcmp(canvas.high->data(), expected.high->data(), canvas.high->byteSize()), 0);

    // Without a stamp renderer points are refused.
    renderer.setStampRenderer(nullptr);
    renderer.beginStroke(false);
    EXPECT_FALSE(renderer.addPoint({200.0f, 180.0f, 6.0f}));
    renderer.endStroke();
}

}  // namespace
}  // namespace brushwork::npc
