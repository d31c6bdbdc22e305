#include "image/work/pixel_block.h"

#include <gtest/gtest.h>

#include <optional>

#include "image/work/naive_pixels.h"

namespace brushwork {
namespace {

using test::NaivePixels;

struct Case {
    std::int32_t fromType, toType, fromOrder, toOrder, fromChannels;
    std::optional<std::vector<std::int32_t>> map;
    std::int32_t toChannels;
};

void expectSameAsNaive(const Case& c, std::mt19937& random) {
    ilTile box, fromFrame, toFrame;
    do {
        box = test::randomBox(random, 3, 9);
        fromFrame = test::randomBox(random, 3, 12);
        toFrame = test::randomBox(random, 3, 12);
    } while (intersection(box, intersection(fromFrame, toFrame)).isEmpty());
    NaivePixels source(fromFrame, c.fromType, c.fromOrder, c.fromChannels);
    NaivePixels target(toFrame, c.toType, c.toOrder, c.toChannels);
    source.randomize(random);
    target.randomize(random);
    NaivePixels expected = target;
    const auto count = c.map ? static_cast<std::int32_t>(c.map->size()) : c.toChannels;
    test::forEachPixel(box, [&](std::int32_t x, std::int32_t y, std::int32_t z) {
        if (!test::isInside(source.frame(), x, y, z) || !test::isInside(target.frame(), x, y, z))
            return;
        for (std::int32_t k = 0; k < count; ++k) {
            const std::int32_t from = c.map ? (*c.map)[static_cast<std::size_t>(k)] : k;
            if (from < 0 || from >= c.fromChannels) continue;
            if (c.fromType == c.toType && c.fromType != TypeBit)
                expected.copyFrom(source, source.place(x, y, z, from), expected.place(x, y, z, k));
            else
                expected.set(x, y, z, k, source.get(x, y, z, from));
        }
    });
    convertBlock(
        PixelBlock::packed(source.data(), source.frame(), c.fromType, c.fromOrder, c.fromChannels),
        PixelBlock::packed(target.data(), target.frame(), c.toType, c.toOrder, c.toChannels), box,
        {c.map ? c.map->data() : nullptr, count});
    ASSERT_EQ(target.bytes(), expected.bytes())
        << "type " << c.fromType << " to " << c.toType << ", order " << c.fromOrder << " to "
        << c.toOrder << ", channels " << c.fromChannels << " to " << c.toChannels << ", map of "
        << (c.map ? static_cast<int>(c.map->size()) : -1);
}

TEST(PixelBlock, EveryTypeOrderAndChannelMapAsOneValueAtATime) {
    std::mt19937 random(20240611);
    const std::optional<std::vector<std::int32_t>> maps[] = {
        std::nullopt, {{0, 1, 2, 3}}, {{3, 2, 1, 0}}, {{2, -1, 0, 7}}, {{0}}, {{1, 1, 1}}};
    int cases = 0;
    for (const std::int32_t from : test::allTypes)
        for (const std::int32_t to : test::allTypes)
            for (const std::int32_t fromOrder : test::allOrders)
                for (const std::int32_t toOrder : test::allOrders)
                    for (const auto& map : maps)
                        for (const std::int32_t channels : {1, 4}) {
                            const auto toChannels =
                                map ? static_cast<std::int32_t>(map->size()) : channels;
                            expectSameAsNaive({from, to, fromOrder, toOrder, channels, map,
                                               toChannels + (cases++ % 3 == 0 ? 1 : 0)},
                                              random);
                            if (testing::Test::HasFatalFailure()) return;
                        }
    EXPECT_EQ(cases, 81 * 9 * 12);
}

TEST(PixelBlock, AConstantFillsAsAPixelReads) {
    std::mt19937 random(5);
    for (const std::int32_t from : test::allTypes)
        for (const std::int32_t to : test::allTypes)
            for (const std::int32_t order : test::allOrders)
                for (const std::int32_t channels : {1, 3, 4, 6}) {
                    const ilTile box = test::randomBox(random, 3, 9);
                    NaivePixels one({0, 0, 0, 1, 1, 1}, from, OrderInterleaved, 3);
                    one.randomize(random);
                    const ilPixel pixel(from, 3, one.data());
                    NaivePixels target(test::randomBox(random, 3, 12), to, order, channels);
                    target.randomize(random);
                    NaivePixels expected = target;
                    test::forEachPixel(intersection(box, target.frame()), [&](int x, int y, int z) {
                        for (std::int32_t k = 0; k < channels; ++k) {
                            const std::int32_t c = std::min(k, 2);
                            if (from == to && from != TypeBit)
                                expected.copyFrom(one, one.place(0, 0, 0, c),
                                                  expected.place(x, y, z, k));
                            else
                                expected.set(x, y, z, k, one.get(0, 0, 0, c));
                        }
                    });
                    convertBlock(
                        PixelBlock::ofConstant(pixel, box),
                        PixelBlock::packed(target.data(), target.frame(), to, order, channels), box,
                        {nullptr, channels});
                    ASSERT_EQ(target.bytes(), expected.bytes())
                        << from << " to " << to << ", order " << order << ", " << channels;
                }
}

TEST(PixelBlock, ValuesBeyondATypeBecomeItsBound) {
    const double in[] = {-1.0, 255.99, 256.0, 1e300, -1e300, std::nan("")};
    std::uint8_t bytes[6] = {};
    const ilTile row{0, 0, 0, 6, 1, 1};
    auto block = [&](const void* data, std::int32_t type) {
        return PixelBlock::packed(const_cast<void*>(data), row, type, OrderInterleaved, 1);
    };
    convertBlock(block(in, TypeDouble), block(bytes, TypeUChar), row, {nullptr, 1});
    const std::uint8_t expected[] = {0, 255, 255, 255, 0, 0};
    EXPECT_TRUE(std::equal(std::begin(bytes), std::end(bytes), expected));
    float floats[6] = {};
    convertBlock(block(in, TypeDouble), block(floats, TypeFloat), row, {nullptr, 1});
    EXPECT_EQ(floats[3], std::numeric_limits<float>::max());
    EXPECT_EQ(floats[4], std::numeric_limits<float>::lowest());
    EXPECT_TRUE(std::isnan(floats[5]));
}

TEST(PixelBlock, WithoutDataOrTypeNothingHappens) {
    std::uint8_t byte = 7;
    const ilTile one{0, 0, 0, 1, 1, 1};
    const auto good = PixelBlock::packed(&byte, one, TypeUChar, OrderInterleaved, 1);
    const auto none = PixelBlock::packed(nullptr, one, TypeUChar, OrderInterleaved, 1);
    const auto any = PixelBlock::packed(&byte, one, TypeAny, OrderInterleaved, 1);
    convertBlock(none, good, one, {nullptr, 1});
    convertBlock(good, none, one, {nullptr, 1});
    convertBlock(any, good, one, {nullptr, 1});
    convertBlock(PixelBlock::packed(&byte, one, TypeUChar, OrderInterleaved, 0), good, one,
                 {nullptr, 1});
    EXPECT_EQ(byte, 7);
    convertBlock(PixelBlock::ofConstant(ilPixel::untyped(), one), good, one, {nullptr, 1});
    EXPECT_EQ(byte, 0);
}

}  // namespace
}  // namespace brushwork
