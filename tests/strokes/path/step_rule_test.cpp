#include "strokes/path/step_rule.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "foundation/services/random_source.h"

namespace brushwork {
namespace {

TEST(StepRule, FollowsItsTable) {
    // Worked out by hand: reach, scale, step.
    const double rows[][3] = {
        {0.0625, 1.0, 0.39375},   // 75 % of 1.05, halved
        {1.05, 1.0, 0.39375},     //
        {1.05, 0.1, 0.125},       // 0.039 is too short
        {2.0, 1.0, 0.727440635},  // 72.7440635 % of 2, halved
        {4.0, 1.0, 1.3598952},    // 67.9947235 % of 4, halved
        {12.0, 1.0, 4.409847},    // 48.9983635 % of 12, times 0.75
        {19.999, 2.0, 11.99982},  // the rise to the whole ends at 20
        {20.0, 1.0, 6.0},         //
        {100.0, 0.5, 15.0},       //
        {511.0, 1.0, 153.3},      //
        {-3.0, 1.0, 0.39375},     // a mirrored tip
    };
    for (const auto& row : rows) {
        const float step =
            nextStep(0.0f, static_cast<float>(row[0]), static_cast<float>(row[1]), 0.0f);
        EXPECT_NEAR(row[2], static_cast<double>(step), row[2] * 1e-4) << row[0];
    }
    EXPECT_EQ(32.0f * 30.0f * 0.01f, nextStep(5.0f, 32.0f, 1.0f, 0.0f));
    EXPECT_EQ(shortestStep, nextStep(0.0f, std::numeric_limits<float>::quiet_NaN(), 1.0f, 0.0f));
}

TEST(StepRule, GrowsEvenlyWithTheReach) {
    float last = 0.0f;
    for (float reach = 0.0625f; reach < 511.0f; reach *= 1.002f) {
        const float step = nextStep(0.0f, reach, 1.0f, 0.0f);
        EXPECT_GE(step, last) << reach;
        EXPECT_LE(step, std::max(last * 1.004f, 0.394f)) << reach;
        last = step;
    }
}

TEST(StepRule, AJitteredStepIsDrawnOnceAndHolds) {
    for (int seed = 1; seed < 50; ++seed) {
        seedRandom(static_cast<std::uint64_t>(seed));
        const float u = static_cast<float>(randomValue());
        const int next = randomValue();
        const float plain = nextStep(0.0f, 32.0f, 1.0f, 0.0f);
        const float wanted = plain - (2.0f * u / 32767.0f - 1.0f) * (plain * 0.5f);
        seedRandom(static_cast<std::uint64_t>(seed));
        const float step = nextStep(0.0f, 32.0f, 1.0f, 0.5f);
        EXPECT_EQ(wanted, step);
        EXPECT_EQ(step, nextStep(step, 400.0f, 3.0f, 0.5f));
        EXPECT_EQ(next, randomValue());  // holding drew nothing
    }
    bool shortest = false;
    for (int i = 0; i < 100; ++i) {
        const float step = nextStep(0.0f, 32.0f, 1.0f, 5.0f);
        EXPECT_GE(step, shortestStep);
        shortest = shortest || step == shortestStep;
    }
    EXPECT_TRUE(shortest);
}

}  // namespace
}  // namespace brushwork
