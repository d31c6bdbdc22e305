#include "platform/codec_png.h"

#include <gtest/gtest.h>
#include <png.h>
#include <zlib.h>

#include <array>
#include <cstring>
#include <random>
#include <string>
#include <tuple>

#include "codec_corpus.h"
#include "codec_test_streams.h"
#include "stb_oracle.h"

namespace brushwork::platform::test {
namespace {

Bytes randomBytes(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    Bytes bytes(count);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
    return bytes;
}

Bytes opaque(Bytes bgra) {
    for (std::size_t i = 3; i < bgra.size(); i += 4) bgra[i] = 0xff;
    return bgra;
}

Bytes encode(std::int32_t w, std::int32_t h, const Bytes& bgra, float x = 96, float y = 96) {
    BufferSource source(w, h, bgra);
    VectorTarget target;
    const EncodeRequest request{w, h, &source, std::nullopt, x, y};
    EXPECT_EQ(pngCodec().write(request, target), ImagingStatus::Ok);
    return target.bytes;
}

Decoded read(const Bytes& file) {
    return decode(pngCodec(), file);
}

std::uint32_t bigEndian(const Bytes& bytes, std::size_t at) {
    return std::uint32_t{bytes[at]} << 24 | std::uint32_t{bytes[at + 1]} << 16 |
           std::uint32_t{bytes[at + 2]} << 8 | bytes[at + 3];
}

void putBigEndian(Bytes& bytes, std::size_t at, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i) {
        bytes[at + i] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
    }
}

// One chunk as it stands in a file, its check sum included.
Bytes chunk(const char* type, const Bytes& content) {
    Bytes bytes(content.size() + 12);
    putBigEndian(bytes, 0, static_cast<std::uint32_t>(content.size()));
    std::memcpy(&bytes[4], type, 4);
    if (!content.empty()) std::memcpy(&bytes[8], content.data(), content.size());
    const uLong sum = crc32(0, &bytes[4], static_cast<uInt>(content.size() + 4));
    putBigEndian(bytes, content.size() + 8, static_cast<std::uint32_t>(sum));
    return bytes;
}

std::size_t find(const Bytes& file, const char* type) {
    const auto at = std::search(file.begin(), file.end(), type, type + 4);
    return static_cast<std::size_t>(at - file.begin()) - 4;  // of the chunk's length field
}

void insert(Bytes& file, std::size_t at, const Bytes& part) {
    file.insert(file.begin() + static_cast<std::ptrdiff_t>(at), part.begin(), part.end());
}

void setHeader(Bytes& file, std::uint32_t w, std::uint32_t h, int depth, int colour) {
    Bytes content(13);
    putBigEndian(content, 0, w);
    putBigEndian(content, 4, h);
    content[8] = static_cast<std::uint8_t>(depth);
    content[9] = static_cast<std::uint8_t>(colour);
    content[12] = file[28];
    const Bytes header = chunk("IHDR", content);
    std::copy(header.begin(), header.end(), file.begin() + 8);
}

TEST(CodecPng, RoundTripsExactlyAtOddSizes) {
    unsigned seed = 1;
    for (const auto& [w, h] : {std::pair{1, 1}, {1, 9}, {9, 1}, {7, 5}, {17, 200}, {300, 3}}) {
        const Bytes pixels = randomBytes(static_cast<std::size_t>(w * h) * 4, seed++);
        for (const Bytes& bgra : {pixels, opaque(pixels)}) {
            const Bytes file = encode(w, h, bgra, 300, 72);
            const bool alpha = bgra != opaque(bgra);
            EXPECT_EQ(file[25], alpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB);
            const Decoded result = read(file);
            ASSERT_TRUE(result.ok());
            EXPECT_EQ(result.picture.bgra, bgra);
            EXPECT_EQ(result.picture.rowsSeen(), h);
            EXPECT_EQ(result.picture.twice, 0);
            EXPECT_EQ(result.header.alpha, alpha);
            EXPECT_FALSE(result.header.grey);
            EXPECT_NEAR(result.header.xResolution, 300, 0.01);
            EXPECT_NEAR(result.header.yResolution, 72, 0.01);
        }
    }
    const Bytes file = encode(1, 1, Bytes(4), 300, 72);
    EXPECT_EQ(bigEndian(file, find(file, "pHYs") + 8), 11811U);
    EXPECT_EQ(bigEndian(file, find(file, "pHYs") + 12), 2835U);
}

// What a file may be made of. Transparency: a colour for grey and true colour, alpha values for
// palettes.
struct Kind {
    int colour;
    int depth;
    int interlace;
    bool transparency;
};

int channelsOf(int colour) {
    if ((colour & PNG_COLOR_MASK_PALETTE) != 0) return 1;
    return ((colour & PNG_COLOR_MASK_COLOR) != 0 ? 3 : 1) +
           ((colour & PNG_COLOR_MASK_ALPHA) != 0 ? 1 : 0);
}

struct Palette {
    std::array<png_color, 256> colours;
    std::array<png_byte, 100> alphas;  // the others are opaque
};

Palette randomPalette() {
    Palette palette;
    const Bytes bytes = randomBytes(868, 77);
    std::memcpy(palette.colours.data(), bytes.data(), 768);
    std::memcpy(palette.alphas.data(), bytes.data() + 768, 100);
    return palette;
}

using Samples = std::vector<std::uint16_t>;

void appendBytes(png_structp png, png_bytep bytes, std::size_t count) {
    auto* file = static_cast<Bytes*>(png_get_io_ptr(png));
    file->insert(file->end(), bytes, bytes + count);
}

// Written by libpng from rows of full samples; the first pixel is the transparent colour.
Bytes makePng(const Kind& kind, std::uint32_t w, std::uint32_t h, const Samples& samples,
              const Palette& palette) {
    const auto channels = static_cast<std::size_t>(channelsOf(kind.colour));
    const std::size_t rowSamples = w * channels;
    std::vector<Bytes> rows(h, Bytes(rowSamples * (kind.depth == 16 ? 2 : 1)));
    for (std::size_t y = 0; y < h; ++y) {
        for (std::size_t i = 0; i < rowSamples; ++i) {
            const std::uint16_t value = samples[y * rowSamples + i];
            if (kind.depth == 16) {
                rows[y][i * 2] = static_cast<std::uint8_t>(value >> 8);
                rows[y][i * 2 + 1] = static_cast<std::uint8_t>(value);
            } else {
                rows[y][i] = static_cast<std::uint8_t>(value);
            }
        }
    }
    std::vector<png_bytep> lines;
    for (Bytes& row : rows) lines.push_back(row.data());

    Bytes file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(png, &file, appendBytes, [](png_structp) {});
    png_set_IHDR(png, info, w, h, kind.depth, kind.colour, kind.interlace, 0, 0);
    const bool indexed = kind.colour == PNG_COLOR_TYPE_PALETTE;
    if (indexed) png_set_PLTE(png, info, palette.colours.data(), 1 << kind.depth);
    if (kind.transparency) {
        png_color_16 key{};
        key.gray = samples[0];
        if (channels == 3) key = {0, samples[0], samples[1], samples[2], 0};
        const int alphas = std::min(1 << std::min(kind.depth, 8), 100);
        png_set_tRNS(png, info, indexed ? palette.alphas.data() : nullptr, indexed ? alphas : 0,
                     indexed ? nullptr : &key);
    }
    png_write_info(png, info);
    png_set_packing(png);
    png_write_image(png, lines.data());
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return file;
}

// The meaning of one pixel, from the samples alone.
std::array<std::uint8_t, 4> expectedPixel(const Kind& kind, const std::uint16_t* pixel,
                                          const std::uint16_t* key, const Palette& palette) {
    if (kind.colour == PNG_COLOR_TYPE_PALETTE) {
        const png_color& colour = palette.colours[pixel[0]];
        const bool hasAlpha = kind.transparency && pixel[0] < palette.alphas.size();
        const png_byte alpha = hasAlpha ? palette.alphas[pixel[0]] : png_byte{0xff};
        return {colour.blue, colour.green, colour.red, alpha};
    }
    const double largest = (1 << kind.depth) - 1;
    const auto scaled = [&](int i) {
        return static_cast<std::uint8_t>(pixel[i] * 255.0 / largest + 0.5);
    };
    const int channels = channelsOf(kind.colour);
    const bool colour = channels >= 3;
    std::uint8_t alpha = 0xff;
    if (channels == 2 || channels == 4) alpha = scaled(channels - 1);
    if (kind.transparency && std::equal(pixel, pixel + channels, key)) alpha = 0;
    return {scaled(colour ? 2 : 0), scaled(colour ? 1 : 0), scaled(0), alpha};
}

std::vector<Kind> allKinds() {
    std::vector<Kind> kinds;
    const auto add = [&](int colour, std::initializer_list<int> depths, bool canHaveKey) {
        for (const int depth : depths) {
            for (const int interlace : {PNG_INTERLACE_NONE, PNG_INTERLACE_ADAM7}) {
                kinds.push_back({colour, depth, interlace, false});
                if (canHaveKey) kinds.push_back({colour, depth, interlace, true});
            }
        }
    };
    add(PNG_COLOR_TYPE_GRAY, {1, 2, 4, 8, 16}, true);
    add(PNG_COLOR_TYPE_RGB, {8, 16}, true);
    add(PNG_COLOR_TYPE_PALETTE, {1, 2, 4, 8}, true);
    add(PNG_COLOR_TYPE_GRAY_ALPHA, {8, 16}, false);
    add(PNG_COLOR_TYPE_RGB_ALPHA, {8, 16}, false);
    return kinds;
}

TEST(CodecPng, ReadsEveryColourTypeAndDepth) {
    const Palette palette = randomPalette();
    for (const Kind& kind : allKinds()) {
        for (const auto& [w, h] : {std::pair{1U, 1U}, {3U, 2U}, {33U, 70U}, {150U, 9U}}) {
            SCOPED_TRACE(testing::Message() << kind.colour << " " << kind.depth << " "
                                            << kind.interlace << " " << w << "x" << h);
            const auto channels = static_cast<std::size_t>(channelsOf(kind.colour));
            std::mt19937 random(w);
            Samples samples(w * h * channels);
            for (auto& s : samples) s = static_cast<std::uint16_t>(random() % (1U << kind.depth));
            Bytes expected;
            for (std::size_t i = 0; i < samples.size(); i += channels) {
                const auto pixel = expectedPixel(kind, &samples[i], samples.data(), palette);
                expected.insert(expected.end(), pixel.begin(), pixel.end());
            }
            const Decoded result = read(makePng(kind, w, h, samples, palette));
            ASSERT_TRUE(result.ok());
            EXPECT_EQ(result.picture.bgra, expected);
            EXPECT_EQ(result.picture.rowsSeen(), static_cast<std::int32_t>(h));
            EXPECT_EQ(result.header.grey, (kind.colour & ~PNG_COLOR_MASK_ALPHA) == 0);
            EXPECT_EQ(result.header.alpha,
                      kind.transparency || (kind.colour & PNG_COLOR_MASK_ALPHA) != 0);
        }
    }
}

std::vector<Bytes> smallFiles() {
    const Palette palette = randomPalette();
    const Samples samples(40 * 30 * 3, 1);
    Samples noise(samples.size());
    std::mt19937 random(3);
    for (auto& s : noise) s = static_cast<std::uint16_t>(random() % 256);
    return {makePng({PNG_COLOR_TYPE_RGB, 8, PNG_INTERLACE_NONE, true}, 40, 30, samples, palette),
            makePng({PNG_COLOR_TYPE_RGB, 8, PNG_INTERLACE_ADAM7, false}, 20, 10, noise, palette),
            makePng({PNG_COLOR_TYPE_PALETTE, 8, PNG_INTERLACE_NONE, true}, 9, 8, noise, palette)};
}

TEST(CodecPng, OnlyAMissingTailIsForgiven) {
    for (const Bytes& file : smallFiles()) {
        const Decoded whole = read(file);
        ASSERT_TRUE(whole.ok());
        const std::size_t tail = find(file, "IEND");
        for (std::size_t length = 0; length < file.size(); ++length) {
            const Decoded cut = read(Bytes(file.begin(), file.begin() + static_cast<int>(length)));
            EXPECT_EQ(cut.ok(), length >= tail) << length;
            if (cut.ok()) {
                EXPECT_EQ(cut.picture.bgra, whole.picture.bgra);
            }
        }
    }
}

// What stands behind the picture data may be unreadable, as if it were missing.
TEST(CodecPng, AnyDamagedByteOfThePictureIsRefused) {
    for (const Bytes& file : smallFiles()) {
        const Decoded whole = read(file);
        const std::size_t transparency = find(file, "tRNS");
        for (std::size_t i = 0; i < file.size(); ++i) {
            Bytes damaged = file;
            damaged[i] = static_cast<std::uint8_t>(damaged[i] ^ 0x20);
            const Decoded result = read(damaged);
            const bool ancillary = i >= transparency && i < find(file, "IDAT");
            if (ancillary || !result.ok()) continue;
            EXPECT_GE(i, find(file, "IEND"));
            EXPECT_EQ(result.picture.bgra, whole.picture.bgra);
        }
    }
}

TEST(CodecPng, ResolutionNeedsAKnownUnit) {
    const Bytes plain = [] {
        Bytes file = encode(2, 2, Bytes(16, 0xff));
        const auto at = static_cast<std::ptrdiff_t>(find(file, "pHYs"));
        file.erase(file.begin() + at, file.begin() + at + 21);
        return file;
    }();
    const auto with = [&](std::uint32_t x, std::uint32_t y, std::uint8_t unit) {
        Bytes content(9, unit);
        putBigEndian(content, 0, x);
        putBigEndian(content, 4, y);
        Bytes file = plain;
        insert(file, find(file, "IDAT"), chunk("pHYs", content));
        const PictureHeader header = read(file).header;
        return std::pair(header.xResolution, header.yResolution);
    };
    const std::pair none(defaultResolution, defaultResolution);
    EXPECT_EQ(std::pair(read(plain).header.xResolution, read(plain).header.yResolution), none);
    EXPECT_EQ(with(4000, 2000, 1), std::pair(101.6F, 50.8F));
    EXPECT_EQ(with(4000, 2000, 0), none);
    EXPECT_EQ(with(0, 2000, 1), none);
}

TEST(CodecPng, HostileHeadersAreRefusedWithoutWork) {
    const Bytes file = encode(4, 4, randomBytes(64, 5));
    struct Case {
        std::uint32_t w, h;
        int depth, colour;
    };
    for (const Case& c : {Case{0, 4, 8, 6},
                          {4, 0, 8, 6},
                          {0x7fffffff, 1, 8, 6},
                          {1, 0x7fffffff, 1, 0},
                          {0x20000000, 0x7fffffff, 16, 6},
                          {0xffffffff, 4, 8, 6},
                          {100000, 100000, 1, 0},
                          {4, 4, 3, 0},
                          {4, 4, 8, 5},
                          {4, 4, 16, 3},
                          {60000, 60000, 8, 6}}) {
        Bytes hostile = file;
        setHeader(hostile, c.w, c.h, c.depth, c.colour);
        EXPECT_NE(read(hostile).headerStatus, ImagingStatus::Ok) << c.w << "x" << c.h;
    }
    Bytes interlaced = file;
    interlaced[28] = 1;
    setHeader(interlaced, 60, 60, 8, 6);  // plausible, but the data are missing
    EXPECT_EQ(read(interlaced).headerStatus, ImagingStatus::Ok);
    EXPECT_FALSE(read(interlaced).ok());
}

TEST(CodecPng, OtherChunksAreSkippedUnread) {
    const Bytes pixels = randomBytes(64, 6);
    Bytes file = encode(4, 4, pixels);
    for (const char* type : {"zTXt", "iCCP", "iTXt", "tEXt", "gAMA", "sBIT", "eXIf", "abCd"}) {
        const Bytes part = chunk(type, randomBytes(500, 8));
        for (int i = 0; i < 300; ++i) insert(file, 33, part);
    }
    Bytes broken = chunk("tEXt", randomBytes(50, 8));
    broken.back() ^= 1;
    insert(file, 33, broken);
    EXPECT_EQ(read(file).picture.bgra, pixels);
    insert(file, 33, chunk("ABCD", Bytes(5)));  // one that must be understood
    EXPECT_FALSE(read(file).ok());
}

TEST(CodecPng, FailuresOfStreamsEndTheWork) {
    const std::int32_t side = 150;
    const Bytes pixels = randomBytes(static_cast<std::size_t>(side * side) * 4, 9);
    BufferSource source(side, side, pixels);
    EncodeRequest request{side, side, &source, std::nullopt, 96, 96};
    for (const std::uint64_t limit : {0U, 20U, 60U, 70000U, 89000U}) {
        VectorTarget target;
        target.failFrom = limit;
        EXPECT_EQ(pngCodec().write(request, target), ImagingStatus::GenericError) << limit;
    }
    for (const std::int32_t row : {0, 1, side - 1}) {
        source.failAt = row;
        VectorTarget target;
        EXPECT_EQ(pngCodec().write(request, target), ImagingStatus::GenericError) << row;
    }
    VectorTarget target;
    request.source = nullptr;
    EXPECT_EQ(pngCodec().write(request, target), ImagingStatus::InvalidParameter);

    const Bytes file = encode(side, side, pixels);
    for (const std::uint64_t from : {std::uint64_t{0}, std::uint64_t{30}, file.size() - 13}) {
        SpanSource broken(file);
        broken.failFrom = from;
        const auto reader = pngCodec().makeReader(broken);
        PictureHeader header;
        if (reader->readHeader(header) != ImagingStatus::Ok) continue;
        PictureBuffer sink(side, side);
        EXPECT_EQ(reader->readPixels(sink), ImagingStatus::GenericError) << from;
    }
    SpanSource good(file);
    const auto reader = pngCodec().makeReader(good);
    PictureHeader header;
    ASSERT_EQ(reader->readHeader(header), ImagingStatus::Ok);
    PictureBuffer sink(side, side);
    sink.failAt = 100;
    EXPECT_EQ(reader->readPixels(sink), ImagingStatus::GenericError);
}

TEST(CodecPng, CorpusAgreesWithAnotherDecoder) {
    const auto files = corpusFiles({"pngsuite", "photos", "jpeg-odd", "jpeg-turbo"}, ".png");
    if (files.empty()) GTEST_SKIP() << "no corpus";
    int compared = 0;
    for (const auto& path : files) {
        const std::string name = path.filename().string();
        const Bytes file = readWhole(path);
        const Decoded result = read(file);
        if (name.starts_with("x") && path.parent_path().filename() == "pngsuite") {
            EXPECT_FALSE(result.ok()) << name;
            continue;
        }
        ASSERT_TRUE(result.ok()) << name;
        std::int32_t w = 0;
        std::int32_t h = 0;
        Bytes rgba;
        ASSERT_TRUE(stbDecode(file, w, h, rgba)) << name;
        EXPECT_LE(largestDifference(result.picture.bgra, rgba), file[24] == 16 ? 1 : 0) << name;
        ++compared;
    }
    std::printf("compared %d files\n", compared);
}

}  // namespace
}  // namespace brushwork::platform::test
