#include "platform/codec_bmp.h"

#include <gtest/gtest.h>

#include <string>

#include "bmp_test_file.h"
#include "codec_corpus.h"
#include "codec_test_streams.h"
#include "stb_oracle.h"

namespace brushwork::platform::test {
namespace {

using namespace bmp;

void expectReads(const BmpFile& file, const std::string& name) {
    const Decoded got = read(file.bytes());
    ASSERT_TRUE(got.ok()) << name;
    EXPECT_EQ(got.header.width, file.width) << name;
    EXPECT_EQ(got.header.height, std::abs(file.height)) << name;
    EXPECT_EQ(got.picture.rowsSeen(), got.header.height) << name;
    EXPECT_EQ(got.picture.twice, 0) << name;
    EXPECT_EQ(got.picture.bgra, model(file)) << name;
}

TEST(CodecBmp, EveryDepthAndWidthMatchesTheDefinition) {
    Random random(1);
    for (const int bits : {1, 2, 4, 8, 16, 24, 32}) {
        for (std::int32_t width = 1; width <= 37; ++width) {
            BmpFile file;
            file.bits = bits;
            file.width = width;
            file.height = static_cast<std::int32_t>(1 + below(random, 5));
            if (width % 2 == 0) file.height = -file.height;
            if (bits <= 8) file.palette = randomPalette(random, std::size_t{1} << bits);
            fill(file, random);
            expectReads(file, std::to_string(bits) + " bits, width " + std::to_string(width));
        }
    }
}

TEST(CodecBmp, PicturesOfManyBlocksComeWholeInBothOrders) {
    Random random(2);
    for (const std::int32_t height : {701, -701}) {
        for (const int bits : {1, 8, 24}) {
            BmpFile file;
            file.bits = bits;
            file.width = 301;
            file.height = height;
            if (bits <= 8) file.palette = randomPalette(random, std::size_t{1} << bits);
            fill(file, random);
            expectReads(file, std::to_string(height));
        }
    }
}

TEST(CodecBmp, FieldsOfAnyMaskAreScaledWithOneRounding) {
    for (unsigned seed = 0; seed < 400; ++seed) {
        Random random(seed);
        BmpFile file;
        file.bits = seed % 2 == 0 ? 16 : 32;
        file.width = 29;
        file.height = 3;
        const bool alpha = below(random, 2) == 1;
        file.compression = alpha ? 6 : 3;
        for (int i = 0; i < (alpha ? 4 : 3); ++i)
            file.masks.push_back(randomMask(random, file.bits));
        if (alpha && below(random, 2) == 1) {
            file.infoBytes = 124;
            file.compression = 3;
        }
        fill(file, random);
        expectReads(file, "seed " + std::to_string(seed));
        EXPECT_EQ(read(file.bytes()).header.alpha, alpha);
    }
}

TEST(CodecBmp, EveryHeaderTellsTheSamePicture) {
    Random random(3);
    BmpFile file;
    file.width = 7;
    file.height = 5;
    file.bits = 4;
    file.palette = randomPalette(random, 16);
    file.dotsPerMetre = 11811;
    fill(file, random);
    for (const std::uint32_t size : {12U, 16U, 40U, 52U, 56U, 64U, 108U, 124U}) {
        file.infoBytes = size;
        expectReads(file, "header of " + std::to_string(size));
        const PictureHeader header = read(file.bytes()).header;
        EXPECT_NEAR(header.xResolution, size >= 40 ? 299.9994F : 96.0F, 0.001F);
        EXPECT_NEAR(header.yResolution, size >= 40 ? 599.9988F : 96.0F, 0.001F);
        EXPECT_FALSE(header.grey);
    }
    for (const std::uint32_t size : {0U, 11U, 39U, 41U, 125U, 0xFFFFFFF2U}) {
        Bytes bytes = file.bytes();
        put(bytes, 14, size, 4);
        EXPECT_FALSE(read(bytes).ok()) << size;
    }
    // Fields inside the header and behind it, and none at all in spite of a long header.
    file = BmpFile{};
    file.bits = 32;
    file.width = 3;
    file.height = 2;
    file.masks = {0xFF, 0xFF00, 0xFF0000};
    file.compression = 3;
    fill(file, random);
    for (const std::uint32_t size : {40U, 52U}) {
        file.infoBytes = size;
        expectReads(file, "three masks, header of " + std::to_string(size));
    }
    file.masks.push_back(0xFF000000U);
    for (const std::uint32_t size : {56U, 108U, 124U}) {
        file.infoBytes = size;
        expectReads(file, "four masks, header of " + std::to_string(size));
    }
    Bytes plain = file.bytes();
    put(plain, 30, 0, 4);
    BmpFile opaque = file;
    opaque.masks = {0xFF0000, 0xFF00, 0xFF};
    EXPECT_EQ(read(plain).picture.bgra, model(opaque));
    EXPECT_FALSE(read(plain).header.alpha);
}

TEST(CodecBmp, PalettesShorterAndLongerThanTheDepth) {
    Random random(4);
    BmpFile file;
    file.width = 256;
    file.height = 1;
    file.bits = 8;
    for (std::uint32_t i = 0; i < 256; ++i) file.pixels.push_back(static_cast<std::uint8_t>(i));
    for (const std::uint32_t count : {1U, 3U, 255U, 256U, 300U}) {
        file.palette = randomPalette(random, count);
        file.declaredColours = count;
        expectReads(file, std::to_string(count) + " colours");
        // The pixels follow the palette where the offset can't be right.
        Bytes bytes = file.bytes();
        for (const std::uint32_t offset : {0U, 13U, 53U}) {
            put(bytes, 10, offset, 4);
            EXPECT_EQ(read(bytes).picture.bgra, model(file)) << count << " " << offset;
        }
    }
    // A count beyond reason is cut to what stands before the pixels.
    file.palette = randomPalette(random, 5);
    file.declaredColours = 0xFFFFFFFFU;
    expectReads(file, "five of very many");
    // A gap before the pixels belongs to nobody.
    file.palette = randomPalette(random, 256);
    file.declaredColours = 0;
    Bytes bytes = file.bytes();
    bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(file.pixelOffset()), 77, 0xEE);
    put(bytes, 10, file.pixelOffset() + 77, 4);
    EXPECT_EQ(read(bytes).picture.bgra, model(file));
    // Levels of grey alone make it grey.
    EXPECT_FALSE(read(file.bytes()).header.grey);
    for (auto& colour : file.palette) colour = (colour & 0xFF) * 0x10101;
    EXPECT_TRUE(read(file.bytes()).header.grey);
}

TEST(CodecBmp, ATruncatedFileNeverPasses) {
    Random random(5);
    std::vector<BmpFile> files;
    for (const int bits : {1, 4, 8, 16, 24, 32}) {
        BmpFile file;
        file.width = 5;
        file.height = 3;
        file.bits = bits;
        if (bits <= 8) file.palette = randomPalette(random, std::size_t{1} << std::min(bits, 4));
        file.declaredColours = static_cast<std::uint32_t>(file.palette.size());
        fill(file, random);
        files.push_back(file);
    }
    for (const BmpFile& file : files) {
        const Bytes whole = file.bytes();
        const std::size_t filling =
            strideOf(file) - static_cast<std::size_t>((file.width * file.bits + 7) / 8);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            const Decoded got = read(Bytes(whole.begin(), whole.begin() + static_cast<int>(size)));
            EXPECT_EQ(got.ok(), size >= whole.size() - filling) << file.bits << " " << size;
            if (!got.ok()) continue;
            EXPECT_EQ(got.picture.bgra, model(file));
        }
        // The same when the file is as long as it says but can't be read to its end.
        SpanSource source(whole);
        source.failFrom = whole.size() - filling - 1;
        const auto reader = bmpCodec().makeReader(source);
        PictureHeader header;
        ASSERT_EQ(reader->readHeader(header), ImagingStatus::Ok);
        PictureBuffer picture(5, 3);
        EXPECT_NE(reader->readPixels(picture), ImagingStatus::Ok);
    }
}

