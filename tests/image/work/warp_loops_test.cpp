#include "image/work/warp_loops.h"

#include <gtest/gtest.h>

#include "image/filter/kernel_recipe.h"
#include "image/work/corner_warp_solver.h"
#include "image/work/perspective_warp_solver.h"

namespace brushwork {
namespace {

constexpr SampleMode modes[3] = {SampleMode::Nearest, SampleMode::Bilinear, SampleMode::Bicubic};

struct Warp {
    std::int32_t channels;
    SampleMode mode;
    SampleSource source;

    // Pixel by pixel, with nothing but solve() and one sample.
    [[nodiscard]] std::vector<std::uint8_t> naive(const QuadSolver& solver, WarpTarget shape,
                                                  std::size_t size) const {
        std::vector<std::uint8_t> out(size, test::GuardedBytes::sentinel);
        const auto index = static_cast<std::size_t>(mode);
        const SampleRun sample =
            channels == 4 ? samplingKernelsScalar.four[index] : samplingKernelsScalar.one[index];
        const float shift = mode == SampleMode::Nearest ? 0.0f : 0.5f;
        for (std::int32_t j = 0; j < shape.height; ++j)
            for (std::int32_t i = 0; i < shape.width; ++i) {
                float x = static_cast<float>(shape.originX + i) + 0.5f;
                float y = static_cast<float>(shape.originY + j) + 0.5f;
                if (!solver.solve(x, y)) continue;
                const std::int32_t fx = toFixed(x - shift);
                const std::int32_t fy = toFixed(y - shift);
                sample(source, &fx, &fy, 1, out.data() + j * shape.rowBytes + i * channels);
            }
        return out;
    }
};

TEST(WarpLoops, EqualOneSolveAndSampleAPixel) {
    test::Random random(41);
    std::vector<VectorLevel> levels = test::vectorLevels();
    levels.push_back(VectorLevel::Scalar);
    const QuadCorners quads[] = {
        {{{-20.3f, 5.5f}, {88.0f, -12.0f}, {97.5f, 80.25f}, {4.0f, 69.0f}}},
        {{{4.0f, 69.0f}, {97.5f, 80.25f}, {88.0f, -12.0f}, {-20.3f, 5.5f}}},  // clockwise
        {{{10, 10}, {60, 30}, {40, 80}, {-10, 60}}},                          // a parallelogram
        {{{0, 0}, {90, 0}, {25, 25}, {0, 90}}},                               // concave
    };
    for (const VectorLevel level : levels)
        for (const std::int32_t channels : {1, 4})
            for (const SampleMode mode : modes)
                for (const QuadCorners& quad : quads) {
                    test::GuardedBytes picture(static_cast<std::size_t>(37 * 29 * channels), 0);
                    picture.fill(random);
                    const Warp warp{
                        channels, mode, {picture.data(), 37, 29, 37 * channels, {7, 8, 9, 10}}};
                    const CornerWarpSolver corner(quad, 37.0f, 29.0f);
                    const PerspectiveWarpSolver perspective(quad, 37.0f, 29.0f,
                                                            quadToSquare(quad).value());
                    const WarpTarget shape{nullptr, 131, 70, 131 * channels + 5, -17, -3};
                    for (const QuadSolver* solver :
                         {static_cast<const QuadSolver*>(&corner),
                          static_cast<const QuadSolver*>(&perspective)}) {
                        const auto size = static_cast<std::size_t>(shape.rowBytes * shape.height);
                        test::GuardedBytes out(size, random() % 32);
                        WarpTarget target = shape;
                        target.pixels = out.data();
                        const test::AtLevel at(level);
                        ASSERT_TRUE(warpPixels(*solver, warp.source, mode, channels, target));
                        ASSERT_EQ(out.bytes(), warp.naive(*solver, shape, size))
                            << vectorLevelName(level) << " channels " << channels << " mode "
                            << int(mode);
                        ASSERT_TRUE(out.guardsIntact());
                    }
                }
}

TEST(WarpLoops, AWarpToTheSamePlaceIsTheIdentity) {
    test::Random random(42);
    test::GuardedBytes picture(150 * 90 * 4, 0);
    picture.fill(random);
    const SampleSource source{picture.data(), 150, 90, 150 * 4, {}};
    const QuadCorners corners = {{{0, 0}, {150, 0}, {150, 90}, {0, 90}}};
    const PerspectiveWarpSolver solver(corners, 150.0f, 90.0f, quadToSquare(corners).value());
    for (const SampleMode mode : modes) {
        std::vector<std::uint8_t> out(picture.size());
        ASSERT_TRUE(warpPixels(solver, source, mode, 4, {out.data(), 150, 90, 150 * 4, 0, 0}));
        EXPECT_EQ(out, picture.bytes()) << int(mode);
    }
}

// Any other solver is asked pixel by pixel.
TEST(WarpLoops, TakesSolversOfOthers) {
    class Swap final : public QuadSolver {
      public:
        Swap() : QuadSolver({}, 4.0f, 4.0f) {}
        bool solve(float& x, float& y) const override {
            std::swap(x, y);
            return x < 4.0f && y < 4.0f;
        }
    };
    const std::uint8_t pixels[4] = {1, 2, 3, 4};
    std::uint8_t out[4] = {};
    ASSERT_TRUE(
        warpPixels(Swap(), {pixels, 2, 2, 2, {}}, SampleMode::Nearest, 1, {out, 2, 2, 2, 0, 0}));
    EXPECT_EQ(std::vector<std::uint8_t>(out, out + 4), (std::vector<std::uint8_t>{1, 3, 2, 4}));
    EXPECT_FALSE(
        warpPixels(Swap(), {pixels, 2, 2, 2, {}}, SampleMode::Nearest, 2, {out, 1, 1, 2, 0, 0}));
    EXPECT_FALSE(warpPixels(Swap(), {}, SampleMode::Nearest, 1, {out, 2, 2, 2, 0, 0}));
}

}  // namespace
}  // namespace brushwork
