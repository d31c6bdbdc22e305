#include "document/layer/screen_block.h"

#include <gtest/gtest.h>

#include "brushwork/host_call_table.h"

namespace brushwork::test {
namespace {

std::int32_t screenWidth = 0, screenHeight = 0;

TEST(ScreenBlock, IsSharedUntilTheScreenChanges) {
    const Ref<ilSPMemoryImg> own = screenBlock(30, 20);
    ASSERT_TRUE(own);
    EXPECT_EQ(own->sizeX(), 30);
    EXPECT_EQ(screenBlock(30, 20).get(), own.get());
    EXPECT_FALSE(screenBlock(0, 20));
    EXPECT_FALSE(screenBlock(40000, 20));

    hostCallTable().screenSize = [](std::int32_t* width, std::int32_t* height) {
        *width = screenWidth;
        *height = screenHeight;
    };
    screenWidth = 64;
    screenHeight = 48;
    const Ref<ilSPMemoryImg> screen = screenBlock(30, 20);
    EXPECT_EQ(screen->sizeX(), 64);
    EXPECT_EQ(screen->sizeY(), 48);
    EXPECT_EQ(screenBlock(99, 99).get(), screen.get());
    screenHeight = 50;
    EXPECT_EQ(screenBlock(30, 20)->sizeY(), 50);
    // Who still shows the former block may.
    screen->data()[64 * 48 * 4 - 1] = 1;
    screenWidth = -1;
    EXPECT_EQ(screenBlock(30, 20)->sizeX(), 30);
    clearHostCallTable();
    dropScreenBlock();
}

}  // namespace
}  // namespace brushwork::test
