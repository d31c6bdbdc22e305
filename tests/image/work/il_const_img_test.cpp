#include "image/work/il_const_img.h"

#include <gtest/gtest.h>

#include "brushwork/ref.h"
#include "image/work/il_memory_img.h"
#include "image/work/naive_pixels.h"
#include "image/work/pixel_block.h"

namespace brushwork {
namespace {

using test::NaivePixels;

// Against the block converter: boxes and frames of all kinds; half of the configs ask for the
// value's own pixels and so for the fast way.
TEST(ilConstImg, ReadsAsTheConverterWouldFill) {
    for (std::uint32_t seed = 1; seed <= 2000; ++seed) {
        std::mt19937 random(seed);
        const std::int32_t channels = random() % 2 ? 1 : 4;
        const bool own = random() % 2 == 0;
        NaivePixels one({0, 0, 0, 1, 1, 1}, own ? TypeUChar : test::allTypes[random() % 9],
                        OrderInterleaved, channels);
        one.randomize(random);
        if (random() % 4 == 0) std::fill_n(one.data(), channels, std::uint8_t{0});
        const ilPixel pixel(one.type(), channels, one.data());
        const auto image = makeRef<ilConstImg>(pixel);
        const std::int32_t type = own ? TypeUChar : test::allTypes[random() % 9];
        const std::int32_t order =
            own ? std::int32_t{OrderInterleaved} : test::allOrders[random() % 3];
        const std::int32_t count = own ? channels : 1 + static_cast<std::int32_t>(random() % 5);
        const ilTile box = test::randomBox(random, 40, 60);
        ilTile frame = test::randomBox(random, 40, 60);
        if (own) frame.nz = 1;
        NaivePixels buffer(frame, type, order, count);
        buffer.randomize(random);
        NaivePixels expected = buffer;
        std::vector<std::int32_t> list;
        for (int n = 0; seed % 3 == 0 && n < count; ++n)
            list.push_back(static_cast<std::int32_t>(random() % 6) - 1);
        // A value travels as a single pixel of the wanted type, unless one is too small for it.
        ilPixel asked = pixel;
        if (type != pixel.type()) {
            asked = pixel.converted(type, std::max(count, channels));
            if (asked.channels() < std::max(count, channels)) asked = pixel;
        }
        convertBlock(PixelBlock::ofConstant(asked, box),
                     PixelBlock::packed(expected.data(), frame, type, order, count), box,
                     {list.empty() ? nullptr : list.data(), count});
        ilImageConfig config(type, order, count);
        if (!list.empty()) config.channelList = list.data();
        const bool implied = own && list.empty() && random() % 2;
        ASSERT_EQ(image->readRegion(box, buffer.data(), frame, implied ? nullptr : &config),
                  ImageOk);
        ASSERT_EQ(buffer.bytes(), expected.bytes()) << "seed " << seed;
    }
}

TEST(ilConstImg, CannotBeWritten) {
    const auto image = makeRef<ilConstImg>();
    const auto memory = makeRef<ilMemoryImg>(2, 2, 1, 1, TypeUChar, OrderInterleaved);
    const ilTile one = flatTile(0, 0, 1, 1);
    const std::uint8_t byte = 9;
    EXPECT_EQ(image->writeRegion(one, &byte, one), ImageNotAllowed);
    EXPECT_EQ(image->copyRegion(one, *memory, 0, 0, 0, nullptr, CopyDirection::FromOther),
              ImageNotAllowed);
    EXPECT_EQ(image->status(), ImageOk);
    EXPECT_EQ(image->fill(), ilPixel(TypeUChar, 1));
    EXPECT_STREQ(image->className(), "Constant");
    EXPECT_EQ(image->colorModel(), ColorABGR);
    EXPECT_EQ(image->pageSize().x, 128);
    EXPECT_EQ(image->setSize(40, 30, 1, 1), ImageOk);
    EXPECT_EQ(image->sizeX(), 40);
}

TEST(ilConstImg, CopiesAsAFillOfTheOtherImage) {
    const std::uint8_t value[] = {10, 20, 30, 40};
    const auto image = makeRef<ilConstImg>(ilPixel(TypeUChar, 4, value));
    const auto memory = makeRef<ilMemoryImg>(6, 5, 1, 4, TypeUChar, OrderInterleaved);
    memory->fillRegion(memory->box(), ilPixel(TypeUChar, 4));
    const ilImageConfig one(TypeFloat, OrderSeparate, 1, 2);
    EXPECT_EQ(image->copyRegion(flatTile(100, 100, 3, 9), *memory, 4, 3, 0, nullptr,
                                CopyDirection::ToOther),
              ImageOk);
    EXPECT_EQ(
        image->copyRegion(flatTile(0, 0, 1, 1), *memory, 0, 0, 0, &one, CopyDirection::ToOther),
        ImageOk);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 6; ++x)
            for (int c = 0; c < 4; ++c) {
                int expected = x >= 4 && y >= 3 ? value[c] : 0;
                if (x == 0 && y == 0 && c == 2) expected = value[0];
                ASSERT_EQ(memory->data()[(y * 6 + x) * 4 + c], expected) << x << ' ' << y;
            }
}

TEST(ilConstImg, ANewValueChangesTypeAndChannels) {
    const auto image = makeRef<ilConstImg>();
    ilPixel pixel(TypeFloat, 2);
    pixel.setChannel(1, 0.5);
    EXPECT_EQ(image->setFill(pixel), ImageOk);
    EXPECT_EQ(image->channels(), 2);
    EXPECT_EQ(image->dataType(), TypeFloat);
    float values[2] = {};
    const ilTile one = flatTile(-7, 900, 1, 1);
    EXPECT_EQ(image->readRegion(one, values, one), ImageOk);
    EXPECT_EQ(values[1], 0.5f);
}

}  // namespace
}  // namespace brushwork
