#include "foundation/profiles/linear_profile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace brushwork {
namespace {

using Points = std::vector<LinearProfile::Point>;

TEST(LinearProfile, AgreesWithADoublePrecisionOracle) {
    std::mt19937 random(1);
    std::uniform_real_distribution<float> draw(0.0f, 1.0f);
    for (int round = 0; round < 50; ++round) {
        Points points;
        float x = draw(random);
        for (int i = 0; i < 12; ++i) {
            points.push_back({x, draw(random) * 4.0f - 2.0f});
            x += draw(random) + 0.01f;
        }
        const LinearProfile profile(points);
        for (int i = 0; i < 100; ++i) {
            const float at = draw(random) * (x + 1.0f) - 0.5f;
            double expected = double{points.back().y};
            for (std::size_t k = 1; k < points.size(); ++k) {
                const auto [x0, y0] = points[k - 1];
                const auto [x1, y1] = points[k];
                if (at < x0 || at > x1) continue;
                expected = double{y0} + (double{at} - double{x0}) / (double{x1} - double{x0}) *
                                            (double{y1} - double{y0});
                break;
            }
            EXPECT_NEAR(double{profile.eval(at)}, expected, 1e-5) << at;
        }
    }
}

TEST(LinearProfile, OutsideItIsTheLastPoint) {
    const LinearProfile profile(Points{{0.2f, 5.0f}, {0.8f, 7.0f}});
    EXPECT_EQ(profile.eval(0.1f), 7.0f);
    EXPECT_EQ(profile.eval(0.2f), 5.0f);
    EXPECT_EQ(profile.eval(0.8f), 7.0f);
    EXPECT_EQ(profile.eval(9.0f), 7.0f);
    EXPECT_EQ(profile.eval(std::numeric_limits<float>::quiet_NaN()), 7.0f);
    EXPECT_EQ(LinearProfile().eval(0.5f), 0.0f);
    EXPECT_EQ(LinearProfile(Points{{0.5f, 3.0f}}).eval(0.5f), 3.0f);
}

TEST(LinearProfile, StepsUnsortedPointsAndTooMany) {
    const LinearProfile step(Points{{1, 4}, {0, 1}, {0.5f, 2}, {0.5f, 9}, {0.5f, 3}});
    EXPECT_EQ(step.eval(0.25f), 1.5f);
    EXPECT_EQ(step.eval(0.5f), 2.0f);
    EXPECT_EQ(step.eval(0.75f), 3.5f);
    EXPECT_EQ(LinearProfile(Points{{0, 1}, {0, 2}}).eval(0.0f), 2.0f);
    EXPECT_EQ(LinearProfile(Points(1000, {1, 2})).points().size(), LinearProfile::capacity);
}

}  // namespace
}  // namespace brushwork
