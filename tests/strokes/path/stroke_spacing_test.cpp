// Where stamps stand: against a walk in double, along drawn and recorded paths.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <numbers>
#include <random>
#include <vector>

#include "brushwork/pressure_filter.h"
#include "strokes/path/stroke_interpolator.h"
#include "support/test_seed.h"

namespace brushwork {
namespace {

double ruleStep(const StampPoint& stamp, double scale) {
    const double r = static_cast<double>(stamp.radius) * static_cast<double>(stamp.scaleY) *
                     static_cast<double>(stamp.scaleY) / static_cast<double>(stamp.scaleX);
    const double q = std::max(r, 1.05);
    const double percent = r <= 1.05 ? 75.0 : r >= 20.0 ? 30.0 : 75.0 - (r - 1.05) * 2.37467;
    const double part = q < 4.0 ? 0.5 : q < 20.0 ? (q - 4.0) / 32.0 + 0.5 : 1.0;
    return std::max(scale * percent * part * q / 100.0, 0.125);
}

// Follows a polyline by arc length, to tell where on it a stamp must be.
class ArcWalk {
  public:
    void addPoint(double x, double y) {
        if (count_++ > 0) {
            segmentStart_ = segmentEnd_;
            segmentEnd_ += std::hypot(x - x_, y - y_);
        }
        fromX_ = x_, fromY_ = y_;
        x_ = x, y_ = y;
    }
    // Where the next stamp after a step lies; a step that shrank stops at the corner that it left
    // behind.
    double next(double step) {
        arc_ = started_ ? std::max(arc_ + step, segmentStart_) : 0.0;
        started_ = true;
        return arc_;
    }
    [[nodiscard]] double rest() const { return segmentEnd_ - arc_; }
    // Rounding adds up; the walk goes on from where the stamp really is. Answers how far it is from
    // the line.
    double settle(const StampPoint& stamp) {
        const double length = segmentEnd_ - segmentStart_;
        if (!(length > 0)) return 0.0;
        const double dx = (x_ - fromX_) / length, dy = (y_ - fromY_) / length;
        const double x = static_cast<double>(stamp.x) - fromX_;
        const double y = static_cast<double>(stamp.y) - fromY_;
        arc_ = segmentStart_ + x * dx + y * dy;
        return std::abs(x * dy - y * dx);
    }
    [[nodiscard]] double arc() const { return arc_; }

