#include "platform/page_memory.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace brushwork::platform {
namespace {

TEST(PageMemory, IsAlignedZeroedAndWritableToItsLastByte) {
    for (const std::size_t bytes : {std::size_t{1}, std::size_t{4097}, std::size_t{5242880}}) {
        auto* const block = static_cast<std::uint8_t*>(takePageMemory(bytes));
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % 65536, 0u);
        EXPECT_EQ(block[bytes - 1], 0);
        block[0] = block[bytes - 1] = 1;
        givePageMemory(block, bytes);
    }
}

TEST(PageMemory, AnswersNullToWhatNoSystemHas) {
    EXPECT_EQ(takePageMemory(0), nullptr);
    EXPECT_EQ(takePageMemory(std::numeric_limits<std::size_t>::max()), nullptr);
    EXPECT_EQ(takePageMemory(std::numeric_limits<std::size_t>::max() / 2), nullptr);
    givePageMemory(nullptr, 0);
}

}  // namespace
}  // namespace brushwork::platform
