#include "tiled/il_zn_tiled_image.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>

#include "image/chain/il_region_lock.h"
#include "image/smart/il_smart_image.h"
#include "image/work/il_const_img.h"
#include "image/work/il_pattern_img.h"
#include "image/work/il_sp_memory_img.h"
#include "support/test_seed.h"
#include "tiled/tiled_model.h"

namespace brushwork {
namespace {

using test::draw;
using test::Random;
using test::TiledModel;
using znTiledImage::PixelRect;
using znTiledImage::TileKind;

using Bytes = std::vector<std::uint8_t>;

ilTile boxOf(const PixelRect& rect) {
    return flatTile(rect.x, rect.y, rect.w, rect.h);
}

ilPixel pixelOf(const TiledModel::Pixel& pixel, std::int32_t channels) {
    return ilPixel(TypeUChar, channels, pixel.data());
}

Bytes readPlain(ilImage& image, const PixelRect& rect) {
    const std::int32_t channels = image.channels();
    const ilImageConfig config(TypeUChar, OrderInterleaved, channels);
    Bytes bytes(static_cast<std::size_t>(rect.w) * static_cast<std::size_t>(rect.h) *
                static_cast<std::size_t>(channels));
    image.readRegion(boxOf(rect), bytes.data(), boxOf(rect), &config);
    return bytes;
}

constexpr PixelRect window{-260, -130, 560, 420};

class Rig {
  public:
    Rig(Random& random, std::int32_t channelCount)
        : random_(random),
          channels(channelCount),
          model(window, static_cast<std::size_t>(channelCount),
                test::drawPixel(random, static_cast<std::size_t>(channelCount))),
          tiled(new ilZNTiledImage(window, pixelOf(model.fill(), channelCount))) {}

