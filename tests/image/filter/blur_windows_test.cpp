#include "image/filter/blur_windows.h"

#include <gtest/gtest.h>

namespace brushwork {
namespace {

std::uint32_t divided(std::uint32_t sum, float reciprocal) {
    return static_cast<std::uint32_t>(static_cast<float>(sum) * reciprocal);
}

// Every sum of up to 1024 bytes.
TEST(BlurReciprocal, IsWholeNumberDivisionForEverySmallCount) {
    for (std::uint32_t count = 1; count <= 1024; ++count) {
        const float reciprocal = blurReciprocal(count);
        for (std::uint32_t sum = 0; sum <= 255 * count; ++sum) {
            if (divided(sum, reciprocal) != sum / count) FAIL() << sum << " / " << count;
        }
    }
}

// The product never falls as the sum grows, so between two multiples of the count the quotient is
// right everywhere if it is right at both ends.
TEST(BlurReciprocal, IsWholeNumberDivisionForEveryCountWithinTheLimit) {
    for (std::uint32_t count = 1; count <= blurReciprocalLimit; ++count) {
        const float reciprocal = blurReciprocal(count);
        for (std::uint32_t q = 0; q <= 255; ++q) {
            const std::uint32_t last = q == 255 ? q * count : (q + 1) * count - 1;
            ASSERT_EQ(divided(q * count, reciprocal), q) << count;
            ASSERT_EQ(divided(last, reciprocal), q) << count;
        }
    }
}

TEST(BlurWindows, CountsWhatACounterCounts) {
    for (const std::int32_t length : {1, 2, 3, 7, 30, 64}) {
        for (std::int32_t size = 0; size < 90; ++size) {
            const BlurWindows windows = blurWindows(length, size);
            const std::int32_t half = size / 2;
            const std::int32_t reach[] = {(half * 65 + 128) / 256, (half * 122 + 128) / 256,
                                          (half * 176 + 128) / 256, half};
            for (std::int32_t c = 0; c < length; ++c) {
                std::uint64_t count = 0;
                for (const std::int32_t r : reach) {
                    for (std::int32_t p = c - r; p <= c + r; ++p) count += p >= 0 && p < length;
                }
                ASSERT_EQ(windows.countAt(c), count) << length << ' ' << size << ' ' << c;
                ASSERT_LE(count, windows.largestCount());
            }
        }
    }
}

}  // namespace
}  // namespace brushwork
