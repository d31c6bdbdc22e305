#include "image/work/il_pattern_img.h"

#include <gtest/gtest.h>

#include <random>

#include "image/work/il_memory_img.h"

namespace brushwork {
namespace {

constexpr std::int32_t side = ilPatternPage::side;

Ref<ilMemoryImg> noise(std::int32_t width, std::int32_t height, std::mt19937& random) {
    auto image = makeRef<ilMemoryImg>(width, height, 1, 1, TypeUChar, OrderInterleaved);
    for (std::int32_t n = 0; n < width * height; ++n)
        image->data()[n] = static_cast<std::uint8_t>(random());
    return image;
}

std::int32_t modulo(std::int32_t value, std::int32_t size) {
    return ((value % size) + size) % size;
}

// All of a page against plain modulo arithmetic. The first wrong pixel, or nothing.
void expectPage(const ilMemoryImg& source, std::int32_t width, std::int32_t height,
                ilPatternImg& pattern, std::int32_t x, std::int32_t y) {
    PageLockRequest request;
    request.x = x;
    request.y = y;
    ASSERT_EQ(pattern.lockPages({&request, 1}, LockRead), ImageOk);
    ASSERT_TRUE(request.page && request.page->isValid());
    const ilPage& page = *request.page;
    EXPECT_TRUE(x >= page.x && x < page.x + side && y >= page.y && y < page.y + side);
    EXPECT_EQ(page.c, 1);
    for (std::int32_t j = 0; j < side; ++j)
        for (std::int32_t i = 0; i < side; ++i) {
            const std::int32_t column = modulo(page.x + i, width);
            const std::int32_t row = modulo(page.y + j, height);
            ASSERT_EQ(page.data()[j * side + i], source.data()[row * width + column])
                << width << " by " << height << " at " << x << ", " << y << ": " << i << ", " << j;
        }
    pattern.unlockPages({&request, 1});
    EXPECT_EQ(request.page, nullptr);
}

// A size on one axis with a fixed one on the other, which is different for each.
TEST(ilPatternImg, EveryPageRepeatsThePattern) {
    std::mt19937 random(400);
    for (std::int32_t size = 1; size <= 400; ++size) {
        const std::int32_t width = size;
        const std::int32_t height = 1 + (size * 37) % 400;
        const auto source = noise(width, height, random);
        const auto pattern = makeRef<ilPatternImg>(source.get());
        for (std::int32_t y = 0; y < height; y += side)
            for (std::int32_t x = 0; x < width; x += side) {
                expectPage(*source, width, height, *pattern, x, y);
                if (testing::Test::HasFatalFailure()) return;
            }
        for (int n = 0; n < 3; ++n) {
            const auto place = [&] { return static_cast<std::int32_t>(random() % 4000) - 2000; };
            expectPage(*source, width, height, *pattern, place(), place());
            if (testing::Test::HasFatalFailure()) return;
        }
    }
}

TEST(ilPatternImg, PagesStandInTheCallersCoordinates) {
    std::mt19937 random(7);
    const auto source = noise(200, 200, random);
    const auto pattern = makeRef<ilPatternImg>(source.get());
    PageLockRequest requests[3];
    requests[0].x = -1;
    requests[1].x = 199 + 200;
    requests[2].y = 328;
    ASSERT_EQ(pattern->lockPages(requests, LockRead), ImageOk);
    EXPECT_EQ(requests[0].page->x, -72);  // the page of columns 128 to 199, ending at -1
    EXPECT_EQ(requests[1].page->x, 328);
    EXPECT_EQ(requests[0].page->data(), requests[1].page->data());
    EXPECT_EQ(requests[2].page->y, 328);
    EXPECT_EQ(requests[0].page->data()[72], source->data()[0]);
    pattern->unlockPages(requests);
    EXPECT_EQ(pattern->extent(), flatTile(0, 0, 200, 200));
    EXPECT_STREQ(pattern->className(), "PattternImg");
    EXPECT_EQ(pattern->imageKind(), KindPattern);
    EXPECT_EQ(pattern->pageSize().x, side);
}

TEST(ilPatternImg, TheRegionOperationsDoNothing) {
    std::mt19937 random(8);
    const auto source = noise(3, 3, random);
    const auto pattern = makeRef<ilPatternImg>(source.get());
    std::uint8_t byte = 77;
    const ilTile one = flatTile(0, 0, 1, 1);
    EXPECT_EQ(pattern->readRegion(one, &byte, one), ImageOk);
    EXPECT_EQ(pattern->writeRegion(one, &byte, one), ImageOk);
    EXPECT_EQ(pattern->fillRegion(one, ilPixel()), ImageOk);
    EXPECT_EQ(pattern->copyRegion(one, *source, 0, 0, 0, nullptr, CopyDirection::ToOther), ImageOk);
    EXPECT_EQ(byte, 77);
}

TEST(ilPatternImg, NeedsAMemoryImage) {
    std::mt19937 random(9);
    const auto source = noise(9, 2, random);
    const auto pattern = makeRef<ilPatternImg>(source.get());
    const auto other = makeRef<ilPatternImg>();
    EXPECT_EQ(pattern->setPattern(nullptr), ImageUnusable);
    EXPECT_EQ(pattern->setPattern(other.get()), ImageUnusable);
    EXPECT_EQ(pattern->setPattern(makeRef<ilMemoryImg>().get()), ImageUnusable);
    expectPage(*source, 9, 2, *pattern, -5, 5);
    PageLockRequest request;
    EXPECT_EQ(other->lockPages({}, LockRead), ImageOk);
    EXPECT_EQ(other->lockPages({&request, 1}, LockRead), ImageUnusable);
    EXPECT_EQ(request.page, nullptr);
}

}  // namespace
}  // namespace brushwork
