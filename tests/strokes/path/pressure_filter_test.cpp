#include "brushwork/pressure_filter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "foundation/services/settings.h"
#include "platform/environment.h"

namespace brushwork {
namespace {

// What a press gives after a long time at it, in long double. Near a step of the table's index the
// float code may stand on the other side, so both sides are told.
struct Expected {
    double low = 0.0;
    double high = 0.0;
};
Expected settled(int p, int n, long double hardness, long double threshold) {
    const long double t =
        std::min(std::max(threshold, 3.0L / n), 1.0L - 1.0L / static_cast<long double>(n));
    const long double x = static_cast<long double>(p) / n;
    if (x < t - 1e-6L) return {};
    const long double place = (x - t) / (1 - t) * (n - 1);
    const auto curve = [&](long double slack) {
        const long double i = std::floor(std::min(std::max(place + slack, 0.0L), n - 1.0L));
        return static_cast<double>(std::pow(i / (n - 1), 8 * hardness * hardness + 0.1L));
    };
    return {std::abs(x - t) <= 1e-6L ? 0.0 : curve(-0.02L), curve(0.02L)};
}

TEST(PressureFilter, GivesTheCurveAboveTheThreshold) {
    for (const auto& [low, high] : {std::pair{0, 1024}, {-512, 511}, {100, 8292}, {0, 65535}}) {
        for (const float hardness : {0.0f, 0.3f, 0.5f, 1.0f}) {
            for (const float threshold : {0.0f, 0.15f, 0.6f, 1.0f}) {
                PressureFilter filter(low, high);
                filter.setHardness(hardness);
                filter.setThreshold(threshold);
                filter.setSmoothness(0.0f);
                const int n = high - low;
                for (int p = 0; p <= n; p += std::max(1, n / 997)) {
                    const Expected wanted = settled(p, n, static_cast<long double>(hardness),
                                                    static_cast<long double>(threshold));
                    const double got = static_cast<double>(filter.filter(low + p));
                    ASSERT_GE(got, wanted.low - 1e-6) << n << ' ' << p << ' ' << hardness;
                    ASSERT_LE(got, wanted.high + 1e-6) << n << ' ' << p << ' ' << hardness;
                }
                const float full = filter.filter(high);
                EXPECT_EQ(full, filter.filter(std::numeric_limits<std::int32_t>::max()));
                EXPECT_EQ(0.0f, filter.filter(std::numeric_limits<std::int32_t>::min()));
            }
        }
    }
}

TEST(PressureFilter, LetsThePressureDieAwayAndSnapsToNothing) {
    PressureFilter filter(0, 1024);
    filter.setHardness(0.0f);
    filter.setThreshold(0.15f);
    filter.setSmoothness(0.5f);
    for (int i = 0; i < 60; ++i) (void)filter.filter(1024);
    const float last = filter.filter(1024);
    EXPECT_NEAR(1.0f, last, 1e-3f);
    for (const double wanted : {0.5, 0.25, 0.0, 0.0}) {
        EXPECT_NEAR(wanted, static_cast<double>(filter.filter(-40)), 1e-3);
    }
    // blend doesn't remember.
    (void)filter.filter(1024);
    const float now = filter.filter(1024);
    EXPECT_EQ((now - 0.25f) * 0.5f + 0.25f, filter.blend(0.25f));
    EXPECT_EQ((now - 0.25f) * 0.5f + 0.25f, filter.blend(0.25f));
}

TEST(PressureFilter, SettingsOutOfRangeFallBack) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const float wrong : {-0.1f, 1.1f, nan}) {
        PressureFilter odd(0, 1024), usual(0, 1024);
        odd.setHardness(wrong);
        odd.setThreshold(wrong);
        for (int raw = 0; raw <= 1100; raw += 7)
            ASSERT_EQ(usual.filter(raw), odd.filter(raw)) << raw;
    }
    PressureFilter sticky(0, 1024), most(0, 1024);
    sticky.setSmoothness(3.0f);
    most.setSmoothness(0.95f);
    EXPECT_EQ(most.filter(1024), sticky.filter(1024));
    EXPECT_NEAR(0.05f, most.blend(1.0f) - most.blend(0.0f), 1e-6f);
    PressureFilter loose(0, 1024);
    loose.setSmoothness(nan);
    EXPECT_EQ(0.75f, loose.blend(0.75f));
    (void)loose.filter(1024);
    EXPECT_EQ(0.75f, loose.blend(0.75f));
}

