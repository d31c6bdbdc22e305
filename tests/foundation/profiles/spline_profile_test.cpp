#include "foundation/profiles/spline_profile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace brushwork {
namespace {

using Controls = std::vector<SplineProfile::Control>;

TEST(SplineProfile, WeightsAreBinomials) {
    std::vector<std::uint64_t> pascal = {1};
    for (std::size_t n = 1; n <= 50; ++n) {
        std::vector<std::uint64_t> next(n + 1, 1);
        for (std::size_t i = 1; i < n; ++i) next[i] = pascal[i - 1] + pascal[i];
        pascal = next;
        const SplineProfile profile(Controls(n, {1.0f, 0.0f}));
        ASSERT_EQ(profile.weights().size(), n);
        for (std::size_t i = 0; i < n; ++i) {
            ASSERT_EQ(profile.weights()[i], static_cast<double>(pascal[i])) << n << ' ' << i;
        }
    }
}

TEST(SplineProfile, IsTheBinomialSum) {
    EXPECT_EQ(SplineProfile({}).eval(0.5f), 0.0f);
    std::mt19937 random(1);
    std::uniform_real_distribution<float> draw(0.0f, 1.0f);
    for (std::size_t n = 1; n <= 20; ++n) {
        Controls controls(n);
        for (auto& control : controls) control.value = draw(random);
        const SplineProfile profile(controls);
        EXPECT_EQ(profile.eval(0.0f), controls[0].value);
        EXPECT_EQ(profile.eval(1.0f), 0.0f);
        for (int k = 0; k < 50; ++k) {
            const float x = draw(random);
            double expected = 0.0;
            for (std::size_t i = 0; i < n; ++i) {
                const auto a = static_cast<double>(i);
                const auto b = static_cast<double>(n - i);
                const double choose =
                    std::exp(std::lgamma(a + b + 1) - std::lgamma(a + 1) - std::lgamma(b + 1));
                expected += choose * std::pow(double{x}, a) * std::pow(1.0 - double{x}, b) *
                            double{controls[i].value};
            }
            ASSERT_NEAR(double{profile.eval(x)}, expected, 1e-6) << n << ' ' << x;
        }
    }
}

// All controls 1: everything but the last Bernstein polynomial, x^n.
TEST(SplineProfile, EqualControlsLeaveOnlyTheLastTermOut) {
    const SplineProfile profile(Controls(4, {1.0f, 0.0f}));
    for (const float x : {0.0f, 0.25f, 0.5f, 0.75f, 1.0f}) {
        EXPECT_EQ(profile.eval(x), 1.0f - x * x * x * x);
    }
    EXPECT_FALSE(profile.isConstant());
    EXPECT_TRUE(SplineProfile(Controls(3, {0.0f, 5.0f})).isConstant());
}

}  // namespace
}  // namespace brushwork
