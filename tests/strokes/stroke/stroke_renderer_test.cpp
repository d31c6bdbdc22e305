#include "strokes/stroke/stroke_renderer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "brushwork/brush_texture_parameters.h"
#include "foundation/services/random_source.h"
#include "foundation/tasks/task_pool.h"
#include "image/filter/kernel_recipe.h"
#include "image/smart/il_smart_image.h"
#include "strokes/stroke/brush_set.h"
#include "strokes/stroke/pen_strokes.h"
#include "strokes/stroke/pickup_buffers.h"
#include "strokes/stroke/stroke_replay.h"
#include "support/allocation_count.h"

namespace brushwork::npc {
namespace {

using test::PenStroke;
using test::TestBrush;
using Bytes = std::vector<std::uint8_t>;

struct Way {
    int workers = 1;
    bool cached = true;
    VectorLevel level = VectorLevel::Avx2;
};

// A layer of two planes with coloured stripes, and what is painted on it.
class Canvas {
  public:
    explicit Canvas(std::int32_t side)
        : box_(flatTile(-64, -64, side, side)),
          high(new ilSmartImage(ilPixel(TypeUChar, 4))),
          low(new ilSmartImage(ilPixel(TypeUChar, 4))) {
        for (std::int32_t n = 0; n * 48 < side; ++n) {
            const auto tone = static_cast<std::uint8_t>(40 + 37 * n % 160);
            const std::uint8_t stripe[] = {tone, static_cast<std::uint8_t>(200 - tone), 90, 200};
            high->fillRegion(flatTile(-64 + 48 * n, -20, 24, side - 100),
                             ilPixel(TypeUChar, 4, stripe));
        }
    }

    [[nodiscard]] Bytes bytes() const {
        Bytes all = planeBytes(*high);
        const Bytes more = planeBytes(*low);
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }
    [[nodiscard]] const ilTile& box() const { return box_; }

  private:
    [[nodiscard]] Bytes planeBytes(ilSmartImage& plane) const {
        Bytes bytes(static_cast<std::size_t>(box_.nx) * static_cast<std::size_t>(box_.ny) * 4);
        EXPECT_EQ(plane.readRegion(box_, bytes.data(), box_), 0);
        return bytes;
    }

    ilTile box_;