    [[nodiscard]] PixelRect rect() { return test::drawRect(random_, window, 120, 300); }
    void expectSame() {
        const PixelRect all{window.x - 140, window.y - 140, window.w + 300, window.h + 300};
        ASSERT_EQ(readPlain(*tiled, all), model.read(all));
    }
    // Part of a larger frame, so that strides and corners count.
    void writeSome() {
        const PixelRect frame = rect();
        const Bytes pixels = test::drawPixels(random_, frame, model.pixelBytes());
        PixelRect box = frame;
        box.x += draw(random_, -5, frame.w / 2);
        box.w = draw(random_, 1, frame.w);
        ASSERT_EQ(tiled->writeRegion(boxOf(box), pixels.data(), boxOf(frame)), ImageOk);
        TiledModel source(frame, model.pixelBytes(), {});
        source.write(frame, pixels);
        const PixelRect part = znTiledImage::common(box, frame);
        if (!znTiledImage::isEmpty(part)) model.write(part, source.read(part));
    }
    void fillSome() {
        const PixelRect box = rect();
        const PixelRect keep = rect();
        const TiledModel::Pixel value = test::drawPixel(random_, model.pixelBytes());
        const bool keeps = random_() % 2 == 0;
        const ilTile out = boxOf(keep);
        ASSERT_EQ(tiled->fillRegion(boxOf(box), pixelOf(value, channels), nullptr,
                                    keeps ? &out : nullptr),
                  ImageOk);
        const PixelRect inside = znTiledImage::common(box, keep);
        const Bytes kept = model.read(inside);
        model.fillRect(box, value);
        if (keeps) model.write(inside, kept);
    }
    // The frame is larger than the box, or the other way: the rest of the buffer stays.
    void readSome() {
        const PixelRect box = rect();
        PixelRect frame = box;
        frame.x += draw(random_, -20, 20);
        frame.y += draw(random_, -20, 20);
        const Bytes before = test::drawPixels(random_, frame, model.pixelBytes());
        Bytes bytes = before;
        ASSERT_EQ(tiled->readRegion(boxOf(box), bytes.data(), boxOf(frame)), ImageOk);
        TiledModel expected(frame, model.pixelBytes(), {});
        expected.write(frame, before);
        const PixelRect part = znTiledImage::common(box, frame);
        expected.write(part, model.read(part));
        ASSERT_EQ(bytes, expected.read(frame));
    }
    void lockSome() {
        const bool write = random_() % 2 == 0;
        PageLockRequest request{draw(random_, -400, 400), draw(random_, -400, 400)};
        ASSERT_EQ(tiled->lockPages({&request, 1}, write ? LockWrite : LockRead), ImageOk);
        const PixelRect cell = znTiledImage::pixelsOfCell(znTiledImage::cellOf(request.x),
                                                          znTiledImage::cellOf(request.y));
        const bool inside = !znTiledImage::isEmpty(znTiledImage::common(cell, model.grid()));
        ASSERT_EQ(request.page != nullptr, inside);
        if (inside) {
            EXPECT_EQ(request.page->x, request.x);
            EXPECT_EQ(request.page->z, 1);
            EXPECT_EQ(request.page->c, channels);
            const Bytes pixels = model.read(cell);
            ASSERT_EQ(std::memcmp(request.page->data(), pixels.data(), pixels.size()), 0);
            // A fill meanwhile lands in the page.
            const TiledModel::Pixel value = test::drawPixel(random_, model.pixelBytes());
            ASSERT_EQ(tiled->fillRegion(boxOf(cell), pixelOf(value, channels)), ImageOk);
            model.fillRect(cell, value);
            if (write) {
                ASSERT_EQ(std::memcmp(request.page->data(), value.data(), model.pixelBytes()), 0);
                const auto changed = static_cast<std::uint8_t>(random_());
                request.page->data()[0] = changed;
                TiledModel::Pixel corner = value;
                corner[0] = changed;
                model.fillRect({cell.x, cell.y, 1, 1}, corner);
            }
        }
        tiled->unlockPages({&request, 1});
        ASSERT_EQ(request.page, nullptr);
    }
    void copyFrom(ilImage& other, bool aligned) {
        const PixelRect box = rect();
        const std::int32_t dx = aligned ? 128 * draw(random_, -1, 1) : draw(random_, -90, 90);
        const std::int32_t dy = aligned ? 0 : draw(random_, -90, 90);
        const Bytes pixels = readPlain(other, {box.x + dx, box.y + dy, box.w, box.h});
        ASSERT_EQ(tiled->copyRegion(boxOf(box), other, box.x + dx, box.y + dy, 0, nullptr,
                                    CopyDirection::FromOther),
                  ImageOk);
        model.write(box, pixels);
    }
    // `limits`: where the other image takes pixels.
    void copyTo(ilImage& other, const PixelRect& limits) {
        const PixelRect box = rect();
        const std::int32_t dx = random_() % 3 == 0 ? 0 : draw(random_, -90, 90);
        const std::int32_t dy = random_() % 3 == 0 ? 0 : draw(random_, -90, 90);
        const PixelRect all{-300, -300, 800, 800};
        TiledModel expected(all, model.pixelBytes(), {});
        expected.write(all, readPlain(other, all));
        const PixelRect there =
            znTiledImage::common({box.x + dx, box.y + dy, box.w, box.h}, limits);
        expected.write(there, model.read({there.x - dx, there.y - dy, there.w, there.h}));
        tiled->copyRegion(boxOf(box), other, box.x + dx, box.y + dy, 0, nullptr,
                          CopyDirection::ToOther);
        ASSERT_EQ(readPlain(other, all), expected.read(all));
    }

  private:
    Random& random_;