TEST(CodecBmp, HostileHeadersAreRefusedAtOnce) {
    Random random(6);
    BmpFile file;
    file.bits = 24;
    file.width = 4;
    file.height = 4;
    fill(file, random);
    struct Change {
        std::size_t at;
        std::uint32_t value;
        int bytes;
    };
    const Change changes[] = {
        {0, 0x4D43, 2},      {10, 0x7FFFFFFF, 4}, {10, 55, 4},     {18, 0, 4},
        {18, 0xFFFFFFFC, 4}, {18, 0x7FFFFFFF, 4}, {18, 5, 4},      {22, 0, 4},
        {22, 0x80000000, 4}, {22, 0x7FFFFFFF, 4}, {22, 5, 4},      {22, 0xFFFFFFFB, 4},
        {26, 0, 2},          {26, 2, 2},          {28, 0, 2},      {28, 3, 2},
        {28, 64, 2},         {28, 32, 2},         {28, 0xFFFF, 2}, {30, 1, 4},
        {30, 2, 4},          {30, 3, 4},          {30, 4, 4},      {30, 5, 4},
        {30, 6, 4},          {30, 0xFFFFFFFF, 4},
    };
    for (const Change& change : changes) {
        Bytes bytes = file.bytes();
        put(bytes, change.at, change.value, change.bytes);
        EXPECT_NE(read(bytes).headerStatus, ImagingStatus::Ok)
            << change.at << " = " << change.value;
    }
    // Sizes whose products pass 2^64, and run-length data that can't fill them.
    for (const std::uint32_t compression : {0U, 1U}) {
        BmpFile large;
        large.bits = compression == 0 ? 32 : 8;
        large.compression = compression;
        large.pixels = Bytes(1000, 0);
        for (const std::int32_t side : {INT32_MAX, INT32_MAX / 4, 0x10000, 6000}) {
            large.width = side;
            large.height = side;
            EXPECT_NE(read(large.bytes()).headerStatus, ImagingStatus::Ok) << side;
        }
    }
    // Fields with holes, beyond the pixel, or without any colour.
    file.bits = 16;
    file.compression = 3;
    fill(file, random);
    for (const std::uint32_t mask : {0xA000U, 0x18000U, 0x80000000U, 0xFFFFFFFFU, 0x0F0FU}) {
        file.masks = {mask, 0x3E0, 0x1F};
        EXPECT_NE(read(file.bytes()).headerStatus, ImagingStatus::Ok) << mask;
    }
    file.masks = {0, 0, 0};
    EXPECT_NE(read(file.bytes()).headerStatus, ImagingStatus::Ok);
    const Bytes bytes = file.bytes();
    for (std::size_t size = 0; size < 32; ++size)
        EXPECT_EQ(bmpCodec().recognises(std::span(bytes).first(size)), size >= 18);
}

