#include "tiled/tile_regions.h"

#include <gtest/gtest.h>

#include <cstring>

#include "support/test_seed.h"
#include "tiled/pixel_reader.h"
#include "tiled/pixel_writer.h"
#include "tiled/tile_iterator.h"
#include "tiled/tiled_model.h"

namespace brushwork::znTiledImage {
namespace {

using test::draw;
using test::Random;
using test::TiledModel;

struct Pair {
    Ref<Image> image;
    TiledModel model;
};

void expectSame(const Pair& pair) {
    const PixelRect& grid = pair.model.grid();
    const PixelRect all{grid.x - 9, grid.y - 9, grid.w + 18, grid.h + 18};
    const std::vector<std::uint8_t> expected = pair.model.read(all);
    std::vector<std::uint8_t> read(expected.size());
    readRect(*pair.image, all, read.data(),
             static_cast<std::size_t>(all.w) * pair.model.pixelBytes());
    ASSERT_EQ(read, expected);
}

TEST(TileRegions, RandomOperationsOnSharingImages) {
    const std::uint32_t seed = brushwork::test::testSeed();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::printf("seed %u\n", seed);
    Random random(seed);
    for (const std::int32_t channels : {1, 4}) {
        const auto bytes = static_cast<std::size_t>(channels);
        const PixelRect rect{-200, -150, 400, 300};
        std::vector<Pair> pairs;
        const TiledModel::Pixel fill = test::drawPixel(random, bytes);
        pairs.push_back({makeImage(channels), TiledModel(rect, bytes, fill)});
        ASSERT_TRUE(pairs[0].image->setRect(rect));
        pairs[0].image->setFillValue(fill.data());
        for (int step = 0; step < 160; ++step) {
            const std::size_t which = random() % pairs.size();
            const PixelRect at = test::drawRect(random, rect, 150, 300);
            const std::size_t stride = static_cast<std::size_t>(at.w) * bytes;
            SCOPED_TRACE(testing::Message() << "step " << step << " on " << which << " at " << at.x
                                            << "," << at.y << " " << at.w << "x" << at.h);
            if (random() % 9 == 0 && pairs.size() < 4) {
                pairs.push_back({pairs[which].image->share(), pairs[which].model});
                continue;
            }
            Image& image = *pairs[which].image;
            TiledModel& model = pairs[which].model;
            const auto pixels = test::drawPixels(random, at, bytes);
            const TiledModel::Pixel value = test::drawPixel(random, bytes);
            switch (random() % 6) {
                case 0:
                    ASSERT_TRUE(writeRect(image, at, pixels.data(), stride));
                    model.write(at, pixels);
                    break;
                case 1:
                    ASSERT_TRUE(writeCompressed(image, pixels.data(), at, stride));
                    model.write(at, pixels);
                    break;
                case 2:
                    ASSERT_TRUE(fillRect(image, at, value.data(),
                                         random() % 2 ? Blocks::Keep : Blocks::Release));
                    model.fillRect(at, value);
                    break;
                case 3: ASSERT_TRUE(makeFilled(image, at)); break;
                case 4: ASSERT_TRUE(compressRect(image, at)); break;
                default: {
                    std::vector<std::uint8_t> read(pixels.size());
                    readRect(image, at, read.data(), stride);
                    ASSERT_EQ(read, model.read(at));
                }
            }
            ASSERT_NO_FATAL_FAILURE(expectSame(pairs[which]));
            if (step % 5 != 0) continue;
            for (const Pair& pair : pairs) ASSERT_NO_FATAL_FAILURE(expectSame(pair));
            std::vector<Ref<Image>> images;
            for (const Pair& pair : pairs) images.push_back(pair.image);
            ASSERT_NO_FATAL_FAILURE(test::expectCounted(images));
        }
    }
}

TEST(TileRegions, CompressedCellsHoldNoBlocks) {
    const Ref<Image> image = makeImage(1);
    ASSERT_TRUE(image->setRect({0, 0, 384, 128}));
    std::vector<std::uint8_t> pixels(384 * 128, 0);
    for (std::size_t y = 0; y < 128; ++y) {
        std::memset(&pixels[y * 384 + 128], 9, 128);
        std::memset(&pixels[y * 384 + 256], 9, 128);
    }
    pixels[127 * 384 + 383] = 8;  // the very last pixel
    ASSERT_TRUE(writeCompressed(*image, pixels.data(), {0, 0, 384, 128}, 384));
    const auto kinds = [&] {
        std::string text;
        for (std::size_t i = 0; i < 3; ++i)
            text += "-sF"[static_cast<std::size_t>(image->container().nodeAt(i)->kind())];
        return text;
    };
    EXPECT_EQ(kinds(), "-sF");
    // A part that agrees with what the cell is leaves it so.
    ASSERT_TRUE(
        writeCompressed(*image, std::vector<std::uint8_t>(100, 9).data(), {130, 5, 10, 10}, 10));
    ASSERT_TRUE(
        writeCompressed(*image, std::vector<std::uint8_t>(100, 0).data(), {5, 5, 10, 10}, 10));
    EXPECT_EQ(kinds(), "-sF");
    ASSERT_TRUE(
        writeCompressed(*image, std::vector<std::uint8_t>(100, 1).data(), {5, 5, 10, 10}, 10));
    EXPECT_EQ(kinds(), "FsF");
    ASSERT_TRUE(fillRect(*image, {0, 0, 384, 128}, &pixels[0]));
    EXPECT_EQ(kinds(), "sss");
    ASSERT_TRUE(compressRect(*image, {0, 0, 200, 1}));
    EXPECT_EQ(kinds(), "--s");
}

TEST(TileIterator, WalksRowsAndKnowsItsBorder) {
    const Ref<Image> image = makeImage(1);
    ASSERT_TRUE(image->setRect({-128, -128, 512, 512}));
    std::string walk;
    for (TypedTileIteratorRect<const Image> cell(*image, {-500, -100, 800, 300}); cell.valid();
         cell.next()) {
        walk += std::to_string(cell.cellX()) + "," + std::to_string(cell.cellY());
        walk += cell.onBorder() ? "b" : "";
        walk += cell.isWhole() ? "w " : " ";
    }
    EXPECT_EQ(walk,
              "-1,-1b 0,-1b 1,-1b 2,-1b -1,0bw 0,0w 1,0w 2,0b "
              "-1,1b 0,1b 1,1b 2,1b ");
    EXPECT_FALSE((TypedTileIteratorRect<Image>(*image, {5, 5, 0, 3}).valid()));
    EXPECT_FALSE((TypedTileIteratorRect<Image>(*image, {5000, 5, 10, 3}).valid()));
    EXPECT_FALSE((TypedTileIteratorRect<Image>(*makeImage(1), {0, 0, 10, 3}).valid()));
}

TEST(PixelReader, AnswersEveryKindOfCell) {
    const Ref<Image> image = makeImage(4);
    ASSERT_TRUE(image->setRect({-128, 0, 256, 128}));
    const znImage::Byte4 fill{{1, 1, 1, 1}};
    const znImage::Byte4 value{{2, 3, 4, 5}};
    image->setFillValue(&fill);
    ASSERT_TRUE(fillRect(*image, {-128, 0, 128, 128}, &value));
    ASSERT_TRUE(fillRect(*image, {7, 9, 1, 1}, &value));
    const PixelRect rect{-130, -3, 300, 200};
    const Ref<PixelReader> reader = makePixelReader(*image, rect);
    const TypedPixelReader<znImage::Byte4> typed(*image, rect);
    for (std::int32_t y = -3; y < 197; ++y)
        for (std::int32_t x = -130; x < 170; ++x) {
            znImage::Byte4 expected;
            readRect(*image, {x, y, 1, 1}, &expected, 4);
            ASSERT_EQ(*static_cast<const znImage::Byte4*>(reader->pixelAt(x, y)), expected);
            ASSERT_EQ(*typed.at(x, y), expected);
        }
    EXPECT_EQ(typed.at(-128, 0), typed.at(-1, 127));
    EXPECT_EQ(typed.blockAt(-128, 0, 1, 1), nullptr);
    EXPECT_EQ(typed.blockAt(124, 124, 4, 4), typed.at(124, 124));
    EXPECT_EQ(typed.blockAt(125, 0, 4, 4), nullptr);
    EXPECT_EQ(typed.blockAt(0, 125, 4, 4), nullptr);
    EXPECT_TRUE(reader->covers(-130, -3, 169, 196));
    EXPECT_FALSE(reader->covers(-130, -3, 170, 196));
}

TEST(PixelWriter, SeparatesAndFillsAtConstruction) {
    const Ref<Image> image = makeImage(1);
    ASSERT_TRUE(image->setRect({-128, -128, 384, 256}));
    const unsigned char value = 3;
    ASSERT_TRUE(fillRect(*image, {0, 0, 128, 128}, &value));
    ASSERT_TRUE(makeFilled(*image, {-1, -1, 1, 1}));
    const Ref<Image> copy = image->share();
    {
        const TypedPixelWriter<unsigned char> writer(*image, {-5, -5, 140, 1000});
        ASSERT_TRUE(writer.isComplete());
        EXPECT_EQ(writer.rect(), (PixelRect{-5, -5, 140, 133}));
        EXPECT_EQ(copy->container().nodeOfCell(-1, -1)->tile->refCount(), 1u);
        EXPECT_EQ(*writer.at(0, 0), 3);
        EXPECT_EQ(*writer.at(130, 0), 0);
        *writer.at(-5, -5) = 200;
        *static_cast<unsigned char*>(writer.pixelAt(134, 127)) = 201;
    }
    unsigned char read = 0;
    readRect(*image, {-5, -5, 1, 1}, &read, 1);
    EXPECT_EQ(read, 200);
    readRect(*image, {134, 127, 1, 1}, &read, 1);
    EXPECT_EQ(read, 201);
    readRect(*copy, {-5, -5, 1, 1}, &read, 1);
    EXPECT_EQ(read, 0);
    EXPECT_FALSE(TypedPixelWriter<znImage::Byte4>(*image, {0, 0, 9, 9}).isComplete());
}

}  // namespace
}  // namespace brushwork::znTiledImage
