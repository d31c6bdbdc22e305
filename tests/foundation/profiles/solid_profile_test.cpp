#include "foundation/profiles/solid_profile.h"

#include <gtest/gtest.h>

namespace brushwork {
namespace {

TEST(SolidProfile, IsOneToItsEdgeAndFallsWithTheSquare) {
    const SolidProfile profile(0.25f, 3.0f, 7.0f);
    EXPECT_EQ(profile.eval(-100.0f), 1.0f);
    EXPECT_EQ(profile.eval(0.25f), 1.0f);
    for (int i = 1; i <= 200; ++i) {
        const float x = 0.25f + static_cast<float>(i) * 0.01f;
        const double beyond = double{x} - 0.25;
        EXPECT_NEAR(double{profile.eval(x)}, 1.0 - 3.0 * beyond * beyond, 2e-6) << x;
    }
    EXPECT_EQ(profile.eval(1.25f), -2.0f);
    EXPECT_EQ(profile.value(), 7.0f);
    EXPECT_TRUE(SolidProfile(0.5f, 0.0f).isConstant());
    EXPECT_FALSE(profile.isConstant());
}

}  // namespace
}  // namespace brushwork