  public:
    const Ref<ilSmartImage> high, low;
};

void paint(Canvas& canvas, const TestBrush& with, const std::vector<PenStroke>& strokes,
           const Way& way, TileCallback callback = {}) {
    TaskPool::setDefaultSize(way.workers);
    const test::AtLevel forced(way.level);
    seedRandom(4711);
    StrokeRenderer renderer(canvas.high.get(), canvas.low.get());
    renderer.getStampRenderer()->setCacheEnabled(way.cached);
    renderer.setParameters(with.stroke, &with.brush);
    renderer.setTileCallback(std::move(callback));
    for (const PenStroke& stroke : strokes) {
        renderer.beginStroke(false);
        for (const StrokePointData& point : stroke)
            renderer.addPoint(replayedPoint(point, with.brush, {0.8f, 20.0f, 1.0f, 0.9f, 1.0f}));
        renderer.endStroke();
    }
    TaskPool::setDefaultSize(0);
}

// Paints the same in every way and compares; answers how many bytes differ from the bare canvas.
std::size_t paintAllWays(const TestBrush& with, const std::vector<PenStroke>& strokes, int side) {
    const Bytes bare = Canvas(side).bytes();
    Bytes expected;
    for (const Way way : {Way{1, true, VectorLevel::Avx2}, Way{2, true, VectorLevel::Avx2},
                          Way{8, false, VectorLevel::Avx2}, Way{1, false, VectorLevel::Scalar},
                          Way{8, true, VectorLevel::Sse2}}) {
        Canvas canvas(side);
        paint(canvas, with, strokes, way);
        const Bytes got = canvas.bytes();
        if (expected.empty()) expected = got;
        EXPECT_TRUE(got == expected) << with.name << ": " << way.workers << " workers, cache "
                                     << way.cached << ", " << vectorLevelName(way.level);
    }
    std::size_t changed = 0;
    for (std::size_t n = 0; n < bare.size(); ++n) changed += expected[n] != bare[n];
    return changed;
}

TEST(StrokeRenderer, SameEventsGiveTheSameBytesHoweverTheyArePainted) {
    for (const TestBrush& brush : test::brushSet()) {
        const std::size_t changed = paintAllWays(brush, test::drawnStrokes(), 420);
        EXPECT_GT(changed, 3000u) << brush.name;
    }
}

TEST(StrokeRenderer, TheRecordedSessionToo) {
    const auto strokes = test::recordedStrokes(6);
    if (strokes.empty()) GTEST_SKIP() << "no BRUSHWORK_CORPUS";
    for (const TestBrush& brush : test::brushSet())
        EXPECT_GT(paintAllWays(brush, strokes, 900), 1000u) << brush.name;
}

TEST(StrokeRenderer, TilesThatItTellsOfCoverEveryChange) {
    for (const TestBrush& brush : test::brushSet()) {
        Canvas canvas(420);
        const Bytes before = canvas.bytes();
        const ilTile& box = canvas.box();
        std::vector<bool> told(before.size() / 8);
        paint(canvas, brush, test::drawnStrokes(), {}, [&](const ilTile& tile) {
            const ilTile inside = intersection(tile, box);
            for (std::int32_t y = inside.y; y < inside.endY(); ++y)
                for (std::int32_t x = inside.x; x < inside.endX(); ++x)
                    told[static_cast<std::size_t>((y - box.y) * box.nx + x - box.x)] = true;
        });
        const Bytes after = canvas.bytes();
        std::size_t missed = 0;
        for (std::size_t n = 0; n < before.size(); ++n)
            missed += after[n] != before[n] && !told[n / 4 % told.size()];
        EXPECT_EQ(missed, 0u) << brush.name;
    }
}

// With no mode that mixes, a pixel's coverage only grows along a line: a seam or a gap would show
// as a dent along the line's middle.
// Who is told of a stamp may keep what is there then, by sharing the pages: later stamps don't show
// in it.
TEST(StrokeRenderer, WhatACallbackKeepsStaysAsItWas) {
    for (const TestBrush& with : test::brushSet()) {
        Canvas canvas(400);
        const std::size_t bytes = static_cast<std::size_t>(400) * 400 * 4;
        std::vector<std::pair<Ref<ilSmartImage>, Bytes>> kept;
        paint(canvas, with, test::drawnStrokes(), {}, [&](const ilTile&) {
            if (kept.size() == 40) return;
            // A child keeps the pages that it has looked up.
            const auto copy = makeRef<ilSmartImage>(canvas.high.get());
            Bytes looked(bytes);
            copy->readRegion(canvas.box(), looked.data(), canvas.box());
            Bytes now(bytes);
            canvas.high->readRegion(canvas.box(), now.data(), canvas.box());
            kept.emplace_back(copy, std::move(now));
        });
        ASSERT_FALSE(kept.empty());
        for (const auto& [copy, then] : kept) {
            Bytes now(bytes);
            copy->readRegion(canvas.box(), now.data(), canvas.box());
            ASSERT_TRUE(now == then) << with.name;
        }
    }
}

// The walk takes nothing from the heap, and stamps on pages that are there take nothing either:
// what a point costs doesn't grow with its stamps.
TEST(StrokeRenderer, StampsAllocateNothing) {
    const auto taken = [](float way) {
        TestBrush with = test::brushSet()[0];
        with.brush.radiusHigh = 4.0f;
        with.stroke.interpolationKind = 0;
        Canvas canvas(400);
        StrokeRenderer renderer(canvas.high.get(), canvas.low.get());
        renderer.setParameters(with.stroke, &with.brush);
        std::size_t stamps = 0;
        renderer.setTileCallback([&](const ilTile&) { ++stamps; });
        const auto point = [](float x) {
            return StampPoint{x, 20.0f, 4.0f, 0.5f, 1.0f, 0.0f, 1.0f, 1.0f, 1.0f};
        };
        std::uint64_t least = UINT64_MAX;
        for (int turn = 0; turn < 3; ++turn) {  // the first fills the cache
            renderer.beginStroke(false);
            renderer.addPoint(point(8.0f));
            stamps = 0;
            const std::uint64_t before = test::allocations();
            renderer.addPoint(point(8.0f + way));
            least = std::min(least, test::allocations() - before);
            renderer.endStroke();
        }
        return std::pair(stamps, least);
    };
    const auto few = taken(10.0f), many = taken(100.0f);
    EXPECT_GT(many.first, 5 * few.first);
    EXPECT_EQ(many.second, few.second);
    EXPECT_LT(many.second, 20u);
}

TEST(StrokeRenderer, ALineHasNoGapsAcrossPages) {
    for (const float radius : {0.7f, 3.0f, 7.9f, 8.1f, 15.9f, 16.1f, 63.0f, 64.5f}) {
        Canvas canvas(700);
        TestBrush brush = test::brushSet()[0];
        brush.brush.radiusLow = brush.brush.radiusHigh = radius;
        brush.brush.opacityLow = brush.brush.opacityHigh = 1.0f;
        brush.stroke.interpolationKind = 0;
        canvas.high->fillRegion(canvas.box(), ilPixel(TypeUChar, 4));
        paint(canvas, brush, {{{10.0f, 127.5f, 1.0f}, {200.0f, 127.5f, 1.0f}, {390, 127.5f, 1}}},
              {});
        for (std::int32_t x = 40; x < 330; ++x) {
            const std::uint32_t here = canvas.high->getPixel(x, 127) >> 24;
            ASSERT_GE(here, radius < 1.0f ? 60u : 250u) << radius << " at " << x;
        }
    }
}

TEST(BrushMode, FollowsKindPaintFactorsAndColour) {
    BrushParameters brush = BrushParameters::defaults();
    StrokeParameters stroke;
    const auto mode = [&](int kind) {
        stroke.brushKind = kind;
        return static_cast<int>(brushModeOf(stroke, brush).mode);
    };
    const int expected[] = {0, 25, 27, 27, 26, 0, 29, 24, 32, 28, 0};
    for (int kind = 0; kind <= 10; ++kind) EXPECT_EQ(mode(kind), expected[kind]) << kind;
    EXPECT_FALSE(brushModeOf(stroke, brush).inWhite);
    stroke.flowJitter = 0.01f;
    EXPECT_EQ(mode(0), 32);
    brush.colorObject = test::dottedTip(4);
    EXPECT_EQ(mode(0), 30);
    stroke.isMarker = true;
    EXPECT_EQ(mode(4), 25);
    brush.color = {0.001f, 0.0f, -1.0f, 0.0f};
    EXPECT_EQ(mode(4), 32);
    EXPECT_TRUE(brushModeOf(stroke, brush).inWhite);
    EXPECT_EQ(packedColor({1.0f, 0.5f, NAN, 2.0f}), 0xFF0080FFu);
}

TEST(BrushMode, MarkersStandCloserWhenSmall) {
    BrushParameters brush;
    StrokeParameters stroke;
    stroke.spacing = 2.0f;
    const auto scale = [&](float radius) {
        brush.radiusHigh = radius;
        return spacingScaleOf(stroke, brush);
    };
    EXPECT_EQ(scale(5.0f), 2.0f);
    stroke.isMarker = true;
    const float expected[][2] = {{7.9f, 0.6f}, {8, 0.6f}, {14, 1.1f},   {20, 1.6f},
                                 {30, 1.8f},   {40, 2},   {40.1f, 1.6f}};
    for (const auto& [radius, value] : expected) EXPECT_FLOAT_EQ(scale(radius), value) << radius;
}

TEST(StrokeRenderer, ATapIsOneDotAndAMovedPenLaysNoExtraOne) {
    Canvas canvas(300);
    StrokeRenderer renderer(canvas.high.get(), canvas.low.get());
    renderer.parameters()->interpolationKind = 0;
    std::vector<ilTile> tiles;
    renderer.setTileCallback([&](const ilTile& tile) { tiles.push_back(tile); });
    renderer.beginStroke(true);
    renderer.beginStroke(false);
    EXPECT_TRUE(renderer.getFlagAtBegin());
    StampPoint point{10.9f, 20.3f, 3.0f};
    EXPECT_FALSE(renderer.addPoint(point));
    EXPECT_FALSE(renderer.addPoint({NAN, 20.0f, 3.0f}));
    EXPECT_TRUE(tiles.empty());
    renderer.endStroke();
    renderer.endStroke();
    ASSERT_EQ(tiles.size(), 1u);
    EXPECT_EQ(tiles[0], flatTile(6, 16, 9, 9));

    tiles.clear();
    renderer.beginStroke(false);
    renderer.addPoint(point);
    point.x += 40.0f;
    EXPECT_TRUE(renderer.addPoint(point));
    const auto count = tiles.size();
    EXPECT_GT(count, 10u);
    renderer.endStroke();
    EXPECT_EQ(tiles.size(), count);
    renderer.setStampRenderer({});
    renderer.beginStroke(false);
    EXPECT_FALSE(renderer.addPoint(point));
    renderer.endStroke();
}

// The host's timers, fired by hand.
struct Timers {
    static inline std::vector<std::pair<std::int32_t, std::int32_t>> running;  // id, milliseconds
    static inline HostTimerCallback callback = nullptr;
    static inline void* argument = nullptr;

