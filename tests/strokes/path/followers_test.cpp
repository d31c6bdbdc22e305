#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>
#include <vector>

#include "strokes/path/flt_interpolate_2d.h"
#include "strokes/path/smooth_interpolate_2d.h"
#include "support/test_seed.h"

namespace brushwork {
namespace {

using Place = std::array<double, 2>;

double distance(Place a, Place b) {
    return std::hypot(a[0] - b[0], a[1] - b[1]);
}

void add(Interpolate2D& follower, double x, double y) {
    const float xy[2] = {static_cast<float>(x), static_cast<float>(y)};
    follower.addPoint(xy);
}

struct Walked {
    Place place;
    float t;
};

std::vector<Walked> drain(Interpolate2D& follower, float step) {
    std::vector<Walked> all;
    float xy[2], t;
    while (follower.advance(step, xy, &t))
        all.push_back({{static_cast<double>(xy[0]), static_cast<double>(xy[1])}, t});
    return all;
}

// A polyline by its arc lengths.
class Polyline {
  public:
    void add(Place p) {
        arcs_.push_back(places_.empty() ? 0.0 : arcs_.back() + distance(places_.back(), p));
        places_.push_back(p);
    }
    [[nodiscard]] double length() const { return arcs_.back(); }
    [[nodiscard]] Place at(double arc) const {
        std::size_t i = 1;
        while (i + 1 < arcs_.size() && arcs_[i] < arc) ++i;
        const double part = (arc - arcs_[i - 1]) / (arcs_[i] - arcs_[i - 1]);
        return {places_[i - 1][0] + part * (places_[i][0] - places_[i - 1][0]),
                places_[i - 1][1] + part * (places_[i][1] - places_[i - 1][1])};
    }

