#include "fill/mask_outline.h"

#include <gtest/gtest.h>

#include "fill/fill_pictures.h"

namespace brushwork::test {
namespace {

// Against the rule, pixel by pixel, with either value around the mask.
TEST(MaskOutline, IsTheSelectedPixelsBesideUnselectedOnes) {
    for (std::uint32_t seed = 0; seed < 8; ++seed) {
        Random random(seed);
        const ilTile box = flatTile(-90, -130, 420, 310);
        const std::uint8_t around = seed % 2 == 0 ? 0 : 255;
        Picture picture(box, 1, around);
        for (int i = 0; i < 12; ++i)
            picture.fill(
                flatTile(box.x + static_cast<std::int32_t>(between(random, 0, 400)),
                         box.y + static_cast<std::int32_t>(between(random, 0, 300)),
                         static_cast<std::int32_t>(between(random, 1, 200)),
                         static_cast<std::int32_t>(between(random, 1, 200))),
                between(random, 0, 1) == 0 ? between(random, 0, 127) : between(random, 128, 255));
        const Ref<ilSmartImage> mask(new ilSmartImage(ilPixel(TypeUChar, 1, &around)));
        mask->writeRegion(box, picture.bytes().data(), box);
        const Ref<ilSmartImage> outline = maskOutline(*mask);
        ASSERT_TRUE(outline);
        const auto isSelected = [&](std::int32_t x, std::int32_t y) {
            return (picture.holds(x, y) ? picture.at(x, y) : around) >= 128;
        };
        for (std::int32_t y = box.y - 3; y < box.endY() + 3; ++y)
            for (std::int32_t x = box.x - 3; x < box.endX() + 3; ++x) {
                const bool edge =
                    isSelected(x, y) && !(isSelected(x - 1, y) && isSelected(x + 1, y) &&
                                          isSelected(x, y - 1) && isSelected(x, y + 1));
                ASSERT_EQ(outline->getPixel(x, y), edge ? 255U : 0U)
                    << "seed " << seed << " at " << x << ", " << y;
            }
    }
}

TEST(MaskOutline, HasTightBoundsAndWantsOneChannel) {
    const Ref<ilSmartImage> mask = newMask();
    const std::uint8_t on = 255;
    mask->fillRegion(flatTile(100, 200, 1000, 900), ilPixel(TypeUChar, 1, &on));
    ilTile bounds;
    maskOutline(*mask)->bounds(bounds);
    EXPECT_EQ(bounds, flatTile(100, 200, 1000, 900));
    maskOutline(*newMask())->bounds(bounds);
    EXPECT_TRUE(bounds.isEmpty());
    EXPECT_FALSE(maskOutline(*smartOf(Picture(flatTile(0, 0, 5, 5), 4, 0))));
}

}  // namespace
}  // namespace brushwork::test
