#include "strokes/stamp/stamp_coverage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "image/filter/kernel_recipe.h"
#include "strokes/stamp/stamp_key.h"
#include "support/test_seed.h"

namespace brushwork::npc {
namespace {

using test::GuardedBytes;
using test::Random;

float between(Random& random, float low, float high) {
    return std::uniform_real_distribution<float>(low, high)(random);
}

StampPoint randomPoint(Random& random, float radius, float flattest) {
    StampPoint point;
    point.x = between(random, -50.0f, 50.0f);
    point.y = between(random, -50.0f, 50.0f);
    point.radius = radius;
    point.angle = random() % 3 == 0 ? static_cast<float>(random() % 4) * 90.0f
                                    : between(random, 0.0f, 360.0f);
    point.scaleX = 1.0f;
    point.scaleY = flattest < 1.0f ? between(random, flattest, 1.0f) : 1.0f;
    return point;
}

CoverageJob jobOf(const StampFrame& frame, const CoverageProfile& profile) {
    CoverageJob job;
    job.map = frame.toBrush;
    job.profile = profile;
    job.rows = frame.box.ny;
    job.width = frame.box.nx;
    job.rowBytes = (job.width + 15) & ~15;
    return job;
}

std::vector<std::uint8_t> maskOf(CoverageJob job) {
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(job.rowBytes) *
                                     static_cast<std::size_t>(job.rows));
    job.pixels = pixels.data();
    coverRowsScalar(job);
    return pixels;
}

void expectSameForms(CoverageJob job, std::size_t misalignment, const std::string& what) {
    const auto expected = maskOf(job);
    for (const VectorLevel level : test::vectorLevels()) {
        GuardedBytes out(expected.size(), misalignment);
        job.pixels = out.data();
        noteKernelForm(VectorLevel::Scalar);
        coverRows(job, level);
        ASSERT_EQ(lastKernelForm(), level);
        ASSERT_EQ(out.bytes(), expected) << vectorLevelName(level) << ' ' << what;
        ASSERT_TRUE(out.guardsIntact()) << vectorLevelName(level) << ' ' << what;
    }
}

TEST(StampCoverage, AllFormsGiveTheSameBytesForStamps) {
    const unsigned seed = brushwork::test::testSeed();
    SCOPED_TRACE("seed " + std::to_string(seed));
    Random random(seed);
    StampMaskTable table;
    for (int n = 0; n < 600; ++n) {
        const float radius = n % 20 == 0 ? between(random, 64.0f, 511.0f)
                             : n % 2     ? between(random, 0.0625f, 9.0f)
                                         : between(random, 8.0f, 64.0f);
        StampPoint point = randomPoint(random, radius, n % 3 ? 1.0f : 0.03f);
        if (n % 7 == 0) point.scaleX = between(random, -2.0f, 2.0f);
        const float hardness = static_cast<float>(random() % 5) * 0.25f;
        const StampPoint q = quantizedStamp(point, {hardness, true, false});
        const StampFrame frame = stampFrame(q);
        table.build(q.radius, hardness);
        expectSameForms(jobOf(frame, table.profileFor(q.scaleX, q.scaleY)), random() % 16,
                        "radius " + std::to_string(q.radius) + " angle " + std::to_string(q.angle) +
                            " scales " + std::to_string(q.scaleX) + ", " +
                            std::to_string(q.scaleY) + " x " + std::to_string(q.x));
    }
}

// Every small size, any map, numbers that aren't, tables without a solid or an empty part.
TEST(StampCoverage, AllFormsGiveTheSameBytesForAnyJob) {
    const unsigned seed = brushwork::test::testSeed();
    SCOPED_TRACE("seed " + std::to_string(seed));
    Random random(seed);
    std::vector<std::uint8_t> entries(500);
    for (int width = 1; width <= 70; ++width)
        for (int rows = 1; rows <= 11; ++rows) {
            test::Random& r = random;
            for (auto& entry : entries) entry = test::edgyByte(r);
            CoverageJob job;
            job.profile = {entries.data(), 1 + static_cast<std::int32_t>(r() % 300), 0, 0};
            job.profile.emptyBegin = job.profile.last + 1;
            if (r() % 2) {
                job.profile.solidEnd = static_cast<std::int32_t>(r()) & 127;
                job.profile.solidEnd = std::min(job.profile.solidEnd, job.profile.last);
                std::fill_n(entries.begin(), job.profile.solidEnd, std::uint8_t{255});
                job.profile.emptyBegin = std::max(job.profile.solidEnd, job.profile.last / 2);
                std::fill(entries.begin() + job.profile.emptyBegin,
                          entries.begin() + job.profile.last + 1, std::uint8_t{0});
            }
            job.map = {between(r, -2, 2), between(r, -2, 2), between(r, -30, 30),
                       between(r, -2, 2), between(r, -2, 2), between(r, -30, 30)};
            if (r() % 10 == 0) job.map.xx = r() % 2 ? INFINITY : NAN;
            if (r() % 10 == 0) job.map.x0 = 1e30f;
            if (r() % 4 == 0) job.map.xy = job.map.yx = 0.0f;
            job.firstRow = static_cast<std::int32_t>(r() % 40);
            job.rows = rows;
            job.width = width;
            job.rowBytes = ((width + 15) & ~15) + 16 * static_cast<std::int32_t>(r() % 3);
            expectSameForms(job, r() % 64, std::to_string(width) + " x " + std::to_string(rows));
        }
}

TEST(StampCoverage, RowsDontHangOnEachOtherAndPaddingIsEmpty) {
    StampPoint point;
    point.radius = 21.25f;
    point.angle = 77.0f;
    point.scaleY = 0.40625f;
    const StampFrame frame = stampFrame(point);
    StampMaskTable table;
    table.build(point.radius, 0.5f);
    CoverageJob job = jobOf(frame, table.profileFor(1.0f, point.scaleY));
    const auto whole = maskOf(job);
    for (std::int32_t row = 0; row < frame.box.ny; ++row)
        for (std::int32_t i = job.width; i < job.rowBytes; ++i)
            ASSERT_EQ(whole[static_cast<std::size_t>(row * job.rowBytes + i)], 0);
    for (const std::int32_t first : {1, 7, 30}) {
        job.firstRow = first;
        job.rows = frame.box.ny - first;
        const auto part = maskOf(job);
        EXPECT_TRUE(std::equal(part.begin(), part.end(),
                               whole.begin() + std::ptrdiff_t{first} * job.rowBytes));
    }
}

// The tip as a function of the place: solid, then a bell curve over the rim, sampled 16 x 16 in
// each pixel.
class Supersampled {
  public:
    Supersampled(const StampPoint& point, const StampFrame& frame, float hardness)
        : point_(point),
          frame_(frame),
          rim_(std::trunc(16.0 * point.radius) / 16.0),
          turn_(point.angle * std::acos(-1.0) / 180.0) {
        const double r = point.radius;
        const double core = r > 6   ? r - 3
                            : r > 4 ? 0.5 * r
                            : r > 3 ? 0.375 * r
                            : r > 2 ? 0.25 * r
                                    : 0.125 * r;
        solid_ = std::min(std::trunc(core * hardness * 16.0) / 16.0, rim_);
    }