  private:
    std::vector<Place> places_;
    std::vector<double> arcs_;
};

TEST(FltInterpolate2D, WalksEvenlyAroundCorners) {
    const unsigned seed = brushwork::test::testSeed();
    SCOPED_TRACE(::testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> coordinate(0.0, 200.0);
    for (const double step : {0.125, 3.7, 60.0}) {
        FltInterpolate2D follower(true);
        Polyline line;
        std::size_t count = 0;
        float lastT = 0.0f;
        for (int i = 0; i < 60; ++i) {
            const Place p = {std::floor(coordinate(random)), std::floor(coordinate(random))};
            add(follower, p[0], p[1]);
            line.add(p);
            for (const Walked& walked : drain(follower, static_cast<float>(step))) {
                const Place wanted = line.at(static_cast<double>(count++) * step);
                ASSERT_LT(distance(wanted, walked.place), 0.02) << step << ' ' << count;
                EXPECT_GE(walked.t, -1e-6f);
                EXPECT_LE(walked.t, 1.0f);
                EXPECT_GE(walked.t, lastT);
                lastT = walked.t;
            }
            lastT = -1.0f;
        }
        EXPECT_NEAR(std::floor(line.length() / step), static_cast<double>(count), 2.0);
    }
}

TEST(FltInterpolate2D, WithoutCarryEachLineBeginsWhereTheWalkStopped) {
    FltInterpolate2D follower(false);
    add(follower, 0, 0);
    add(follower, 10, 0);
    EXPECT_EQ(3u, drain(follower, 4.0f).size());  // at 0, 4 and 8
    add(follower, 8, 9);
    const std::vector<Walked> up = drain(follower, 4.0f);
    ASSERT_EQ(2u, up.size());
    EXPECT_EQ((Place{8, 4}), up[0].place);
    EXPECT_EQ((Place{8, 8}), up[1].place);
    EXPECT_FLOAT_EQ(4.0f / 9.0f, up[0].t);
}

TEST(FltInterpolate2D, AStepThatShrankGoesToTheCornerFirst) {
    FltInterpolate2D follower(true);
    add(follower, 0, 0);
    add(follower, 10, 0);
    EXPECT_EQ(2u, drain(follower, 6.0f).size());
    add(follower, 10, 10);
    const std::vector<Walked> up = drain(follower, 3.0f);
    ASSERT_EQ(4u, up.size());
    EXPECT_EQ((Place{10, 0}), up[0].place);
    EXPECT_EQ((Place{10, 3}), up[1].place);
    EXPECT_EQ(0.0f, up[0].t);
}

TEST(FltInterpolate2D, EqualPointsGiveTheirPlaceOnce) {
    FltInterpolate2D follower(true);
    float xy[2] = {-1, -1}, t = -1, dx = -1, dy = -1;
    EXPECT_FALSE(follower.advance(1.0f, xy, &t));
    add(follower, 3, 4);
    EXPECT_FALSE(follower.advance(1.0f, xy, &t));
    EXPECT_FALSE(follower.finish(xy, &t));
    EXPECT_FALSE(follower.pending());
    add(follower, 3, 4);
    EXPECT_TRUE(follower.pending());
    EXPECT_EQ(-1.0f, xy[0]);
    ASSERT_TRUE(follower.advance(1.0f, xy, nullptr));
    EXPECT_EQ(3.0f, xy[0]);
    EXPECT_EQ(4.0f, xy[1]);
    EXPECT_FALSE(follower.advance(1.0f, xy, &t));
    EXPECT_FALSE(follower.advance(0.125f, xy, &t));
    EXPECT_FALSE(follower.finish(xy, &t));
    EXPECT_FALSE(follower.pending());
    EXPECT_FALSE(follower.tangent(&dx, &dy));
    EXPECT_EQ(-1.0f, dx);
    // What was left over survives a line without length.
    add(follower, 5, 4);
    EXPECT_EQ(1u, drain(follower, 1.5f).size());
    add(follower, 5, 4);
    EXPECT_EQ(0u, drain(follower, 1.5f).size());
    add(follower, 5, 14);
    EXPECT_EQ((Place{5, 5}), drain(follower, 1.5f).at(0).place);
}

TEST(FltInterpolate2D, FinishGoesToTheEndUnderBothNames) {
    FltInterpolate2D follower(true);
    float xy[2], t, dx, dy;
    add(follower, 0, 0);
    add(follower, 0, 10);
    ASSERT_TRUE(follower.nextPoint(xy, &t));
    EXPECT_EQ(0.0f, xy[1]);
    EXPECT_EQ(0.0f, t);
    ASSERT_TRUE(follower.step(4.0f, xy, &t));
    EXPECT_EQ(1.0f - 6.0f / 10.0f, t);
    ASSERT_TRUE(follower.direction(&dx, &dy));
    EXPECT_EQ(0.0f, dx);
    EXPECT_EQ(1.0f, dy);
    ASSERT_TRUE(follower.finish(xy, &t));
    EXPECT_EQ(10.0f, xy[1]);
    EXPECT_EQ(1.0f, t);
    EXPECT_FALSE(follower.finish(xy, &t));
}

// The filter in closed form: after k of N samples the velocity has had k of its N(N+1)/2 shares.
struct Inertia {
    long double velocity = 0, acceleration = 0, position = 0;
    bool started = false;

    std::vector<long double> update(long double v) {
        if (!started) {
            position = v;
            started = true;
            return {};
        }
        const long double wanted = (1 - 0.921L) * ((v - position) / 0.9L + velocity);
        const long double c = (wanted - velocity - 6 * acceleration) / 21;
        std::vector<long double> samples;
        for (int k = 1; k <= 6; ++k)
            samples.push_back(position + k * velocity + acceleration * k * (k + 1) / 2 +
                              c * k * (k + 1) * (k + 2) / 6);
        position = samples.back();
        velocity = wanted;
        acceleration += 6 * c;
        return samples;
    }
};

TEST(SmoothInterpolate2D, WalksTheTwiceSmoothedPath) {
    const unsigned seed = brushwork::test::testSeed();
    SCOPED_TRACE(::testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> nudge(-15.0, 15.0);
    SmoothInterpolate2D follower(0.9f, 0.921f, 6, 2);
    EXPECT_EQ(Interpolate2D::Smooth, follower.kind());
    Inertia outer[2], inner[2];
    Polyline line;
    Place pen = {300, 200};
    std::size_t count = 0;
    constexpr double step = 1.5;
    for (int i = 0; i < 120; ++i) {
        add(follower, pen[0], pen[1]);
        const double x = static_cast<double>(static_cast<float>(pen[0]));
        const double y = static_cast<double>(static_cast<float>(pen[1]));
        std::vector<long double> first[2] = {outer[0].update(x), outer[1].update(y)};
        if (i == 0) {
            line.add({x, y});
            inner[0].update(x);
            inner[1].update(y);
        }
        for (std::size_t k = 0; k < first[0].size(); ++k) {
            const std::vector<long double> xs = inner[0].update(first[0][k]);
            const std::vector<long double> ys = inner[1].update(first[1][k]);
            for (std::size_t j = 0; j < xs.size(); ++j)
                line.add({static_cast<double>(xs[j]), static_cast<double>(ys[j])});
        }
        float lastT = 0.0f;
        const std::vector<Walked> stamps = drain(follower, static_cast<float>(step));
        EXPECT_TRUE(i > 0 || stamps.empty());
        for (const Walked& walked : stamps) {
            EXPECT_TRUE(count > 0 || walked.place == (Place{300, 200}));
            const Place wanted = line.at(static_cast<double>(count++) * step);
            ASSERT_LT(distance(wanted, walked.place), 0.05) << i << ' ' << count;
            EXPECT_GE(walked.t, lastT);
            EXPECT_LE(walked.t, 1.0f + 1e-6f);
            lastT = walked.t;
        }
        pen[0] += nudge(random);
        pen[1] += nudge(random);
    }
    EXPECT_NEAR(line.length() / step, static_cast<double>(count), 2.0);
}

TEST(SmoothInterpolate2D, LagsBehindThePenAndComesToRestAtIt) {
    SmoothInterpolate2D follower(0.9f, 0.921f, 6, 2);
    for (int x = 0; x <= 100; x += 10) {
        add(follower, x, 50);
        for (const Walked& walked : drain(follower, 1.0f)) {
            EXPECT_LT(walked.place[0], x);
            EXPECT_NEAR(50.0, walked.place[1], 1e-4);
        }
    }
    float dx = 0, dy = 0;
    ASSERT_TRUE(follower.tangent(&dx, &dy));
    EXPECT_NEAR(1.0f, dx, 1e-6f);
    Place last{};
    for (int i = 0; i < 60; ++i) {
        add(follower, 100, 50);
        for (const Walked& walked : drain(follower, 0.25f)) last = walked.place;
    }
    EXPECT_NEAR(100.0, last[0], 0.3);
}

TEST(SmoothInterpolate2D, FinishReadsAllSamples) {
    SmoothInterpolate2D follower(0.9f, 0.921f, 6, 1);
    float xy[2], t = -1;
    add(follower, 0, 0);
    EXPECT_FALSE(follower.finish(xy, &t));
    add(follower, 60, 0);
    EXPECT_TRUE(follower.pending());
    std::vector<float> ts;
    while (follower.finish(xy, &t)) ts.push_back(t);
    ASSERT_EQ(7u, ts.size());
    for (std::size_t i = 0; i < ts.size(); ++i)
        EXPECT_FLOAT_EQ(static_cast<float>(i) / 6.0f, ts[i]);
    EXPECT_FALSE(follower.pending());
    EXPECT_FALSE(follower.finish(xy, nullptr));
}

TEST(SmoothInterpolate2D, TakesAReadyInnerFollower) {
    const Ref<FltInterpolate2D> inner = makeRef<FltInterpolate2D>(false);
    SmoothInterpolate2D follower(0.0f, 0.5f, 4, inner);
    EXPECT_EQ(2u, inner->refCount());
    // Without drag inputs don't pull: the walk stays where it began.
    add(follower, 5, 5);
    add(follower, 50, 50);
    const std::vector<Walked> all = drain(follower, 0.125f);
    ASSERT_EQ(1u, all.size());
    EXPECT_EQ((Place{5, 5}), all[0].place);
}

}  // namespace
}  // namespace brushwork