TEST(PressureFilter, ANewRangeKeepsTheSettingsAndForgetsThePressure) {
    PressureFilter filter(0, 1024), fresh(0, 300);
    for (PressureFilter* each : {&filter, &fresh}) {
        each->setHardness(0.2f);
        each->setThreshold(0.3f);
        each->setSmoothness(0.7f);
    }
    (void)filter.filter(1024);
    filter.setRange(300, 0);
    EXPECT_EQ(0, filter.low());
    EXPECT_EQ(300, filter.high());
    for (int raw = 0; raw <= 300; raw += 3) ASSERT_EQ(fresh.filter(raw), filter.filter(raw));
    filter.setRange(77, 77);
    EXPECT_EQ(0, filter.low());
    EXPECT_EQ(1024, filter.high());
}

TEST(PressureFilter, TinyRangesStayFiniteAndReachBothEnds) {
    for (int n = 1; n <= 6; ++n) {
        PressureFilter filter(10, 10 + n);
        filter.setSmoothness(0.0f);
        EXPECT_EQ(0.0f, filter.filter(10)) << n;
        // The last but one entry of the curve, where the index is rounded down, or the last.
        const float full = filter.filter(10 + n);
        EXPECT_GE(full, n <= 2 ? 1.0f : n == 3 ? 0.22f : 0.37f) << n;
        EXPECT_LE(full, 1.0f) << n;
        float last = 0.0f;
        for (int raw = 10; raw <= 10 + n; ++raw) {
            const float now = filter.filter(raw);
            EXPECT_GE(now, last) << n;  // also: is a number
            last = now;
        }
    }
    PressureFilter wide(std::numeric_limits<std::int32_t>::min(),
                        std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(-32768, wide.low());
    EXPECT_EQ(65535, wide.high());
    wide.setSmoothness(0.0f);
    EXPECT_NEAR(1.0f, wide.filter(65535), 1e-4f);
}

TEST(PressureFilter, DefaultsComeFromTheEnvironment) {
    const auto read = [](const char* hardness, const char* threshold, const char* smoothness) {
        EXPECT_TRUE(platform::setEnvironmentVariable("SID_PRESSURE_HARDNESS", hardness));
        EXPECT_TRUE(platform::setEnvironmentVariable("SID_PRESSURE_THRESHOLD", threshold));
        EXPECT_TRUE(platform::setEnvironmentVariable("SID_PRESSURE_SMOOTHNESS", smoothness));
        resetSettings();
        return pressureSettings();
    };
    PressureSettings settings = read("0.25", " 0.5x", "1e-1");
    EXPECT_EQ(0.25f, settings.hardness);
    EXPECT_EQ(0.5f, settings.threshold);
    EXPECT_EQ(0.1f, settings.smoothness);
    PressureFilter fromDefaults(0, 1024), set(0, 1024);
    set.setHardness(0.25f);
    set.setThreshold(0.5f);
    set.setSmoothness(0.1f);
    for (int raw = 0; raw <= 1024; raw += 5) ASSERT_EQ(set.filter(raw), fromDefaults.filter(raw));
    settings = read("hard", "-0.5", "nan");
    for (const char* name :
         {"SID_PRESSURE_HARDNESS", "SID_PRESSURE_THRESHOLD", "SID_PRESSURE_SMOOTHNESS"})
        EXPECT_TRUE(platform::unsetEnvironmentVariable(name));
    resetSettings();
    EXPECT_EQ(0.5f, settings.hardness);
    EXPECT_EQ(0.15f, settings.threshold);
    EXPECT_EQ(0.2f, settings.smoothness);
}

}  // namespace
}  // namespace brushwork