TEST(CodecBmp, ReadingStopsWhenTheSinkDoes) {
    Random random(7);
    BmpFile file;
    file.width = 200;
    file.height = 400;
    fill(file, random);
    const Bytes bytes = file.bytes();
    SpanSource source(bytes);
    const auto reader = bmpCodec().makeReader(source);
    PictureHeader header;
    ASSERT_EQ(reader->readHeader(header), ImagingStatus::Ok);
    PictureBuffer picture(header.width, header.height);
    picture.failAt = 250;
    EXPECT_NE(reader->readPixels(picture), ImagingStatus::Ok);
    EXPECT_EQ(picture.outside, 0);
}

ImagingStatus write(std::int32_t width, std::int32_t height, const Bytes& bgra, Bytes& file) {
    BufferSource source(width, height, bgra);
    VectorTarget target;
    const ImagingStatus status =
        bmpCodec().write({width, height, &source, std::nullopt, 300.0F, 72.0F}, target);
    file = target.bytes;
    return status;
}

TEST(CodecBmp, WritingAndReadingKeepsEveryPixel) {
    Random random(8);
    for (const bool alpha : {false, true}) {
        for (const auto& [width, height] :
             {std::pair{1, 1}, {2, 3}, {3, 2}, {5, 7}, {64, 64}, {333, 301}}) {
            Bytes bgra(static_cast<std::size_t>(width * height * 4));
            for (auto& byte : bgra) byte = static_cast<std::uint8_t>(random());
            // One translucent pixel, in the row that is written last, is enough for the longer
            // form.
            for (std::size_t i = 3; i < bgra.size(); i += 4) bgra[i] = 255;
            if (alpha) bgra[3] = 7;
            Bytes file;
            ASSERT_EQ(write(width, height, bgra, file), ImagingStatus::Ok);
            EXPECT_EQ(get(file, 2, 4), file.size());
            EXPECT_EQ(get(file, 28, 2), alpha ? 32U : 24U);
            EXPECT_EQ(get(file, 34, 4), file.size() - get(file, 10, 4));
            EXPECT_EQ(get(file, 38, 4), 11811U);
            EXPECT_EQ(get(file, 42, 4), 2835U);
            const Decoded got = read(file);
            ASSERT_TRUE(got.ok());
            EXPECT_EQ(got.header.alpha, alpha);
            EXPECT_EQ(got.picture.bgra, bgra);
            std::int32_t w = 0;
            std::int32_t h = 0;
            Bytes rgba;
            ASSERT_TRUE(stbDecode(file, w, h, rgba));
            EXPECT_EQ(largestDifference(bgra, rgba), 0);
        }
    }
}

