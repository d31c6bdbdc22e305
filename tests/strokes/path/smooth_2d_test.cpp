#include "strokes/path/smooth_2d.h"

#include <gtest/gtest.h>

#include <array>

#include "brushwork/ref.h"

namespace brushwork {
namespace {

TEST(Smooth2D, GivesTheSamplesOfBothChannelsInOrder) {
    const auto smooth = makeRef<Smooth2D>(0.9f, 0.921f, 6);
    SmoothChannel x(0.9f, 0.921f), y(0.9f, 0.921f);
    float place[2] = {-1.0f, -1.0f};
    EXPECT_FALSE(smooth->nextPoint(place));
    for (int n = 0; n < 20; ++n) {
        const float pen[2] = {10.0f * static_cast<float>(n), 40.0f - static_cast<float>(n * n)};
        std::array<float, 6> wantedX{}, wantedY{};
        const int count = x.update(pen[0], wantedX);
        y.update(pen[1], wantedY);
        EXPECT_EQ(count, n == 0 ? 0 : 6);
        smooth->addPoint(pen);
        // Every third time some are left over, and gone with the next input.
        const int asked = n % 3 == 2 ? count / 2 : count;
        for (std::size_t i = 0; i < static_cast<std::size_t>(asked); ++i) {
            ASSERT_TRUE(smooth->nextPoint(place));
            EXPECT_EQ(place[0], wantedX[i]);
            EXPECT_EQ(place[1], wantedY[i]);
        }
        if (asked == count) {
            EXPECT_FALSE(smooth->nextPoint(place));
        }
    }
}

}  // namespace
}  // namespace brushwork
