#include "image/smart/page_accessor.h"

#include "page_rig.h"

namespace brushwork {
namespace {

using namespace test;
using View = PageAccessor::View;

class PageAccessorTest : public PageTest {};

constexpr std::int32_t left = -256, bottom = 384;  // of the page in its image

// Reads across the page's edge: what isn't on the page stays.
TEST_P(PageAccessorTest, ReadsWhatLiesOnThePage) {
    const ilTile box = flatTile(left + 120, bottom - 3, 16, 8);
    PageAccessor accessor;
    EXPECT_EQ(accessor.read(box, nullptr, box, nullptr), ImageUnusable);
    for (const std::uint8_t channels : {std::uint8_t{4}, std::uint8_t{1}, std::uint8_t{4}})
        for (const bool solid : {false, true, false}) {
            const Pixels pixels = solid ? uniform(channels, 0x44332211) : pattern(channels, 8);
            SmartPageRef page = solid ? solidPage(channels, pixels[0]) : pageOf(channels, pixels);
            const ilImageConfig words(TypeLong, OrderInterleaved, channels);
            for (const ilImageConfig* config :
                 {static_cast<const ilImageConfig*>(nullptr), &words}) {
                ASSERT_TRUE(accessor.open(*page, left, bottom, View::Read, config));
                EXPECT_EQ(page->pins, 1);
                const std::size_t unit = config ? 4 : 1;
                std::vector<std::uint8_t> buffer(16 * 8 * channels * unit, 0xEE);
                ASSERT_EQ(accessor.read(box, buffer.data(), box, config), ImageOk);
                for (std::int32_t y = 0; y < 8; ++y)
                    for (std::int32_t x = 0; x < 16; ++x)
                        for (std::size_t c = 0; c < channels; ++c) {
                            const std::size_t at =
                                (static_cast<std::size_t>(y * 16 + x) * channels + c) * unit;
                            const bool inside = x < 8 && y >= 3;
                            const auto index =
                                static_cast<std::size_t>((y - 3) * pageSide + x + 120);
                            const std::uint32_t value =
                                inside ? pixels[index] >> (8 * c) & 255 : 0xEE;
                            ASSERT_EQ(buffer[at], value) << x << ", " << y;
                        }
            }
            accessor.close();
            EXPECT_EQ(page->pins, 0);
            EXPECT_EQ(accessor.image(), nullptr);
        }
}

TEST_P(PageAccessorTest, WritesAndFillsPartOfAPage) {
    Pixels pixels = pattern(4, 9);
    SmartPageRef page = pageOf(4, pixels);
    PageAccessor accessor;
    ASSERT_TRUE(accessor.open(*page, left, bottom, View::Write));
    const ilTile box = flatTile(left - 2, bottom - 2, 4, 4);
    const std::vector<std::uint32_t> written(16, 0x01020304);
    ASSERT_EQ(accessor.write(box, written.data(), box, nullptr), ImageOk);
    const ilTile kept = flatTile(left, bottom, 128, 100);
    ASSERT_EQ(accessor.fill(flatTile(left + 64, bottom, 1000, 1000), pixelOfWord(4, 0xA0B0C0D0),
                            nullptr, &kept),
              ImageOk);
    for (std::int32_t i = 0; i < pagePixels; ++i) {
        const std::int32_t x = i % pageSide, y = i / pageSide;
        if (x < 2 && y < 2) pixels[static_cast<std::size_t>(i)] = 0x01020304;
        if (x >= 64 && y >= 100) pixels[static_cast<std::size_t>(i)] = 0xA0B0C0D0;
    }
    accessor.close();
    EXPECT_EQ(pixelsOf(page), pixels);
}

// A view for writing of a solid page is a buffer of the accessor's own.
TEST_P(PageAccessorTest, SolidPagesAreNotWritten) {
    SmartPageRef page = solidPage(1, 7);
    PageAccessor accessor;
    ASSERT_TRUE(accessor.open(*page, 0, 0, View::Write));
    const std::uint8_t value = 9;
    const ilTile box = flatTile(3, 3, 1, 1);
    ASSERT_EQ(accessor.write(box, &value, box, nullptr), ImageOk);
    std::uint8_t read[2] = {};
    const ilTile both = flatTile(2, 3, 2, 1);
    ASSERT_EQ(accessor.read(both, read, both, nullptr), ImageOk);
    EXPECT_EQ(read[0], 7);
    EXPECT_EQ(read[1], 9);
    EXPECT_TRUE(page->isSolid());
    EXPECT_EQ(page->solid, 7u);
    ASSERT_TRUE(accessor.open(*page, 0, 0, View::Read));
    EXPECT_NE(accessor.write(box, &value, box, nullptr), ImageOk);
    page->state = PageState::Unrealized;
    EXPECT_FALSE(accessor.open(*page, 0, 0, View::Read));
    EXPECT_EQ(page->pins, 0);
    page->state = PageState::Solid;
}

INSTANTIATE_TEST_SUITE_P(Memory, PageAccessorTest, ::testing::Bool(), managerName);

}  // namespace
}  // namespace brushwork
