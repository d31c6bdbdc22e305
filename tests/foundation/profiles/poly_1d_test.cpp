#include "foundation/profiles/poly_1d.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace brushwork {
namespace {

TEST(Poly1D, DegreeIsTheLastCoefficientThatCounts) {
    EXPECT_EQ(Poly1D().degree(), -1);
    EXPECT_EQ(Poly1D().eval(3.0f), 0.0f);
    EXPECT_TRUE(Poly1D().isConstant());
    EXPECT_EQ(Poly1D({-0.0f, 0.0f}).degree(), -1);
    for (std::size_t k = 0; k < 8; ++k) {
        Poly1D::Coefficients c{};
        c[k] = 2.0f;
        const Poly1D poly(c);
        EXPECT_EQ(poly.degree(), static_cast<std::int32_t>(k));
        EXPECT_EQ(poly.eval(3.0f), 2.0f * static_cast<float>(std::pow(3.0, k)));
    }
    Poly1D line({1, 2, 3, 4, 5, 6, 7, 8});
    line.setLine(0.25f, 0.5f);
    EXPECT_EQ(line.degree(), 1);
    EXPECT_EQ(line.eval(0.5f), 0.5f);
}

TEST(Poly1D, KeepsTheOrderOfItsRoundings) {
    // The order decides: 1 + 2^-24 is 1 in float.
    const float tiny = std::ldexp(1.0f, -24);
    const Poly1D poly({1.0f, tiny, tiny});
    EXPECT_EQ(poly.eval(1.0f), 1.0f + (tiny + tiny));
    EXPECT_NE(poly.eval(1.0f), (1.0f + tiny) + tiny);

    std::mt19937 random(1);
    std::uniform_real_distribution<float> draw(-2.0f, 2.0f);
    for (int round = 0; round < 1000; ++round) {
        Poly1D::Coefficients c;
        for (float& value : c) value = draw(random);
        const float x = draw(random) * 0.5f;
        float r = c[7] * x;
        r = (r + c[6]) * x;
        r = (r + c[5]) * x;
        r = (r + c[4]) * x;
        r = (r + c[3]) * x;
        r = (r + c[2]) * x;
        r = (r + c[1]) * x;
        ASSERT_EQ(Poly1D(c).eval(x), c[0] + r);
        double exact = 0.0;
        for (std::size_t k = 8; k-- > 0;) exact = exact * double{x} + double{c[k]};
        ASSERT_NEAR(double{Poly1D(c).eval(x)}, exact, 1e-5);
    }
}

}  // namespace
}  // namespace brushwork