    Timers() {
        running.clear();
        hostCallTable().startTimer = [](std::int32_t ms, HostTimerCallback call, void* with) {
            static HostTimerId next = 0;
            callback = call;
            argument = with;
            running.emplace_back(++next, ms);
            return next;
        };
        hostCallTable().stopTimer = [](HostTimerId id) {
            std::erase_if(running, [id](const auto& timer) { return timer.first == id; });
        };
    }
    ~Timers() {
        hostCallTable().startTimer = nullptr;
        hostCallTable().stopTimer = nullptr;
    }
    static void fire() {
        running.clear();
        callback(argument);
    }
};

TEST(StrokeRenderer, ARestingAirbrushGoesOnUntilTheStrokeEnds) {
    const Timers timers;
    Canvas canvas(300);
    StrokeRenderer renderer(canvas.high.get(), canvas.low.get());
    renderer.parameters()->airbrush = true;
    int stamps = 0;
    renderer.setTileCallback([&](const ilTile&) { ++stamps; });
    renderer.beginStroke(false);
    StampPoint point{10.0f, 20.0f, 3.0f};
    renderer.addPoint(point);
    EXPECT_TRUE(Timers::running.empty());
    point.x = 60.0f;
    renderer.addPoint(point);
    ASSERT_EQ(Timers::running.size(), 1u);
    EXPECT_EQ(Timers::running[0].second, 40);
    stamps = 0;
    for (int n = 0; n < 4; ++n) {
        Timers::fire();
        ASSERT_EQ(Timers::running.size(), 1u);
        EXPECT_EQ(Timers::running[0].second, 10);
        EXPECT_EQ(stamps, n);  // the first one only ends the wait
    }
    EXPECT_EQ(renderer.airbrush().repeatCount(), 3u);
    point.x = 90.0f;
    renderer.addPoint(point);
    ASSERT_EQ(Timers::running.size(), 1u);
    EXPECT_EQ(Timers::running[0].second, 40);
    EXPECT_EQ(renderer.airbrush().repeatCount(), 0u);
    renderer.endStroke();
    EXPECT_TRUE(Timers::running.empty());
    renderer.setHoldDelay(0);
    renderer.beginStroke(false);
    renderer.addPoint(point);
    point.x = 10.0f;
    EXPECT_TRUE(renderer.addPoint(point));
    EXPECT_TRUE(Timers::running.empty());
}

// The colourless marker keeps its wet felt only if asked to.
TEST(StrokeRenderer, SourcesOfAStrokeStayOnlyIfKept) {
    Canvas canvas(300);
    StrokeRenderer renderer(canvas.high.get(), canvas.low.get());
    renderer.parameters()->brushKind = 4;
    renderer.parameters()->clearPickupBuffers = false;
    const auto stroke = [&] {
        renderer.beginStroke(false);
        renderer.addPoint({10.0f, 40.0f, 9.0f});
        renderer.addPoint({90.0f, 40.0f, 9.0f});
        renderer.endStroke();
        return renderer.getStampRenderer()->source().high;
    };
    const auto first = stroke();
    ASSERT_TRUE(first);
    EXPECT_EQ(first->sizeX(), 22);
    EXPECT_FALSE(stroke() == first);
    renderer.setKeepSource(true);
    const auto kept = stroke();
    EXPECT_TRUE(stroke() == kept);
    renderer.parameters()->brushKind = 0;
    EXPECT_FALSE(stroke());
}

// What lies under a resting smear brush stays what it is, and nothing is torn out.
TEST(StrokeRenderer, ASmearThatStandsStillChangesNothingSolid) {
    Canvas canvas(300);
    const std::uint8_t pixel[] = {10, 20, 30, 255};
    canvas.high->fillRegion(canvas.box(), ilPixel(TypeUChar, 4, pixel));
    const Bytes before = canvas.bytes();
    BrushParameters brush = BrushParameters::defaults();
    brush.smearEnabled = true;
    TestBrush smear{"smear", brush, {}};
    smear.brush.radiusLow = smear.brush.radiusHigh = 12.0f;
    int stamps = 0;
    paint(canvas, smear, {{{50.0f, 50.0f, 1.0f}}}, {}, [&](const ilTile&) { ++stamps; });
    EXPECT_EQ(stamps, 1);
    const Bytes after = canvas.bytes();
    for (std::size_t n = 0; n < before.size() / 2; ++n) ASSERT_NEAR(after[n], before[n], 1) << n;
}

// Smudging where all is one colour changes nothing, at any size and turn: what is carried lies
// under the whole stamp, and where it was picked up.
TEST(StrokeRenderer, PaintThatIsCarriedLiesUnderTheWholeStamp) {
    for (const float angle : {0.0f, 30.0f, 45.0f, 200.0f})
        for (const float radius : {2.0f, 6.3f, 20.0f}) {
            Canvas canvas(300);
            const std::uint8_t left[] = {250, 20, 30, 255};
            const std::uint8_t right[] = {10, 240, 30, 255};
            canvas.high->fillRegion(canvas.box(), ilPixel(TypeUChar, 4, left));
            canvas.high->fillRegion(flatTile(50, -64, 250, 300), ilPixel(TypeUChar, 4, right));
            const Bytes before = canvas.bytes();
            StrokeRenderer renderer(canvas.high.get(), canvas.low.get());
            TestBrush smudge = test::brushSet()[0];
            smudge.stroke.brushKind = 2;
            smudge.brush.radiusHigh = 20.0f;
            renderer.setParameters(smudge.stroke, &smudge.brush);
            renderer.beginStroke(false);
            StampPoint point{50.25f, 50.25f, radius};
            point.angle = angle;
            renderer.addPoint(point);
            renderer.endStroke();
            const Bytes after = canvas.bytes();
            for (std::size_t n = 0; n < before.size() / 2; ++n)
                ASSERT_NEAR(after[n], before[n], 1) << angle << ", " << radius << " at " << n;
        }
}

TEST(StrokeRenderer, ATextureNarrowsTheMaskWhereItLies) {
    const auto grain = makeRef<ilSPMemoryImg>(64, 64, 1);
    for (int n = 0; n < 64 * 64; ++n)
        grain->data()[n] = static_cast<std::uint8_t>(n / 64 % 2 ? 255 : 0);
    BrushParameters brush = BrushParameters::defaults();
    brush.textureEnabled = true;
    brush.texture = makeRef<BrushTextureParameters>();
    brush.texture->offsetY = 1;
    brush.textureImage = grain;
    for (const bool enabled : {true, false}) {
        Canvas canvas(300);
        canvas.high->fillRegion(canvas.box(), ilPixel(TypeUChar, 4));
        brush.texture->enabled = enabled;
        StampRenderer renderer(canvas.high.get(), canvas.low.get());
        renderer.setParameters(&brush);
        renderer.begin(BlendModeId::Normal);
        renderer.renderPoint({30.0f, 30.0f, 10.0f});
        renderer.end();
        for (std::int32_t y = 24; y < 36; ++y)
            EXPECT_NEAR(canvas.high->getPixel(30, y) >> 24, enabled && (y + 1) % 2 == 0 ? 0 : 253,
                        enabled && (y + 1) % 2 == 0 ? 0 : 2)
                << y;
    }
}

TEST(StrokeReplay, RunsStraightAndPutsTheParametersBack) {
    Canvas canvas(300);
    StrokeRenderer renderer(canvas.high.get(), canvas.low.get());
    renderer.parameters()->interpolationKind = 1;
    ilTile touched{};
    renderer.setTileCallback([&](const ilTile& tile) { touched = unionOf(touched, tile); });
    const StrokePointData points[] = {{20.0f, 20.0f, -3.0f}, {80.0f, 20.0f, 7.0f}, {80, 90, 1}};
    EXPECT_FALSE(replayStroke(renderer, {}));
    EXPECT_TRUE(replayStroke(renderer, points));
    EXPECT_EQ(renderer.parameters()->interpolationKind, 1);
    EXPECT_FALSE(renderer.begun());
    EXPECT_GT(touched.endY(), 90);
    EXPECT_LE(touched.endX(), 80 + 13);
}

}  // namespace
}  // namespace brushwork::npc