  private:
    int count_ = 0;
    bool started_ = false;
    double x_ = 0, y_ = 0, fromX_ = 0, fromY_ = 0;
    double segmentStart_ = 0, segmentEnd_ = 0, arc_ = 0;
};

using Path = std::vector<StampPoint>;

// What one step may lose in rounding, in pixels, as far out as the path goes.
double roundingOf(const Path& path) {
    float farthest = 0.0f;
    for (const StampPoint& p : path) farthest = std::max({farthest, std::abs(p.x), std::abs(p.y)});
    return static_cast<double>(farthest) * 1.5 / (1 << 23);
}

// Every stamp on the path, within one per cent of a step from where the rule wants it, and none
// left out. Roundings add up along a line, aside at once and along it at the corner at its end,
// from which the walk goes on exactly.
void expectEvenWalk(const Path& path, double scale) {
    StrokeParameters parameters;
    parameters.interpolationKind = 0;
    npc::StrokeInterpolator interpolator;
    interpolator.begin(&parameters);
    interpolator.setSpacingScale(static_cast<float>(scale));
    ArcWalk walk;
    StampPoint last = path.front(), stamp;
    last.radius = std::clamp(last.radius, 0.0625f, 511.0f);
    const double rounding = roundingOf(path);
    std::size_t count = 0, onLine = 0;
    for (std::size_t i = 0; i < path.size(); ++i) {
        StampPoint point = path[i];
        interpolator.addPoint(point);
        bool corner = true;
        walk.addPoint(static_cast<double>(point.x), static_cast<double>(point.y));
        while (interpolator.nextStamp(stamp)) {
            const double step = ruleStep(last, scale);
            const double wanted = walk.next(step);
            const double aside = walk.settle(stamp);
            const double drift = rounding * static_cast<double>(onLine + 1);
            ASSERT_LE(std::abs(walk.arc() - wanted), 0.01 * step + (corner ? drift : rounding))
                << "point " << i << ", stamp " << count;
            ASSERT_LE(aside, drift) << "point " << i << ", stamp " << count;
            onLine = corner ? 1 : onLine + 1;
            corner = false;
            last = stamp;
            ++count;
        }
        if (i > 0) {
            ASSERT_LT(walk.rest(), ruleStep(last, scale) * 1.01) << i;
        }
    }
    EXPECT_GT(count, 10u);
}

StampPoint sized(double x, double y, double radius) {
    StampPoint point;
    point.x = static_cast<float>(x);
    point.y = static_cast<float>(y);
    point.radius = static_cast<float>(radius);
    return point;
}

TEST(StrokeSpacing, KeepsTheRuleAlongLinesCornersAndCurves) {
    for (const double radius : {0.0625, 0.9, 2.0, 3.9, 7.0, 19.5, 64.0, 511.0}) {
        SCOPED_TRACE(radius);
        const double unit = std::max(radius, 1.0);
        Path line, corners, spiral, growing;
        for (int i = 0; i <= 40; ++i) {
            line.push_back(sized(100 + 0.8 * unit * i, 70 + 0.6 * unit * i, radius));
            corners.push_back(sized(500 + unit * (i % 4 < 2 ? 0 : 3), 10 + i * unit / 2, radius));
        }
        for (int i = 0; i <= 400; ++i) {
            const double a = i * std::numbers::pi / 40;
            const double r = unit * (1 + i * 0.02);
            spiral.push_back(sized(900 + r * std::cos(a), 800 + r * std::sin(a), radius));
            growing.push_back(sized(900 + r * std::cos(a), 800 + r * std::sin(a),
                                    radius * (1.2 + std::sin(i * 0.3))));
        }
        for (const double scale : {1.0, 0.25, 2.5}) {
            expectEvenWalk(line, scale);
            expectEvenWalk(corners, scale);
            expectEvenWalk(spiral, scale);
            expectEvenWalk(growing, scale);
        }
    }
}

TEST(StrokeSpacing, KeepsTheRuleOnRandomPaths) {
    const unsigned seed = brushwork::test::testSeed();
    SCOPED_TRACE(::testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    const auto between = [&](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    for (int round = 0; round < 60; ++round) {
        const double size = std::exp(between(-2.0, 5.0));
        double x = 1000, y = 1000;
        Path path;
        for (int i = 0; i < 150; ++i) {
            path.push_back(sized(x, y, size * between(0.5, 2.0)));
            path.back().scaleY = static_cast<float>(between(0.4, 1.0));
            path.back().scaleX = static_cast<float>(between(0.7, 1.0));
            if (random() % 8 == 0) continue;  // the pen rests
            x = std::clamp(x + between(-2, 2) * size, 0.0, 2000.0);
            y = std::clamp(y + between(-2, 2) * size, 0.0, 2000.0);
        }
        expectEvenWalk(path, between(0.3, 1.5));
    }
}

struct PenEvent {
    double time, x, y, pressure;
};

std::vector<PenEvent> drawnSession() {
    std::mt19937 random(31);
    std::uniform_real_distribution<double> noise(-0.4, 0.4);
    std::vector<PenEvent> events;
    for (int i = 0; i < 1500; ++i) {
        const double a = i * 0.02;
        const double pressure = std::max(0.0, std::sin(i * 0.01) * 0.6 + 0.1);
        events.push_back({i * 0.008, 500 + 300 * std::cos(a * 1.7) + noise(random),
                          400 + 250 * std::sin(a * 2.3) + noise(random), pressure});
    }
    return events;
}

std::vector<PenEvent> recordedSession() {
    std::vector<PenEvent> events;
    const char* corpus = std::getenv("BRUSHWORK_CORPUS");
    if (corpus == nullptr) return events;
    std::ifstream file(std::filesystem::path(corpus) / "pen-events" / "painting30sec.dat");
    PenEvent event{};
    while (file >> event.time >> event.x >> event.y >> event.pressure) events.push_back(event);
    return events;
}

// The strokes of a session: pressure above 0, through the filter, as radius and opacity.
std::vector<Path> strokesOf(const std::vector<PenEvent>& events, double largest) {
    PressureFilter filter(0, 1024);
    std::vector<Path> strokes;
    bool down = false;
    for (const PenEvent& event : events) {
        const float pressure =
            filter.filter(static_cast<std::int32_t>(std::lround(event.pressure * 1024)));
        if (event.pressure > 0 && !down) strokes.emplace_back();
        down = event.pressure > 0;
        if (!down) continue;
        strokes.back().push_back(
            sized(event.x, event.y, largest * (0.3 + 0.7 * static_cast<double>(pressure))));
        strokes.back().back().opacity = pressure;
    }
    return strokes;
}

void expectWholeStrokes(const std::vector<Path>& strokes, std::size_t leastStamps) {
    std::size_t stamps = 0;
    for (const Path& path : strokes) {
        if (path.size() < 3) continue;
        expectEvenWalk(path, 0.3);
        StrokeParameters parameters;  // smoothed
        npc::StrokeInterpolator interpolator;
        interpolator.begin(&parameters);
        StampPoint last, stamp;
        bool any = false;
        float left = 1e9f, right = -1e9f, lowest = 1e9f, highest = -1e9f;
        for (const StampPoint& each : path) {
            StampPoint point = each;
            left = std::min(left, point.x), right = std::max(right, point.x);
            lowest = std::min(lowest, point.y), highest = std::max(highest, point.y);
            interpolator.addPoint(point);
            while (interpolator.nextStamp(stamp)) {
                ASSERT_TRUE(std::isfinite(stamp.x) && std::isfinite(stamp.y));
                ASSERT_TRUE(stamp.opacity >= -1e-6f && stamp.opacity <= 1.0f);
                if (any) {
                    // A gap would be longer than the step, whatever way the path bends.
                    ASSERT_LE(std::hypot(static_cast<double>(stamp.x - last.x),
                                         static_cast<double>(stamp.y - last.y)),
                              ruleStep(last, 1.0) * 1.01);
                } else {
                    ASSERT_EQ(path[0].x, stamp.x);
                    ASSERT_EQ(path[0].y, stamp.y);
                }
                // Inertia swings out a little, never far.
                ASSERT_GT(stamp.x, left - 12.0f);
                ASSERT_LT(stamp.x, right + 12.0f);
                ASSERT_GT(stamp.y, lowest - 12.0f);
                ASSERT_LT(stamp.y, highest + 12.0f);
                last = stamp;
                any = true;
                ++stamps;
            }
        }
    }
    EXPECT_GT(stamps, leastStamps);
    ::testing::Test::RecordProperty("stamps", static_cast<int>(stamps));
}

TEST(StrokeSpacing, ADrawnSessionHasNoGaps) {
    const std::vector<Path> strokes = strokesOf(drawnSession(), 12.0);
    EXPECT_GT(strokes.size(), 1u);
    expectWholeStrokes(strokes, 500);
}

TEST(StrokeSpacing, TheRecordedSessionHasNoGaps) {
    const std::vector<PenEvent> events = recordedSession();
    if (events.empty()) GTEST_SKIP() << "BRUSHWORK_CORPUS does not name the corpus";
    EXPECT_EQ(2937u, events.size());
    for (const double largest : {4.0, 16.0}) {
        const std::vector<Path> strokes = strokesOf(events, largest);
        EXPECT_GT(strokes.size(), 5u);
        expectWholeStrokes(strokes, 1000);
    }
}

}  // namespace
}  // namespace brushwork
