#include "image/filter/convolution_kernel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>
#include <string>
#include <tuple>
#include <vector>

#include "foundation/services/log.h"

namespace brushwork {
namespace {

TEST(ConvolutionKernel, WeightsAreTheSharpeningFormula) {
    for (const float radius : {0.5f, 1.0f, 1.5f, 4.0f, 9.9f, 40.0f}) {
        for (const float sigma : {0.1f, 0.33333334f, 1.0f}) {
            for (const float sharpness : {-1.0f, -0.25f, 0.5f, 3.0f}) {
                const ConvolutionKernel kernel(sharpness, radius, sigma);
                const int half = static_cast<int>(radius);
                const auto side = static_cast<std::uint32_t>(2 * half + 1);
                ASSERT_EQ(kernel.size(), side);
                ASSERT_TRUE(kernel.isBuilt());
                double total = 0.0;
                std::vector<double> gaussian;
                for (int dy = -half; dy <= half; ++dy) {
                    for (int dx = -half; dx <= half; ++dx) {
                        const double deviation = double{sigma} * double{radius};
                        gaussian.push_back(
                            std::exp(-0.5 * (dx * dx + dy * dy) / (deviation * deviation)));
                        total += gaussian.back();
                    }
                }
                double sum = 0.0;
                for (std::size_t i = 0; i < gaussian.size(); ++i) {
                    double expected = -double{sharpness} * gaussian[i] / total;
                    if (i == gaussian.size() / 2) expected += double{sharpness} + 1.0;
                    ASSERT_NEAR(double{kernel.weights()[i]}, expected, 1e-5)
                        << radius << ' ' << sigma << ' ' << sharpness << " at " << i;
                    sum += double{kernel.weights()[i]};
                }
                EXPECT_NEAR(sum, 1.0, 1e-4) << radius << ' ' << sigma << ' ' << sharpness;
            }
        }
    }
}

TEST(ConvolutionKernel, NoSharpnessOrNoRadiusIsTheIdentity) {
    for (const auto& [sharpness, radius, side] :
         {std::tuple{0.0f, 3.0f, 7u}, std::tuple{2.0f, 0.0f, 1u}, std::tuple{-1.0f, -5.0f, 1u}}) {
        const ConvolutionKernel kernel(sharpness, radius, 0.3f);
        ASSERT_EQ(kernel.size(), side);
        for (std::uint32_t i = 0; i < side * side; ++i) {
            EXPECT_EQ(kernel.weights()[i], i == side * side / 2 ? 1.0f : 0.0f);
            EXPECT_EQ(kernel.fixedWeights()[i], i == side * side / 2 ? 2048 : 0);
        }
    }
}

TEST(ConvolutionKernel, ClampsItsNumbers) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    ConvolutionKernel kernel(-1.0f, nan, -2.0f);
    EXPECT_EQ(kernel.radius(), 0.0f);
    EXPECT_EQ(kernel.sigma(), 0.00001f);
    kernel.setRadius(2.9f);
    EXPECT_EQ(kernel.size(), 5u);
    kernel.setSigma(nan);
    EXPECT_EQ(kernel.sigma(), 0.00001f);
    kernel.setRadius(-3.0f);
    EXPECT_EQ(kernel.size(), 1u);
    // So narrow that its exponent overflows: all weight at the centre.
    const ConvolutionKernel narrow(0.5f, 1e-30f, 0.0f);
    EXPECT_EQ(narrow.weights()[0], 1.0f);
    const ConvolutionKernel wide(-1.0f, 5000.0f, 0.33333334f);
    EXPECT_EQ(wide.size(), 10001u);
    EXPECT_EQ(wide.weights(), nullptr);
    EXPECT_EQ(ConvolutionKernel(-1.0f, 1e30f, 1.0f).size(), 0x7FFFFFFFu);
}

TEST(ConvolutionKernel, FixedWeightsNeedEveryWeightInRange) {
    constexpr float bound = 15.999511f;
    const float below = std::nextafter(bound, 0.0f);
    const float good[] = {below, -below, 0.75f, -0.0007f};
    const ConvolutionKernel kernel(good, 2);
    ASSERT_NE(kernel.fixedWeights(), nullptr);
    EXPECT_EQ(kernel.fixedWeights()[0], 32766);
    EXPECT_EQ(kernel.fixedWeights()[1], -32766);
    EXPECT_EQ(kernel.fixedWeights()[2], 1536);
    EXPECT_EQ(kernel.fixedWeights()[3], -1);
    for (const float bad : {bound, -bound, 16.0f, std::numeric_limits<float>::quiet_NaN()}) {
        EXPECT_EQ(ConvolutionKernel(&bad, 1).fixedWeights(), nullptr) << bad;
    }
    EXPECT_EQ(ConvolutionKernel(20.0f, 1.0f, 1.0f).fixedWeights(), nullptr);
}

TEST(ConvolutionKernel, TablesAndCopies) {
    const float table[] = {0.25f, 0.5f, -1.0f, 2.0f};
    const ConvolutionKernel given(table, 2);
    EXPECT_EQ(given.sharpness(), 0.5f);
    EXPECT_EQ(given.radius(), 1.5f);
    EXPECT_EQ(given.sigma(), 0.33333334f);
    EXPECT_FALSE(given.isBuilt());
    const ConvolutionKernel copy(given);
    float out[4] = {};
    copy.copyWeights(out);
    EXPECT_TRUE(std::equal(out, out + 4, table));
    EXPECT_EQ(copy.fixedWeights()[3], 4096);
    copy.copyWeights(nullptr);

    const ConvolutionKernel none(nullptr, 3);
    EXPECT_EQ(none.size(), 0u);
    none.copyWeights(out);
    EXPECT_EQ(out[0], 0.25f);

    ConvolutionKernel rebuilt(given);
    rebuilt.setSharpness(0.0f);
    EXPECT_TRUE(rebuilt.isBuilt());
    EXPECT_EQ(rebuilt.size(), 3u);
    EXPECT_EQ(rebuilt.weights()[4], 1.0f);
}

TEST(ConvolutionKernel, PrintsItsRows) {
    std::string text;
    setLogSink([&text](std::string_view part) { text.append(part); });
    const float table[] = {0.25f, 0.5f, -1.0f, 2.0f};
    ConvolutionKernel(table, 2).print();
    setLogSink({});
    EXPECT_EQ(text,
              "Sharpness = 0.500000, radius = 1.500000, sigma = 0.333333, Size = 2x2\n"
              " 0.250000  0.500000\n -1.000000  2.000000\n\n");
}

}  // namespace
}  // namespace brushwork