TEST(CodecBmp, WritingFailsCleanly) {
    Bytes file;
    EXPECT_EQ(write(0, 1, {}, file), ImagingStatus::InvalidParameter);
    EXPECT_EQ(write(1, -1, {}, file), ImagingStatus::InvalidParameter);
    EXPECT_EQ(write(65536, 65536, {}, file), ImagingStatus::ValueOverflow);
    EXPECT_EQ(write(INT32_MAX, INT32_MAX, {}, file), ImagingStatus::ValueOverflow);
    EXPECT_EQ(write(INT32_MAX, 1, {}, file), ImagingStatus::ValueOverflow);
    EXPECT_TRUE(file.empty());
    const Bytes bgra(400, 255);
    for (const std::uint64_t limit : {0U, 30U, 60U, 353U}) {
        BufferSource source(10, 10, bgra);
        VectorTarget target;
        target.failFrom = limit;
        EXPECT_NE(bmpCodec().write({10, 10, &source, std::nullopt, 96, 96}, target),
                  ImagingStatus::Ok)
            << limit;
    }
    BufferSource source(10, 10, bgra);
    source.failAt = 4;
    VectorTarget target;
    EXPECT_NE(bmpCodec().write({10, 10, &source, std::nullopt, 96, 96}, target), ImagingStatus::Ok);
}

// Colours of fewer than eight bits are scaled with different roundings by different decoders.
TEST(CodecBmp, CorpusFilesMatchAnIndependentDecoder) {
    int compared = 0;
    for (const auto& path : corpusFiles({"bmpsuite"}, ".bmp")) {
        const Bytes bytes = readWhole(path);
        const Decoded got = read(bytes);
        const std::string folder = path.parent_path().filename();
        EXPECT_TRUE(got.ok() || folder != "g") << path;
        if (!got.ok()) continue;
        std::int32_t width = 0;
        std::int32_t height = 0;
        Bytes rgba;
        if (!stbDecode(bytes, width, height, rgba)) continue;
        ++compared;
        const std::uint32_t bits = get(bytes, 14, 4) == 12 ? 24 : get(bytes, 28, 2);
        EXPECT_LE(largestDifference(got.picture.bgra, rgba), bits == 16 ? 1 : 0) << path;
    }
    if (std::getenv("BRUSHWORK_CORPUS") == nullptr) GTEST_SKIP() << "no corpus";
    EXPECT_GT(compared, 10);
}

}  // namespace
}  // namespace brushwork::platform::test
