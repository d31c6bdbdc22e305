#include "image/chain/il_pixel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace brushwork {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

// What a channel holds after storing, by its definition. A negative value in an unsigned char goes
// down to -128 and shows as its low byte.
double stored(std::int32_t type, double value) {
    const DataTypeInfo& info = dataTypeInfo(type);
    if (type == TypeDouble) return value;
    if (type == TypeFloat) {
        return std::isinf(value)
                   ? value
                   : static_cast<float>(std::clamp(value, info.minimum, info.maximum));
    }
    const double whole = std::trunc(std::clamp(value, info.minimum, info.maximum));
    return type == TypeUChar && whole < 0 ? whole + 256 : whole;
}

TEST(IlPixel, StoresAndReadsEveryTypeLikeDouble) {
    std::mt19937 random(5);
    const double special[] = {0.0,   -0.0, 0.5,    0.999,  -0.999,   1.0,       127.5,       128,
                              -128,  -129, 255.99, 256,    -1.0,     32767.9,   -32769,      65536,
                              2.1e9, 3e9,  4.3e9,  -2.2e9, 1e19,     -1e19,     1e300,       -1e300,
                              1e38,  4e38, 1e-320, 12.25,  infinity, -infinity, 4294967295.5};
    for (std::int32_t type = 1; type <= 256; type *= 2) {
        SCOPED_TRACE(dataTypeInfo(type).name);
        const auto most = static_cast<std::int32_t>(
            type == TypeBit ? 256 : ilPixel::capacity / dataTypeInfo(type).bytes);
        for (int round = 0; round < 200; ++round) {
            ilPixel pixel(type, 1);
            std::vector<double> model(1, 0.0);
            for (int step = 0; step < 20; ++step) {
                const auto index = static_cast<std::int32_t>(random() % unsigned(most + 3)) - 1;
                const double value = special[random() % std::size(special)];
                const bool fits = index >= 0 && index < most;
                ASSERT_EQ(pixel.setChannel(index, value), fits);
                if (!fits) continue;
                const auto place = static_cast<std::size_t>(index);
                if (place >= model.size()) model.resize(place + 1, 0.0);
                model[place] = stored(type, value);
            }
            ASSERT_EQ(pixel.channels(), static_cast<std::int32_t>(model.size()));
            for (std::int32_t i = -1; i <= pixel.channels(); ++i) {
                const auto place = std::clamp(i, 0, pixel.channels() - 1);
                ASSERT_EQ(pixel.channel(i), model[static_cast<std::size_t>(place)]) << i;
            }
            for (std::int32_t to = 1; to <= 256; to *= 2) {
                const std::int32_t list[] = {2, 0, -4, 300};
                const ilPixel other = pixel.converted(to, 4, list);
                for (int i = 0; i < 4; ++i) {
                    ASSERT_EQ(other.channel(i), stored(to, pixel.channel(list[i])))
                        << "to " << to << " channel " << i;
                }
            }
        }
        ilPixel pixel(type, 1);
        pixel.setChannel(0, std::nan(""));
        if (type < TypeFloat) {
            EXPECT_EQ(pixel.channel(0), 0.0);
        }
    }
}

TEST(IlPixel, BitsBytesAndEquality) {
    ilPixel bits(TypeBit, 10);
    bits.setChannel(0, 1);
    bits.setChannel(9, 7);
    EXPECT_EQ(bits.data()[0], 0x80);
    EXPECT_EQ(bits.data()[1], 0x40);
    const std::uint8_t noisy[] = {0x80, 0x7F};
    EXPECT_EQ(ilPixel(TypeBit, 10, noisy), bits) << "bits behind the last don't count";

    EXPECT_EQ(ilPixel(), ilPixel(TypeUChar, 4));
    const std::uint8_t bytes[] = {1, 2, 3, 4, 5};
    const ilPixel four(TypeUChar, 4, bytes);
    EXPECT_EQ(four.channel(7), 4.0);
    EXPECT_FALSE(four == ilPixel(TypeUChar, 5, bytes));
    EXPECT_FALSE(four == ilPixel(TypeChar, 4, bytes));
    EXPECT_EQ(four.converted(TypeUChar, 0), four);

    ilPixel untyped = ilPixel::untyped();
    EXPECT_EQ(untyped.channel(0), 0.0);
    EXPECT_FALSE(untyped.setChannel(4, 1.0));
    EXPECT_EQ(untyped, ilPixel::untyped());
    EXPECT_TRUE(untyped.setChannel(1, -2.5));
    EXPECT_EQ(untyped.type(), TypeDouble);
    EXPECT_EQ(untyped.channels(), 2);
    EXPECT_EQ(untyped.channel(1), -2.5);
    EXPECT_EQ(ilPixel(TypeDouble, 9).channels(), 4);
    EXPECT_EQ(ilPixel(3, 2).channels(), 0);
}

TEST(DataTypes, Tables) {
    EXPECT_EQ(dataTypeInfo(TypeUChar).minimum, -128.0);
    EXPECT_EQ(dataTypeInfo(TypeULong).maximum, 4294967295.0);
    EXPECT_EQ(dataTypeInfo(TypeFloat).minimum, -std::numeric_limits<float>::max());
    for (const int type : {0, 3, 511, 512, -1}) EXPECT_EQ(dataTypeInfo(type).maximum, 0.0);
    std::int32_t negative = 0;
    for (std::int32_t type = 4; type <= 256; type *= 2) {
        if (dataTypeInfo(type).minimum < 0) negative |= type;
    }
    EXPECT_EQ(negative, signedTypes);
    EXPECT_EQ(bufferBytes(TypeBit, 9), 2u);
    EXPECT_EQ(bufferBytes(TypeShort, 9), 18u);
    EXPECT_EQ(blockBytes(TypeDouble, 3, 5, 1, 2), 240u);
    EXPECT_EQ(blockBytes(TypeDouble, 3, -5, 1, 2), 0u);
    constexpr std::int32_t big = 0x7FFFFFFF;
    EXPECT_EQ(blockBytes(TypeUChar, big, big, big, 1), std::numeric_limits<std::size_t>::max());
    for (std::int32_t model = 0; model <= 13; ++model) {
        const std::int32_t count = colorModelChannels(model);
        EXPECT_EQ(count == 0, model == 0 || model == ColorMultiSpectral || model == 13) << model;
    }
    EXPECT_STREQ(colorModelName(12), "unspecified");
    EXPECT_STREQ(colorModelName(4), "color index");
    EXPECT_EQ(defaultColorModel(4), ColorRGBA);
    EXPECT_EQ(defaultColorModel(4, true), ColorMultiSpectral);
    EXPECT_EQ(defaultColorModel(2), ColorMultiSpectral);
}

}  // namespace
}  // namespace brushwork