  public:
    std::int32_t channels;
    TiledModel model;
    Ref<ilZNTiledImage> tiled;
};

class Adapter : public testing::TestWithParam<std::int32_t> {};

TEST_P(Adapter, RandomRegionsAndCopiesWithEveryClass) {
    const std::int32_t channels = GetParam();
    const std::uint32_t seed = brushwork::test::testSeed();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::printf("seed %u\n", seed);
    Random random(seed);
    Rig rig(random, channels);
    const auto bytes = static_cast<std::size_t>(channels);
    const ilPixel fill = pixelOf(test::drawPixel(random, bytes), channels);
    const Ref<ilMemoryImg> memory(
        new ilMemoryImg(300, 280, 1, channels, TypeUChar, OrderInterleaved));
    const Ref<ilMemoryImg> floats(new ilMemoryImg(200, 150, 1, channels, TypeFloat, OrderSeparate));
    const Ref<ilSPMemoryImg> working(new ilSPMemoryImg(310, 200, channels));
    const Ref<ilSmartImage> smart(new ilSmartImage(fill));
    const Ref<ilConstImg> constant(new ilConstImg(fill));
    const Ref<ilPatternImg> pattern(new ilPatternImg);
    const PixelRect patch{-150, -150, 300, 300};
    smart->writeRegion(boxOf(patch), test::drawPixels(random, patch, bytes).data(), boxOf(patch));
    for (ilImage* image :
         std::initializer_list<ilImage*>{memory.get(), floats.get(), working.get()})
        image->fillRegion(image->box(), fill);
    const Ref<ilSmartImage> child(new ilSmartImage(smart.get()));
    std::vector<Ref<ilZNTiledImage>> shared;
    std::vector<TiledModel> sharedModels;
    constexpr PixelRect anywhere{-5000, -5000, 10000, 10000};
    for (int step = 0; step < 220; ++step) {
        const std::uint32_t what = random() % 17;
        SCOPED_TRACE(testing::Message() << "step " << step << " does " << what);
        switch (what) {
            case 0:
            case 1: rig.writeSome(); break;
            case 2: rig.fillSome(); break;
            case 3: rig.readSome(); break;
            case 4: rig.lockSome(); break;
            case 5: rig.copyFrom(*memory, random() % 2 == 0); break;
            case 6: rig.copyFrom(*floats, false); break;
            case 7: rig.copyFrom(*working, false); break;
            case 8: rig.copyFrom(random() % 2 == 0 ? *smart : *child, random() % 2 == 0); break;
            case 9: rig.copyFrom(*constant, false); break;
            case 10: rig.copyTo(*memory, {0, 0, 300, 280}); break;
            case 11: rig.copyTo(*floats, {0, 0, 200, 150}); break;
            case 12: rig.copyTo(random() % 2 == 0 ? *smart : *child, anywhere); break;
            case 13: rig.copyTo(*constant, {}); break;
            case 14: {
                // Of a pattern nobody reads, and it takes nothing.
                rig.tiled->copyRegion(flatTile(0, 0, 9, 9), *pattern, 0, 0, 0, nullptr,
                                      CopyDirection::ToOther);
                break;
            }
            case 15:
                if (shared.size() < 3) {
                    shared.emplace_back(new ilZNTiledImage(rig.tiled.get()));
                    sharedModels.push_back(rig.model);
                } else {
                    const std::size_t which = random() % shared.size();
                    rig.copyFrom(*shared[which], random() % 2 == 0);
                }
                break;
            default: rig.copyFrom(*rig.tiled, random() % 2 == 0);
        }
        if (testing::Test::HasFatalFailure()) return;
        ASSERT_NO_FATAL_FAILURE(rig.expectSame());
        std::vector<Ref<znTiledImage::Image>> images{
            Ref<znTiledImage::Image>(rig.tiled->tiledImage())};
        for (std::size_t i = 0; i < shared.size(); ++i) {
            images.emplace_back(shared[i]->tiledImage());
            ASSERT_EQ(readPlain(*shared[i], window), sharedModels[i].read(window)) << i;
        }
        ASSERT_NO_FATAL_FAILURE(test::expectCounted(images));
    }
}

INSTANTIATE_TEST_SUITE_P(Channels, Adapter, testing::Values(1, 4));

TEST(ZNTiledImage, AttributesAndRefusals) {
    const Ref<ilZNTiledImage> image(
        new ilZNTiledImage({-30, -300, 100, 200}, ilPixel(TypeUChar, 4)));
    EXPECT_STREQ(image->className(), "ilZNTiledImage");
    EXPECT_EQ(image->sizeX(), 70);
    EXPECT_EQ(image->sizeY(), 0);
    EXPECT_EQ(image->sizeZ(), 1);
    EXPECT_EQ(image->channels(), 4);
    EXPECT_EQ(image->dataType(), TypeUChar);
    EXPECT_EQ(image->order(), OrderInterleaved);
    EXPECT_EQ(image->coordSpace(), SpaceLowerLeft);
    EXPECT_EQ(image->pageSize(), (ilXYZCstruct<std::int32_t>{128, 128, 1, 4}));
    EXPECT_NE(image->isKindOf(ilSIDImage::descriptor), 0);
    EXPECT_EQ(image->pushToSource(), ImageOk);
    for (const std::int32_t channels : {2, 3, 5}) {
        const Ref<ilZNTiledImage> none(
            new ilZNTiledImage({0, 0, 10, 10}, ilPixel(TypeUChar, channels)));
        Bytes buffer(1000, 7);
        const ilTile box = flatTile(0, 0, 10, 10);
        EXPECT_EQ(none->tiledImage(), nullptr);
        EXPECT_EQ(none->readRegion(box, buffer.data(), box), ImageUnusable);
        EXPECT_EQ(none->writeRegion(box, buffer.data(), box), ImageUnusable);
        EXPECT_EQ(buffer, Bytes(1000, 7));
    }
    const Ref<znTiledImage::Image> gray = znTiledImage::makeImage(1);
    const Ref<ilZNTiledImage> mixed(new ilZNTiledImage({0, 0, 9, 9}, ilPixel(), gray.get()));
    EXPECT_EQ(mixed->tiledImage(), nullptr);
    EXPECT_EQ(Ref<ilZNTiledImage>(new ilZNTiledImage(nullptr))->tiledImage(), nullptr);
}

// An image that stands otherwise, or calls its colours otherwise, is handed back and forth on the
// way.
TEST(ZNTiledImage, CopiesImagesThatStandOtherwise) {
    Bytes pixels(300 * 40 * 4);
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<std::uint8_t>(i * 7 / 3);
    for (const std::int32_t space : {SpaceUpperLeft, SpaceLowerRight, SpaceLeftLower}) {
        const Ref<ilMemoryImg> turned(
            new ilMemoryImg(pixels.data(), 300, 40, 1, 4, TypeUChar, OrderInterleaved));
        ASSERT_EQ(turned->setCoordSpace(space), ImageOk);
        ASSERT_EQ(turned->setColorModel(ColorABGR), ImageOk);
        const Ref<ilZNTiledImage> copy(new ilZNTiledImage(turned.get()));
        const PixelRect all{0, 0, turned->width(), turned->height()};
        ASSERT_EQ(copy->tiledImage()->rect(), all);
        ilImageConfig upright(TypeUChar, OrderInterleaved, 4);
        upright.coordSpace = SpaceLowerLeft;
        Bytes expected(pixels.size());
        turned->readRegion(boxOf(all), expected.data(), boxOf(all), &upright);
        EXPECT_EQ(readPlain(*copy, all), expected) << space;
    }
}

// Two adapters over one image are one picture.
TEST(ZNTiledImage, CopiesWithinOneImage) {
    const Ref<ilZNTiledImage> a(new ilZNTiledImage({0, 0, 512, 128}, ilPixel(TypeUChar, 1)));
    const Ref<ilZNTiledImage> b(
        new ilZNTiledImage({0, 0, 512, 128}, ilPixel(TypeUChar, 1), a->tiledImage()));
    Bytes pixels(512 * 128);
    for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<std::uint8_t>(i / 97);
    const ilTile all = flatTile(0, 0, 512, 128);
    ASSERT_EQ(a->writeRegion(all, pixels.data(), all), ImageOk);
    ASSERT_EQ(
        a->copyRegion(flatTile(128, 0, 384, 128), *b, 0, 0, 0, nullptr, CopyDirection::FromOther),
        ImageOk);
    TiledModel model({0, 0, 512, 128}, 1, {});
    model.write({0, 0, 512, 128}, pixels);
    model.write({128, 0, 384, 128}, model.read({0, 0, 384, 128}));
    EXPECT_EQ(readPlain(*a, {0, 0, 512, 128}), model.read({0, 0, 512, 128}));
    // Other planes hold nothing.
    const ilTile above{0, 0, 1, 9, 9, 1};
    EXPECT_EQ(a->fillRegion(above, ilPixel(TypeUChar, 1)), ImageOk);
    EXPECT_EQ(a->readRegion(above, pixels.data(), above), ImageUnusable);
    EXPECT_EQ(readPlain(*a, {0, 0, 512, 128}), model.read({0, 0, 512, 128}));
}

TEST(ZNTiledImage, FillReachesEmptyCells) {
    const std::uint8_t value[] = {1, 2, 3, 4};
    const Ref<ilZNTiledImage> image(new ilZNTiledImage({0, 0, 300, 10}, ilPixel(TypeUChar, 4)));
    ASSERT_EQ(image->fillRegion(flatTile(0, 0, 128, 128), ilPixel(TypeUChar, 4)), ImageOk);
    ASSERT_EQ(image->setFill(ilPixel(TypeUChar, 4, value)), ImageOk);
    EXPECT_EQ(readPlain(*image, {127, 0, 2, 1}), (Bytes{0, 0, 0, 0, 1, 2, 3, 4}));
    EXPECT_EQ(image->fill(), ilPixel(TypeUChar, 4, value));
}

// Solid pages stay solid, and cells of one value hold no block.
TEST(ZNTiledImage, SmartPagesKeepTheirKind) {
    const std::uint8_t red[] = {255, 0, 0, 255};
    const Ref<ilSmartImage> smart(new ilSmartImage(ilPixel(TypeUChar, 4)));
    smart->fillRegion(flatTile(128, 0, 128, 128), ilPixel(TypeUChar, 4, red));
    smart->setPixel(300, 5, 0xFF00FF00);
    const Ref<ilZNTiledImage> image(new ilZNTiledImage({0, 0, 512, 128}, ilPixel(TypeUChar, 4)));
    const ilTile box = flatTile(0, 0, 512, 128);
    ASSERT_EQ(image->copyRegion(box, *smart, 0, 0, 0, nullptr, CopyDirection::FromOther), ImageOk);
    const auto& grid = image->tiledImage()->constContainer();
    EXPECT_EQ(grid.constNodeAt(0)->kind(), TileKind::None);
    EXPECT_EQ(grid.constNodeAt(1)->kind(), TileKind::Solid);
    EXPECT_EQ(grid.constNodeAt(2)->kind(), TileKind::Filled);
    EXPECT_EQ(grid.constNodeAt(3)->kind(), TileKind::None);
    // And back.
    const Ref<ilSmartImage> other(new ilSmartImage(ilPixel(TypeUChar, 4)));
    ASSERT_EQ(image->copyRegion(box, *other, 0, 0, 0, nullptr, CopyDirection::ToOther), ImageOk);
    std::uint32_t value = 1;
    EXPECT_TRUE(other->isSolid(flatTile(128, 0, 128, 128), value, false));
    EXPECT_EQ(value, 0xFF0000FFu);
    EXPECT_EQ(other->getPixel(300, 5), 0xFF00FF00u);
}

TEST(ZNTiledImage, CopiesWholeCellsBySharing) {
    const Ref<ilZNTiledImage> a(new ilZNTiledImage({0, 0, 384, 128}, ilPixel(TypeUChar, 1)));
    const Ref<ilZNTiledImage> b(new ilZNTiledImage({0, 0, 384, 128}, ilPixel(TypeUChar, 1)));
    const Bytes pixels(128 * 128, 9);
    const ilTile box = flatTile(0, 0, 128, 128);
    a->writeRegion(box, pixels.data(), box);
    const auto share = [&] {
        return b->copyRegion(flatTile(128, 0, 128, 128), *a, 0, 0, 0, nullptr,
                             CopyDirection::FromOther);
    };
    ASSERT_EQ(share(), ImageOk);
    const auto tileOf = [](ilZNTiledImage& image, std::size_t index) {
        return image.tiledImage()->constContainer().constNodeAt(index)->tile;
    };
    EXPECT_EQ(tileOf(*a, 0), tileOf(*b, 1));
    // Not while somebody may write in place.
    const auto lock = a->lockRegion(box, nullptr, LockWrite);
    ASSERT_TRUE(lock);
    EXPECT_NE(tileOf(*a, 0), tileOf(*b, 1));
    ASSERT_EQ(share(), ImageOk);
    EXPECT_NE(tileOf(*a, 0), tileOf(*b, 1));
}

// Other types, channel lists and coordinate spaces, beside a memory image that holds the same.
TEST(ZNTiledImage, ConvertsAsAMemoryImageDoes) {
    const std::uint32_t seed = brushwork::test::testSeed();
    std::printf("seed %u\n", seed);
    Random random(seed);
    const ilTile all = flatTile(0, 0, 256, 128);
    const Ref<ilZNTiledImage> tiled(new ilZNTiledImage({0, 0, 256, 128}, ilPixel(TypeUChar, 4)));
    const Ref<ilMemoryImg> memory(new ilMemoryImg(256, 128, 1, 4, TypeUChar, OrderInterleaved));
    memory->fillRegion(all, ilPixel(TypeUChar, 4));
    const std::int32_t lists[][4] = {{2, 1, 0, 3}, {3, 3, 0, 0}};
    for (int step = 0; step < 200; ++step) {
        ilImageConfig config;
        const std::int32_t types[] = {TypeAny, TypeUShort, TypeFloat};
        const std::int32_t orders[] = {OrderAny, OrderSequential, OrderSeparate};
        config.dataType = types[random() % 3];
        config.order = orders[random() % 3];
        config.coordSpace = draw(random, 0, 8);
        config.channels = draw(random, 0, 4);
        if (config.channels > 0 && random() % 2) config.channelList = lists[random() % 2];
        const bool isTurned = isTransposed(config.coordSpace);
        const ilTile box = flatTile(draw(random, 0, 60), draw(random, 0, 60), draw(random, 1, 60),
                                    draw(random, 1, 60));
        const ilTile inside = isTurned ? flatTile(box.y, box.x, box.nx, box.ny) : box;
        SCOPED_TRACE(testing::Message() << "seed " << seed << " step " << step << " space "
                                        << config.coordSpace << " channels " << config.channels);
        Bytes a(60 * 60 * 4 * 4);
        for (std::uint8_t& byte : a) byte = static_cast<std::uint8_t>(random() % 64);
        Bytes b = a;
        const std::uint32_t what = random() % 3;
        if (what == 0) {
            ASSERT_EQ(tiled->writeRegion(inside, a.data(), inside, &config), ImageOk);
            ASSERT_EQ(memory->writeRegion(inside, a.data(), inside, &config), ImageOk);
        } else if (what == 1) {
            const ilPixel value(TypeUChar, 4, a.data());
            ASSERT_EQ(tiled->fillRegion(inside, value, &config), ImageOk);
            ASSERT_EQ(memory->fillRegion(inside, value, &config), ImageOk);
        }
        ASSERT_EQ(tiled->readRegion(inside, a.data(), inside, &config), ImageOk);
        ASSERT_EQ(memory->readRegion(inside, b.data(), inside, &config), ImageOk);
        ASSERT_EQ(a, b);
        ASSERT_EQ(readPlain(*tiled, {0, 0, 256, 128}), readPlain(*memory, {0, 0, 256, 128}));
    }
}

}  // namespace
}  // namespace brushwork
