#include "image/work/il_memory_img.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <optional>

#include "brushwork/ref.h"
#include "image/work/naive_pixels.h"

namespace brushwork {
namespace {

using test::NaivePixels;

// An image of random values beside the naive pixels that it wraps a copy of.
struct Pair {
    NaivePixels naive;
    NaivePixels memory;
    Ref<ilMemoryImg> image;

    Pair(std::mt19937& random, std::int32_t type, std::int32_t order, std::int32_t channels,
         std::int32_t nx, std::int32_t ny, std::int32_t nz)
        : naive({0, 0, 0, nx, ny, nz}, type, order, channels), memory(naive) {
        naive.randomize(random);
        memory = naive;
        image = makeRef<ilMemoryImg>(memory.data(), nx, ny, nz, channels, type, order);
    }
};

struct Drawn {
    std::int32_t type, order, channels;
    std::vector<std::int32_t> list;
    ilImageConfig config;
};

// A config with or without wildcards, an offset or a list; `map` tells the image's channel of each.
Drawn randomConfig(std::mt19937& random, const NaivePixels& image, std::int32_t imageOrder) {
    Drawn d{test::allTypes[random() % 9],
            test::allOrders[random() % 3],
            1 + static_cast<std::int32_t>(random() % 5),
            {},
            {}};
    d.config = ilImageConfig(d.type, d.order, d.channels);
    if (random() % 4 == 0) {
        d.type = image.type();
        d.config.dataType = TypeAny;
    }
    if (random() % 4 == 0) {
        d.order = imageOrder;
        d.config.order = OrderAny;
    }
    if (random() % 3 == 0) d.config.channelOffset = static_cast<std::int32_t>(random() % 3);
    if (random() % 3 == 0) {
        for (int n = 0; n < 8; ++n) d.list.push_back(static_cast<std::int32_t>(random() % 7) - 1);
        d.config.channelList = d.list.data();
    }
    return d;
}

bool exists(std::int32_t channel, const NaivePixels& image) {
    return channel >= 0 && channel < image.channels();
}

void carry(const NaivePixels& from, std::size_t fromPlace, double value, NaivePixels& to,
           std::int32_t x, std::int32_t y, std::int32_t z, std::int32_t c) {
    if (from.type() == to.type() && from.type() != TypeBit)
        to.copyFrom(from, fromPlace, to.place(x, y, z, c));
    else
        to.set(x, y, z, c, value);
}

TEST(ilMemoryImg, ReadsAndWritesBoxesAndFramesThatReachOutside) {
    for (std::uint32_t seed = 1; seed <= 3000; ++seed) {
        std::mt19937 random(seed);
        const std::int32_t order = test::allOrders[random() % 3];
        Pair p(random, test::allTypes[random() % 9], order,
               1 + static_cast<std::int32_t>(random() % 4),
               1 + static_cast<std::int32_t>(random() % 9),
               1 + static_cast<std::int32_t>(random() % 9),
               1 + static_cast<std::int32_t>(random() % 2));
        Drawn d = randomConfig(random, p.naive, order);
        const ilTile box = test::randomBox(random, 5, 14);
        NaivePixels buffer(test::randomBox(random, 5, 14), d.type, d.order, d.channels);
        buffer.randomize(random);
        const bool reading = random() % 2 == 0;
        NaivePixels expected = reading ? buffer : p.naive;
        const ilPixel fill = p.image->fill();
        NaivePixels fillPixel({0, 0, 0, 1, 1, 1}, p.naive.type(), OrderInterleaved,
                              fill.channels());
        std::memcpy(fillPixel.data(), fill.data(),
                    bufferBytes(fill.type(), static_cast<std::size_t>(fill.channels())));
        test::forEachPixel(intersection(box, buffer.frame()), [&](int x, int y, int z) {
            const bool inside = test::isInside(p.naive.frame(), x, y, z);
            for (std::int32_t k = 0; k < d.channels; ++k) {
                const std::int32_t c = d.config.channelAt(k);
                if (!exists(c, p.naive)) continue;
                if (reading && inside)
                    carry(p.naive, p.naive.place(x, y, z, c), p.naive.get(x, y, z, c), expected, x,
                          y, z, k);
                else if (reading)
                    carry(fillPixel, fillPixel.place(0, 0, 0, c), fillPixel.get(0, 0, 0, c),
                          expected, x, y, z, k);
                else if (inside)
                    // A list may name a channel twice; the last one counts.
                    carry(buffer, buffer.place(x, y, z, k), buffer.get(x, y, z, k), expected, x, y,
                          z, c);
            }
        });
        if (reading) {
            ASSERT_EQ(p.image->readRegion(box, buffer.data(), buffer.frame(), &d.config), ImageOk);
            ASSERT_EQ(buffer.bytes(), expected.bytes()) << "reading, seed " << seed;
            ASSERT_EQ(p.memory.bytes(), p.naive.bytes()) << seed;
        } else {
            ASSERT_EQ(p.image->writeRegion(box, buffer.data(), buffer.frame(), &d.config), ImageOk);
            ASSERT_EQ(p.memory.bytes(), expected.bytes()) << "writing, seed " << seed;
        }
    }
}

TEST(ilMemoryImg, ReadsInAnotherCoordinateSpace) {
    std::mt19937 random(11);
    Pair p(random, TypeUShort, OrderInterleaved, 2, 5, 3, 1);
    for (std::int32_t space = SpaceUpperLeft; space <= SpaceLeftLower; ++space) {
        const bool turned = isTransposed(space);
        const ilTile all{0, 0, 0, turned ? 3 : 5, turned ? 5 : 3, 1};
        NaivePixels buffer(all, TypeUShort, OrderInterleaved, 2);
        ilImageConfig config;
        config.coordSpace = space;
        ASSERT_EQ(p.image->readRegion(all, buffer.data(), all, &config), ImageOk);
        test::forEachPixel(all, [&](int x, int y, int) {
            int column = turned ? y : x;
            int row = turned ? x : y;
            if (!originAtLeft(space)) column = 4 - column;
            if (!originAtBottom(space)) row = 2 - row;
            for (int c = 0; c < 2; ++c)
                ASSERT_EQ(buffer.get(x, y, 0, c), p.naive.get(column, row, 0, c)) << space;
        });
        const auto before = p.memory.bytes();
        p.image->writeRegion(all, buffer.data(), all, &config);
        ASSERT_EQ(p.memory.bytes(), before) << space;
    }
}

TEST(ilMemoryImg, FillsAroundAKeepOutBox) {
    for (std::uint32_t seed = 1; seed <= 1500; ++seed) {
        std::mt19937 random(seed);
        const std::int32_t order = test::allOrders[random() % 3];
        Pair p(random, test::allTypes[random() % 9], order,
               1 + static_cast<std::int32_t>(random() % 4), 7, 6, 2);
        NaivePixels one({0, 0, 0, 1, 1, 1}, test::allTypes[random() % 9], OrderInterleaved, 4);
        one.randomize(random);
        const ilPixel pixel(one.type(), 4, one.data());
        const ilTile box = test::randomBox(random, 6, 14);
        const std::optional<ilTile> keepOut =
            random() % 4 ? std::optional(test::randomBox(random, 6, 9)) : std::nullopt;
        test::forEachPixel(intersection(box, p.naive.frame()), [&](int x, int y, int z) {
            if (keepOut && test::isInside(*keepOut, x, y, z)) return;
            for (std::int32_t c = 0; c < p.naive.channels(); ++c)
                carry(one, one.place(0, 0, 0, c), one.get(0, 0, 0, c), p.naive, x, y, z, c);
        });
        ASSERT_EQ(p.image->fillRegion(box, pixel, nullptr, keepOut ? &*keepOut : nullptr), ImageOk);
        ASSERT_EQ(p.memory.bytes(), p.naive.bytes()) << "seed " << seed;
    }
}

// Both directions: what lies outside the source becomes its fill, nothing else is touched.
TEST(ilMemoryImg, CopiesBetweenImages) {
    for (std::uint32_t seed = 1; seed <= 2000; ++seed) {
        std::mt19937 random(seed);
        const bool alike = random() % 2 == 0;
        const std::int32_t channels = 1 + static_cast<std::int32_t>(random() % 4);
        const auto type = [&] { return alike ? TypeUChar : test::allTypes[1 + random() % 8]; };
        const auto order = [&] {
            return alike ? std::int32_t{OrderInterleaved} : test::allOrders[random() % 3];
        };
        Pair a(random, type(), order(), channels, 8, 7, 1);
        Pair b(random, type(), order(), channels, 6, 9, 1);
        if (random() % 3 == 0) b.image->setColorModel(ColorMultiSpectral);
        // Channel k of the first image against channel config.channelAt(k) of the second.
        ilImageConfig config(TypeAny, OrderAny, channels);
        std::vector<std::int32_t> list;
        if (random() % 3 == 0) config.channelOffset = 1;
        if (random() % 3 == 0) {
            for (int n = 0; n < 8; ++n)
                list.push_back((n + 2) % (channels + 1) - static_cast<int>(random() % 2));
            config.channelList = list.data();
        }
        const bool plain = config.channelOffset == 0 && list.empty() && random() % 2;
        ilTile box = test::randomBox(random, 6, 12);
        box.z = 0;
        box.nz = 1;
        const ilTile corner = test::randomBox(random, 6, 1);
        const bool intoA = random() % 2 == 0;
        Pair& source = intoA ? b : a;
        Pair& target = intoA ? a : b;
        const ilPixel fill = source.image->fill();
        NaivePixels fillPixel({0, 0, 0, 1, 1, 1}, source.naive.type(), OrderInterleaved, channels);
        std::memcpy(fillPixel.data(), fill.data(),
                    bufferBytes(fill.type(), static_cast<std::size_t>(channels)));
        test::forEachPixel(box, [&](int x, int y, int) {
            const int bx = x - box.x + corner.x;
            const int by = y - box.y + corner.y;
            const int sx = intoA ? bx : x, sy = intoA ? by : y;
            const int tx = intoA ? x : bx, ty = intoA ? y : by;
            if (!test::isInside(target.naive.frame(), tx, ty, 0)) return;
            const bool inside = test::isInside(source.naive.frame(), sx, sy, 0);
            const NaivePixels& from = inside ? source.naive : fillPixel;
            for (std::int32_t k = 0; k < channels; ++k) {
                const std::int32_t partner = config.channelAt(k);
                if (partner < 0 || partner >= channels) continue;
                const std::int32_t c = intoA ? partner : k;
                carry(from, from.place(inside ? sx : 0, inside ? sy : 0, 0, c),
                      from.get(inside ? sx : 0, inside ? sy : 0, 0, c), target.naive, tx, ty, 0,
                      intoA ? k : partner);
            }
        });
        ASSERT_EQ(
            a.image->copyRegion(box, *b.image, corner.x, corner.y, 0, plain ? nullptr : &config,
                                intoA ? CopyDirection::FromOther : CopyDirection::ToOther),
            ImageOk);
        ASSERT_EQ(target.memory.bytes(), target.naive.bytes()) << "seed " << seed;
        ASSERT_EQ(source.memory.bytes(), source.naive.bytes()) << "seed " << seed;
    }
}

TEST(ilMemoryImg, CopiesWithinItself) {
    std::array<std::uint8_t, 16> bytes{};
    for (std::uint8_t n = 0; n < 16; ++n) bytes[n] = n;
    const auto image = makeRef<ilMemoryImg>(bytes.data(), 4, 4, 1, 1, TypeUChar, OrderInterleaved);
    // Three rows up by one: each must be read before it is overwritten.
    EXPECT_EQ(
        image->copyRegion(flatTile(0, 1, 4, 3), *image, 0, 0, 0, nullptr, CopyDirection::FromOther),
        ImageOk);
    EXPECT_EQ(bytes,
              (std::array<std::uint8_t, 16>{0, 1, 2, 3, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}));
}

TEST(ilMemoryImg, AWrappedBufferSurvives) {
    std::vector<std::uint8_t> bytes(2 * 3 * 4, 9);
    {
        const auto image =
            makeRef<ilMemoryImg>(bytes.data(), 2, 3, 1, 4, TypeUChar, OrderInterleaved);
        EXPECT_FALSE(image->ownsBuffer());
        EXPECT_EQ(image->byteSize(), bytes.size());
        EXPECT_STREQ(image->className(), "Memory");
        EXPECT_EQ(image->imageKind(), KindMemory);
        EXPECT_EQ(image->colorModel(), ColorRGBA);
        const std::array<std::uint8_t, 4> value{1, 2, 3, 4};
        image->fillRegion(flatTile(1, 1, 1, 1), ilPixel(TypeUChar, 4, value.data()));
    }
    std::vector<std::uint8_t> expected(24, 9);
    for (std::uint8_t c = 0; c < 4; ++c) expected[12u + c] = static_cast<std::uint8_t>(c + 1);
    EXPECT_EQ(bytes, expected);
}

TEST(ilMemoryImg, OnePageForAllRequests) {
    const auto image = makeRef<ilMemoryImg>(300, 200, 1, 4, TypeUChar, OrderInterleaved);
    std::array<PageLockRequest, 5> requests{};
    requests[1] = {299, 199, 0, 3, 0, nullptr};
    requests[2] = {300, 0, 0, 0, 7, nullptr};
    requests[3] = {0, -1, 0, 0, 7, nullptr};
    requests[4] = {0, 0, 0, 4, 7, nullptr};
    EXPECT_EQ(image->lockPages(requests, LockRead), ImageOk);
    ASSERT_NE(requests[0].page, nullptr);
    EXPECT_EQ(requests[0].page, requests[1].page);
    EXPECT_EQ(requests[0].page->data(), image->data());
    EXPECT_EQ(requests[0].page->x, 300);
    EXPECT_EQ(requests[0].page->y, 200);
    EXPECT_EQ(requests[0].page->c, 4);
    for (std::size_t n = 2; n < 5; ++n) {
        EXPECT_EQ(requests[n].page, nullptr);
        EXPECT_EQ(requests[n].status, ImageOk);
    }
    image->unlockPages(requests);
    EXPECT_EQ(image->pageSize().x, 300);
    EXPECT_EQ(image->pageBytes(), 300u * 200u * 4u);
}

TEST(ilMemoryImg, FollowsTheImageItWasBuiltFrom) {
    const std::array<std::uint8_t, 4> red{255, 0, 0, 255};
    const auto parent = makeRef<ilMemoryImg>(5, 4, 1, 4, TypeUChar, OrderInterleaved);
    parent->fillRegion(parent->box(), ilPixel(TypeUChar, 4, red.data()));
    const auto child = makeRef<ilMemoryImg>(parent.get());
    const auto later = makeRef<ilMemoryImg>(parent.get(), ilMemoryImg::Read::Later);
    ASSERT_EQ(child->byteSize(), parent->byteSize());
    EXPECT_EQ(std::memcmp(child->data(), parent->data(), child->byteSize()), 0);
    EXPECT_EQ(child->source(), parent.get());
    EXPECT_EQ(child->builtFrom(), parent.get());
    EXPECT_EQ(child->chainHeight(), 1);
    EXPECT_EQ(later->sizeX(), 5);

    parent->fillRegion(flatTile(1, 1, 2, 2), ilPixel(TypeUChar, 4));
    EXPECT_NE(child->altered(), 0u);
    EXPECT_EQ(child->sizeX(), 5);  // brings it up to date
    EXPECT_EQ(std::memcmp(child->data(), parent->data(), child->byteSize()), 0);

    child->fillRegion(child->box(), ilPixel(TypeUChar, 4));
    child->pushToSource();
    EXPECT_EQ(std::count(parent->data(), parent->data() + parent->byteSize(), 0), 80);
}

TEST(ilMemoryImg, ImagesWithoutPixelsRefuseEverything) {
    std::array<std::uint8_t, 64> buffer{};
    const ilTile one = flatTile(0, 0, 1, 1);
    const Ref<ilMemoryImg> unusable[] = {
        makeRef<ilMemoryImg>(),
        makeRef<ilMemoryImg>(static_cast<ilImage*>(nullptr)),
        makeRef<ilMemoryImg>(0, 5, 1, 4, TypeUChar, OrderInterleaved),
        makeRef<ilMemoryImg>(5, -1, 1, 4, TypeUChar, OrderInterleaved),
        makeRef<ilMemoryImg>(5, 5, 1, 4, TypeAny, OrderInterleaved),
        makeRef<ilMemoryImg>(0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF, 4, TypeDouble, OrderInterleaved),
        makeRef<ilMemoryImg>(nullptr, 5, 5, 1, 4, TypeUChar, OrderInterleaved),
    };
    for (const auto& image : unusable) {
        EXPECT_EQ(image->readRegion(one, buffer.data(), one), ImageUnusable);
        EXPECT_EQ(image->writeRegion(one, buffer.data(), one), ImageUnusable);
        EXPECT_EQ(image->fillRegion(one, ilPixel()), ImageUnusable);
        EXPECT_EQ(image->copyRegion(one, *unusable[0], 0, 0, 0, nullptr, CopyDirection::FromOther),
                  ImageUnusable);
        std::array<PageLockRequest, 1> request{};
        EXPECT_EQ(image->lockPages(request, LockRead), ImageUnusable);
    }
    EXPECT_EQ(unusable[1]->status(), ImageUnusable);
    EXPECT_EQ(unusable[1]->order(), OrderAny);
    EXPECT_EQ(unusable[1]->dataType(), TypeAny);
    EXPECT_EQ(unusable[0]->byteSize(), 0u);

    // A bad argument spoils one operation only.
    const auto image = makeRef<ilMemoryImg>(1, 1, 1, 1, TypeUChar, OrderInterleaved);
    EXPECT_EQ(image->readRegion(one, nullptr, one), ImageUnusable);
    EXPECT_EQ(image->status(), ImageUnusable);
    EXPECT_EQ(image->readRegion(one, buffer.data(), one), ImageOk);
}

// The quick way of copying must not tell from the generic one, whatever the images' spaces: a
// colour model that differs is what takes the generic one.
TEST(ilMemoryImg, CopiesBetweenSpacesLikeTheGenericWay) {
    std::mt19937 random(4711);
    for (int round = 0; round < 400; ++round) {
        const auto pick = [&](int low, int high) {
            return std::uniform_int_distribution<std::int32_t>(low, high)(random);
        };
        const std::int32_t spaceA = pick(1, 8), spaceB = pick(1, 8);
        const auto make = [&](std::int32_t space, std::int32_t model) {
            const auto image = makeRef<ilMemoryImg>(6, 6, 1, 1, TypeUChar, OrderInterleaved);
            image->setCoordSpace(space);
            image->setColorModel(model);
            EXPECT_EQ(image->coordSpace(), space);
            return image;
        };
        const auto from = make(spaceB, ColorGreyMinIsBlack);
        for (int i = 0; i < 36; ++i) from->data()[i] = static_cast<std::uint8_t>(i + 1);
        const auto quick = make(spaceA, ColorGreyMinIsBlack);
        const auto generic = make(spaceA, ColorGreyMinIsWhite);
        for (const auto& image : {quick, generic}) std::fill_n(image->data(), 36, 200);
        const ilTile box = flatTile(pick(0, 3), pick(0, 3), pick(1, 3), pick(1, 3));
        const std::int32_t ox = pick(0, 3), oy = pick(0, 3);
        quick->copyRegion(box, *from, ox, oy, 0, nullptr, CopyDirection::FromOther);
        generic->copyRegion(box, *from, ox, oy, 0, nullptr, CopyDirection::FromOther);
        if (spaceA == spaceB) continue;  // then models are the class's business
        ASSERT_TRUE(std::equal(quick->data(), quick->data() + 36, generic->data()))
            << "round " << round << ": " << spaceB << " into " << spaceA;
    }
}

}  // namespace
}  // namespace brushwork
