#include "image/work/byte_swizzle.h"

#include <gtest/gtest.h>

#include <vector>

namespace brushwork {
namespace {

TEST(ByteSwizzle, MovesBytesOfEveryWord) {
    struct Case {
        void (*run)(const void*, void*, std::size_t);
        std::size_t from[4];  // of each byte of the result
    };
    const Case cases[] = {
        {swapBytes13, {0, 3, 2, 1}}, {reverseBytes, {3, 2, 1, 0}}, {swapBytes02, {2, 1, 0, 3}}};
    for (const Case& swizzle : cases)
        for (std::size_t count = 0; count < 40; ++count)
            for (std::size_t skew = 0; skew < 4; ++skew) {
                std::vector<std::uint8_t> source(skew + 4 * count + 4);
                for (std::size_t n = 0; n < source.size(); ++n)
                    source[n] = static_cast<std::uint8_t>(n * 37 + 11);
                std::vector<std::uint8_t> target(source.size(), 0xA5);
                swizzle.run(source.data() + skew, target.data() + skew, count);
                for (std::size_t n = 0; n < target.size(); ++n) {
                    const bool inside = n >= skew && n < skew + 4 * count;
                    const std::size_t word = inside ? (n - skew) / 4 * 4 : 0;
                    ASSERT_EQ(target[n],
                              inside ? source[skew + word + swizzle.from[(n - skew) % 4]] : 0xA5);
                }
                // In place, and twice is the identity.
                std::vector<std::uint8_t> again = source;
                swizzle.run(again.data() + skew, again.data() + skew, count);
                swizzle.run(again.data() + skew, again.data() + skew, count);
                ASSERT_EQ(again, source);
            }
}

}  // namespace
}  // namespace brushwork