    [[nodiscard]] double at(std::int32_t i, std::int32_t j) const {
        double sum = 0.0;
        for (int a = 0; a < 16; ++a)
            for (int b = 0; b < 16; ++b)
                sum += tip(frame_.box.x + i + (a + 0.5) / 16, frame_.box.y + j + (b + 0.5) / 16);
        return sum / 256.0;
    }
    // Standard deviation of the bell curve, in pixels of the layer along the shorter axis.
    [[nodiscard]] double deviation() const {
        return (rim_ - solid_) / 3.5 * static_cast<double>(point_.scaleY);
    }

  private:
    [[nodiscard]] double tip(double x, double y) const {
        const double dx = x - point_.x, dy = y - point_.y;
        const double u = (std::cos(turn_) * dx + std::sin(turn_) * dy) / point_.scaleX;
        const double v = (std::cos(turn_) * dy - std::sin(turn_) * dx) / point_.scaleY;
        const double d = std::hypot(u, v);
        if (d < solid_) return 255.0;
        if (d >= rim_) return 0.0;
        const double t = 3.5 * (d - solid_) / (rim_ - solid_);
        return 255.0 * std::exp(-0.5 * t * t);
    }

    const StampPoint& point_;
    const StampFrame& frame_;
    double rim_, solid_ = 0.0, turn_;
};

struct Range {
    const char* name;
    float low, high, flattest;
    int stamps;
    double fixedBound;  // for averaged masks; 0: the bound is worked out
};

// From radius 8 a mask takes the profile at the pixel's middle. A mean over the pixel differs from
// that by the second derivatives over 24: for a bell curve of deviation s at most 255 / (24 s s).
// Looking up by sixteenths moves the place by at most 1/32, times the slope of at most
// 0.607 * 255 / s; 3 are for rounding, the walk and the bend of the rim. s is that of the shorter
// axis. Where it is below a pixel, higher derivatives count as well, and the bound goes up to what
// an edge can do: 128 and a bit.
//
// Below, the profile is averaged along the radius alone, over a pixel of the brush's plane. In the
// middle of a tip that is the mean m across it where the pixel's square would give m m: 64 of 255
// at most (m of 0.5), 26 for the softest of radius 2, 8 for radius 4. The place is off by 1/32
// (1/16 up to radius 1, where the average is that of a pixel's square, taken at the lower
// sixteenth) times the slope, which gives 8 to 14. In a flat tip the layer's pixel is up to four
// brush pixels thick; the tip is at least a pixel thick each way, so the mean across is at least
// 0.63 of the middle's: 94.
TEST(StampCoverage, MasksAreCloseToTheSupersampledTip) {
    const unsigned seed = brushwork::test::testSeed();
    SCOPED_TRACE("seed " + std::to_string(seed));
    Random random(seed);
    const Range ranges[] = {{"radius up to 1", 0.0625f, 1.0f, 1.0f, 400, 20},
                            {"1 to 2", 1.0f, 2.0f, 1.0f, 300, 72},
                            {"2 to 4", 2.0f, 4.0f, 1.0f, 200, 40},
                            {"4 to 8", 4.0f, 7.9f, 1.0f, 150, 22},
                            {"8 to 16", 8.0f, 16.0f, 1.0f, 60, 0},
                            {"16 to 64", 16.0f, 64.0f, 1.0f, 60, 0},
                            {"64 to 511", 64.0f, 511.0f, 1.0f, 60, 0},
                            {"flat, 2 to 8", 2.0f, 7.9f, 0.25f, 150, 102},
                            {"flat, 8 to 511", 8.0f, 511.0f, 0.1f, 100, 0}};
    StampMaskTable table;
    for (const Range& range : ranges) {
        double worst = 0.0, worstShare = 0.0;
        for (int n = 0; n < range.stamps; ++n) {
            const float hardness = static_cast<float>(random() % 5) * 0.25f;
            // Quantised as a smearing brush, which keeps the radius in its range.
            const StampPoint q = quantizedStamp(
                randomPoint(random, between(random, range.low, range.high), range.flattest),
                {hardness, true, true});
            const StampFrame frame = stampFrame(q);
            table.build(q.radius, hardness);
            const CoverageJob job = jobOf(frame, table.profileFor(q.scaleX, q.scaleY));
            const auto mask = maskOf(job);
            const Supersampled tip(q, frame, hardness);
            const double s = tip.deviation();
            const double bound =
                range.fixedBound > 0.0
                    ? range.fixedBound
                    : std::min(255.0 / (24.0 * s * s) + 0.607 * 255.0 / (32.0 * s) + 3.0, 140.0);
            for (int k = 0; k < 40; ++k) {
                const auto i = static_cast<std::int32_t>(random() % unsigned(job.width));
                const auto j = static_cast<std::int32_t>(random() % unsigned(job.rows));
                const double got = mask[static_cast<std::size_t>(j * job.rowBytes + i)];
                const double error = std::fabs(got - tip.at(i, j));
                worst = std::max(worst, error);
                worstShare = std::max(worstShare, error / bound);
                ASSERT_LE(error, bound)
                    << range.name << ": radius " << q.radius << " hardness " << hardness
                    << " angle " << q.angle << " scaleY " << q.scaleY << " at " << i << ", " << j;
            }
        }
        std::printf("%-16s worst error %.1f of 255, %.2f of the bound\n", range.name, worst,
                    worstShare);
    }
}

}  // namespace
}  // namespace brushwork::npc
