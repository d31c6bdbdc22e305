#include "platform/codec_jpeg.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

#include "codec_corpus.h"
#include "codec_test_streams.h"
#include "jpeg_maker.h"
#include "platform/codec_jpeg_exif.h"
#include "stb_oracle.h"

namespace brushwork::platform::test {
namespace {

Decoded read(const Bytes& file) {
    return decode(jpegCodec(), file);
}

// A soft pattern with a little noise, so that all coefficients have something to do.
Bytes pattern(int width, int height, int channels) {
    std::mt19937 random(static_cast<unsigned>(width * 31 + height));
    Bytes pixels;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (int c = 0; c < channels; ++c) {
                const double wave = 100 * std::sin(x * 0.11 * (c + 1)) * std::cos(y * 0.07 + c);
                pixels.push_back(
                    static_cast<std::uint8_t>(128 + wave + static_cast<int>(random() % 16)));
            }
        }
    }
    return pixels;
}

Bytes make(const JpegKind& kind, int width, int height) {
    return makeJpeg(kind, width, height, pattern(width, height, jpegChannels(kind.stored)));
}

ImagingStatus write(std::int32_t w, std::int32_t h, std::optional<std::int32_t> quality,
                    VectorTarget& target, float x = 96, float y = 96) {
    BufferSource source(w, h, pattern(w, h, 4));
    return jpegCodec().write({w, h, &source, quality, x, y}, target);
}

std::size_t findMarker(const Bytes& file, int marker, std::size_t from = 2) {
    for (std::size_t i = from; i + 1 < file.size(); ++i) {
        if (file[i] == 0xff && file[i + 1] == marker) return i;
    }
    return file.size();
}

void insert(Bytes& file, std::size_t at, const Bytes& part) {
    file.insert(file.begin() + static_cast<std::ptrdiff_t>(at), part.begin(), part.end());
}

Bytes segment(int marker, const Bytes& content) {
    const std::size_t length = content.size() + 2;
    Bytes bytes{0xff, static_cast<std::uint8_t>(marker), static_cast<std::uint8_t>(length >> 8),
                static_cast<std::uint8_t>(length)};
    insert(bytes, 4, content);
    return bytes;
}

void expectAgreement(const Bytes& file, int tolerance) {
    const Decoded result = read(file);
    ASSERT_TRUE(result.ok());
    EXPECT_EQ(result.picture.rowsSeen(), result.header.height);
    EXPECT_EQ(result.picture.twice, 0);
    std::int32_t w = 0;
    std::int32_t h = 0;
    Bytes rgba;
    ASSERT_TRUE(stbDecode(file, w, h, rgba));
    EXPECT_LE(largestDifference(result.picture.bgra, rgba), tolerance);
}

TEST(CodecJpeg, AgreesWithAnotherDecoder) {
    for (const auto& [w, h] : {std::pair{1, 1}, {7, 5}, {64, 48}, {131, 77}, {33, 200}}) {
        for (const bool progressive : {false, true}) {
            SCOPED_TRACE(testing::Message() << w << "x" << h << " " << progressive);
            JpegKind kind;
            kind.progressive = progressive;
            expectAgreement(make(kind, w, h), 2);
            kind.stored = JCS_RGB;
            expectAgreement(make(kind, w, h), 2);
            kind.stored = JCS_GRAYSCALE;
            const Bytes grey = make(kind, w, h);
            expectAgreement(grey, 2);
            EXPECT_TRUE(read(grey).header.grey);
        }
    }
}

// The same coefficients, coded in another way, are the same pixels.
TEST(CodecJpeg, CodingDoesNotChangePixels) {
    for (const auto& [horizontal, vertical] : {std::pair{1, 1}, {2, 1}, {1, 2}, {2, 2}, {4, 1}}) {
        for (const J_COLOR_SPACE stored : {JCS_YCbCr, JCS_GRAYSCALE, JCS_CMYK, JCS_YCCK}) {
            JpegKind kind;
            kind.stored = stored;
            if (stored != JCS_GRAYSCALE) {
                kind.horizontal = horizontal;
                kind.vertical = vertical;
            }
            const Decoded plain = read(make(kind, 135, 75));
            ASSERT_TRUE(plain.ok());
            std::vector<JpegKind> others(5, kind);
            others[0].progressive = true;
            others[1].separateScans = true;
            others[2].arithmetic = true;
            others[3].arithmetic = others[3].progressive = true;
            others[4].restartRows = 1;
            for (const JpegKind& other : others) {
                const Decoded result = read(make(other, 135, 75));
                ASSERT_TRUE(result.ok()) << (&other - others.data());
                EXPECT_EQ(result.picture.bgra, plain.picture.bgra) << (&other - others.data());
            }
        }
    }
}

// Coefficients larger than the picture and than 16 MiB go through a temporary file.
TEST(CodecJpeg, CoefficientsInAFileGiveTheSamePixels) {
    JpegKind kind;
    kind.quality = 70;
    const Bytes pixels = pattern(1999, 1501, 3);
    const Decoded plain = read(makeJpeg(kind, 1999, 1501, pixels));
    kind.progressive = true;
    const Decoded progressive = read(makeJpeg(kind, 1999, 1501, pixels));
    kind.progressive = false;
    kind.separateScans = true;
    const Decoded separate = read(makeJpeg(kind, 1999, 1501, pixels));
    ASSERT_TRUE(plain.ok() && progressive.ok() && separate.ok());
    EXPECT_TRUE(progressive.picture.bgra == plain.picture.bgra);
    EXPECT_TRUE(separate.picture.bgra == plain.picture.bgra);
}

TEST(CodecJpeg, NoRoomForCoefficientsIsAFailure) {
    JpegKind kind;
    kind.progressive = true;
    const Bytes large = makeJpeg(kind, 1999, 1501, Bytes(std::size_t{1999} * 1501 * 3, 77));
    const Bytes small = make(kind, 64, 64);
    const char* old = std::getenv("TMPDIR");
    const std::string kept = old != nullptr ? old : "";
    ::setenv("TMPDIR", "/nowhere/at/all", 1);
    const Decoded largeResult = read(large);
    const Decoded smallResult = read(small);
    if (old != nullptr) {
        ::setenv("TMPDIR", kept.c_str(), 1);
    } else {
        ::unsetenv("TMPDIR");
    }
    EXPECT_EQ(largeResult.status, ImagingStatus::GenericError);
    EXPECT_TRUE(smallResult.ok());
    EXPECT_TRUE(read(large).ok());
}

TEST(CodecJpeg, InksBecomeLight) {
    for (const bool adobe : {false, true}) {
        for (const std::array<int, 4> inks : {std::array{0, 0, 0, 0},
                                              {255, 255, 255, 255},
                                              {255, 0, 0, 0},
                                              {200, 100, 50, 30},
                                              {17, 230, 128, 128},
                                              {60, 90, 120, 255}}) {
            JpegKind kind;
            kind.stored = JCS_CMYK;
            kind.adobe = adobe;
            kind.quality = 100;
            Bytes pixels;
            for (int i = 0; i < 64; ++i) {
                for (const int ink : inks) {
                    pixels.push_back(static_cast<std::uint8_t>(adobe ? 255 - ink : ink));
                }
            }
            const Decoded result = read(makeJpeg(kind, 8, 8, pixels));
            ASSERT_TRUE(result.ok());
            for (int c = 0; c < 3; ++c) {
                const double light =
                    (255 - inks[static_cast<std::size_t>(c)]) * (255 - inks[3]) / 255.0;
                EXPECT_NEAR(result.picture.bgra[static_cast<std::size_t>(2 - c)], light, 1.01);
            }
            EXPECT_EQ(result.picture.bgra[3], 255);
        }
    }
    JpegKind kind;
    kind.stored = JCS_YCCK;
    expectAgreement(make(kind, 60, 40), 3);
}

TEST(CodecJpeg, EveryTruncationIsRefused) {
    JpegKind progressive;
    progressive.progressive = true;
    JpegKind separate;
    separate.separateScans = true;
    JpegKind restarts;
    restarts.restartRows = 1;
    JpegKind arithmetic;
    arithmetic.arithmetic = true;
    for (const JpegKind& kind : {JpegKind{}, progressive, separate, restarts, arithmetic}) {
        const Bytes file = make(kind, 24, 20);
        ASSERT_TRUE(read(file).ok());
        for (std::size_t length = 0; length < file.size(); ++length) {
            Bytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length));
            EXPECT_FALSE(read(cut).ok()) << length;
        }
    }
}

// An end marker put behind part of the coded data doesn't make a picture of it.
TEST(CodecJpeg, AnEarlyEndMarkerIsRefused) {
    const Bytes file = make({}, 64, 64);
    const std::size_t scan = findMarker(file, 0xda);
    for (const std::size_t length : {scan + 20, scan + 200, file.size() - 12}) {
        Bytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length));
        insert(cut, cut.size(), {0xff, 0xd9});
        EXPECT_FALSE(read(cut).ok());
    }
    JpegKind kind;
    kind.separateScans = true;
    Bytes partial = make(kind, 64, 64);
    const std::size_t second = findMarker(partial, 0xda, findMarker(partial, 0xda) + 2);
    partial.resize(second);
    insert(partial, second, {0xff, 0xd9});
    EXPECT_FALSE(read(partial).ok());  // luminance alone
}

TEST(CodecJpeg, DamageShowsAtRestartMarkers) {
    JpegKind kind;
    kind.restartRows = 1;
    const Bytes file = make(kind, 64, 64);
    const std::size_t marker = findMarker(file, 0xd1);
    ASSERT_LT(marker, file.size());
    Bytes other = file;
    other[marker + 1] = 0xd5;
    EXPECT_FALSE(read(other).ok());
    Bytes longer = file;
    insert(longer, marker, {1, 2, 3, 4});
    EXPECT_FALSE(read(longer).ok());
    Bytes stray = file;  // between two segments, where nothing is coded
    insert(stray, findMarker(file, 0xc0), {1, 2, 3});
    EXPECT_TRUE(read(stray).ok());
    EXPECT_EQ(read(stray).picture.bgra, read(file).picture.bgra);
}

TEST(CodecJpeg, HostileHeadersAreRefused) {
    const Bytes file = make({}, 16, 16);
    const std::size_t frame = findMarker(file, 0xc0);
    const auto patched = [&](std::size_t at, const Bytes& part) {
        Bytes hostile = file;
        std::copy(part.begin(), part.end(),
                  hostile.begin() + static_cast<std::ptrdiff_t>(frame + at));
        return read(hostile);
    };
    using S = ImagingStatus;
    EXPECT_NE(patched(4, {12}).headerStatus, S::Ok);                      // bits a sample
    EXPECT_NE(patched(5, {0, 0}).headerStatus, S::Ok);                    // height in the data
    EXPECT_NE(patched(7, {0, 0}).headerStatus, S::Ok);                    // no width
    EXPECT_NE(patched(5, {0xff, 0xff, 0xff, 0xff}).headerStatus, S::Ok);  // too large
    EXPECT_NE(patched(5, {0xff, 0xdc, 0xff, 0xdc}).headerStatus, S::Ok);  // 65500 x 65500
    EXPECT_NE(patched(5, {0x10, 0, 0x10, 0}).headerStatus, S::Ok);        // more than it can hold
    EXPECT_NE(patched(11, {0}).headerStatus, S::Ok);                      // sampling
    EXPECT_NE(patched(1, {0xc3}).headerStatus, S::Ok);                    // lossless
    EXPECT_FALSE(patched(1, {0xc2}).ok());                                // progressive
}

TEST(CodecJpeg, ScansAreLimited) {
    JpegKind kind;
    kind.acRefinements = 190;
    EXPECT_TRUE(read(make(kind, 16, 16)).ok());
    kind.acRefinements = 210;
    EXPECT_FALSE(read(make(kind, 16, 16)).ok());
    kind.acRefinements = 120;  // well below the limit, but not on so many empty blocks
    const Bytes blank(std::size_t{4096} * 4096 * 3, 0x80);
    EXPECT_FALSE(read(makeJpeg(kind, 4096, 4096, blank)).ok());
}

Bytes bigEndianExif(std::uint8_t unit) {
    return {'E', 'x', 'i', 'f', 0, 0,    'M', 'M', 0, 42, 0, 0,    0, 8,    0, 3, 1, 0x1a,
            0,   5,   0,   0,   0, 1,    0,   0,   0, 50, 1, 0x1b, 0, 5,    0, 0, 0, 1,
            0,   0,   0,   58,  1, 0x28, 0,   3,   0, 0,  0, 1,    0, unit, 0, 0, 0, 0,
            0,   0,   0,   0,   1, 0x2c, 0,   0,   0, 2,  0, 0,    0, 200,  0, 0, 0, 1};
}

TEST(CodecJpeg, ResolutionComesFromDensityOrExif) {
    const Bytes plain = make({}, 8, 8);  // 18 bytes of JFIF segment stand behind the first marker
    const auto density = [&](std::uint8_t unit, std::uint8_t x, std::uint8_t y, const Bytes& exif) {
        Bytes file = plain;
        file[13] = unit;
        file[15] = x;
        file[17] = y;
        if (!exif.empty()) insert(file, 20, segment(0xe1, exif));
        const Decoded result = read(file);
        EXPECT_TRUE(result.ok());
        return std::pair(result.header.xResolution, result.header.yResolution);
    };
    const std::pair none(defaultResolution, defaultResolution);
    EXPECT_EQ(density(1, 150, 75, {}), std::pair(150.0F, 75.0F));
    EXPECT_EQ(density(2, 100, 50, {}), std::pair(254.0F, 127.0F));
    EXPECT_EQ(density(0, 1, 1, {}), none);
    EXPECT_EQ(density(1, 0, 50, {}), none);
    EXPECT_EQ(density(0, 1, 1, bigEndianExif(2)), std::pair(150.0F, 200.0F));
    EXPECT_EQ(density(1, 72, 72, bigEndianExif(2)), std::pair(72.0F, 72.0F));
    EXPECT_EQ(density(0, 1, 1, bigEndianExif(1)), none);

    Bytes many = plain;
    many[13] = 0;
    for (int i = 0; i < 50; ++i) insert(many, 20, segment(0xe1, Bytes(60000, 'E')));
    insert(many, 20, segment(0xe1, {'E', 'x'}));
    EXPECT_TRUE(read(many).ok());
}

TEST(CodecJpeg, ExifIsReadWithinItsBounds) {
    const Bytes inches = bigEndianExif(2);
    const auto centimetres = exifResolution(bigEndianExif(3));
    ASSERT_TRUE(centimetres);
    EXPECT_FLOAT_EQ(centimetres->x, 381.0F);
    EXPECT_FLOAT_EQ(centimetres->y, 508.0F);
    for (std::size_t length = 0; length < inches.size(); ++length) {
        const Bytes cut(inches.begin(), inches.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_FALSE(exifResolution(cut)) << length;
    }
    std::mt19937 random(11);
    for (int i = 0; i < 20000; ++i) {  // nothing but the sanitizers look at these
        Bytes mutated = inches;
        for (int k = 0; k < 3; ++k) {
            mutated[6 + random() % (mutated.size() - 6)] = static_cast<std::uint8_t>(random());
        }
        const auto result = exifResolution(mutated);
        if (result) {
            EXPECT_TRUE(result->x > 0 && result->y > 0);
        }
    }
    const Bytes little{'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0, 8,    0, 0, 0, 2, 0, 0x1a, 1,
                       5,   0,   1,   0,   0, 0, 38,  0,   0,  0, 0x1b, 1, 5, 0, 1, 0, 0,    0,
                       38,  0,   0,   0,   0, 0, 0,   0,   72, 0, 0,    0, 1, 0, 0, 0};
    const auto result = exifResolution(little);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->x, 72.0F);
}

TEST(CodecJpeg, WritesWhatItWasTold) {
    VectorTarget target;
    ASSERT_EQ(write(61, 45, std::nullopt, target, 300.4F, 72.5F), ImagingStatus::Ok);
    const Bytes file = target.bytes;
    const std::size_t frame = findMarker(file, 0xc0);
    EXPECT_EQ(Bytes(file.begin() + static_cast<int>(frame) + 4,
                    file.begin() + static_cast<int>(frame) + 19),
              (Bytes{8, 0, 45, 0, 61, 3, 1, 0x22, 0, 2, 0x11, 1, 3, 0x11, 1}));
    EXPECT_EQ(Bytes(file.begin() + 13, file.begin() + 18), (Bytes{1, 1, 44, 0, 73}));
    expectAgreement(file, 4);

    const auto bytesAt = [](std::optional<std::int32_t> quality) {
        VectorTarget written;
        EXPECT_EQ(write(61, 45, quality, written), ImagingStatus::Ok);
        return written.bytes;
    };
    EXPECT_EQ(bytesAt(std::nullopt), bytesAt(75));
    EXPECT_EQ(bytesAt(0), bytesAt(1));
    EXPECT_EQ(bytesAt(-5), bytesAt(1));
    EXPECT_EQ(bytesAt(1000), bytesAt(100));
    EXPECT_LT(bytesAt(20).size(), bytesAt(75).size());
    EXPECT_LT(bytesAt(75).size(), bytesAt(95).size());
}

// Smooth colours survive quality 100 whatever the alpha beside them.
TEST(CodecJpeg, AlphaIsDroppedAndColoursStay) {
    Bytes bgra;
    for (int i = 0; i < 40 * 30; ++i) {
        bgra.insert(bgra.end(), {200, 90, 30, static_cast<std::uint8_t>(i)});
    }
    BufferSource source(40, 30, bgra);
    VectorTarget target;
    ASSERT_EQ(jpegCodec().write({40, 30, &source, 100, 96, 96}, target), ImagingStatus::Ok);
    const Decoded result = read(target.bytes);
    ASSERT_TRUE(result.ok());
    for (std::size_t i = 0; i < bgra.size(); ++i) {
        ASSERT_NEAR(result.picture.bgra[i], i % 4 == 3 ? 255 : bgra[i], 2);
    }
}

TEST(CodecJpeg, FailuresOfStreamsEndTheWork) {
    VectorTarget unused;
    BufferSource one(1, 1, Bytes(4));
    EXPECT_EQ(jpegCodec().write({65501, 1, &one, 75, 96, 96}, unused),
              ImagingStatus::InvalidParameter);
    EXPECT_EQ(jpegCodec().write({1, 65501, &one, 75, 96, 96}, unused),
              ImagingStatus::InvalidParameter);
    EXPECT_EQ(jpegCodec().write({1, 1, nullptr, 75, 96, 96}, unused),
              ImagingStatus::InvalidParameter);

    const std::int32_t side = 400;
    BufferSource source(side, side, pattern(side, side, 4));
    const EncodeRequest request{side, side, &source, 98, 96, 96};
    VectorTarget whole;
    ASSERT_EQ(jpegCodec().write(request, whole), ImagingStatus::Ok);
    ASSERT_GT(whole.bytes.size(), 70000U);
    for (const std::uint64_t limit :
         {std::uint64_t{0}, std::uint64_t{66000}, whole.bytes.size() - 1}) {
        VectorTarget target;
        target.failFrom = limit;
        EXPECT_EQ(jpegCodec().write(request, target), ImagingStatus::GenericError) << limit;
    }
    for (const std::int32_t row : {0, side - 1}) {
        source.failAt = row;
        VectorTarget target;
        EXPECT_EQ(jpegCodec().write(request, target), ImagingStatus::GenericError) << row;
    }

    SpanSource good(whole.bytes);
    const auto reader = jpegCodec().makeReader(good);
    PictureHeader header;
    ASSERT_EQ(reader->readHeader(header), ImagingStatus::Ok);
    PictureBuffer sink(side, side);
    sink.failAt = 200;
    EXPECT_EQ(reader->readPixels(sink), ImagingStatus::GenericError);
}

TEST(CodecJpeg, MutatedFilesAreSafe) {
    std::mt19937 random(2024);
    JpegKind progressive;
    progressive.progressive = true;
    JpegKind arithmetic;
    arithmetic.arithmetic = arithmetic.progressive = true;
    for (const JpegKind& kind : {JpegKind{}, progressive, arithmetic}) {
        const Bytes file = make(kind, 40, 30);
        for (int i = 0; i < 700; ++i) {
            Bytes mutated = file;
            for (unsigned k = random() % 4 + 1; k > 0; --k) {
                mutated[random() % mutated.size()] = static_cast<std::uint8_t>(random());
            }
            const Decoded result = read(mutated);
            EXPECT_EQ(result.picture.outside, 0);
            if (result.ok()) {
                EXPECT_EQ(result.picture.rowsSeen(), result.header.height);
            }
        }
    }
}

TEST(CodecJpeg, CorpusAgreesWithAnotherDecoder) {
    const auto files =
        corpusFiles({"photos", "jpeg-variants", "jpeg-odd", "jpeg-turbo", "jpeg-exif"}, ".jpg");
    if (files.empty()) GTEST_SKIP() << "no corpus";
    int compared = 0;
    int refused = 0;
    int alone = 0;
    int filesOver = 0;
    for (const auto& path : files) {
        const std::string name =
            path.parent_path().filename().string() + "/" + path.filename().string();
        const Bytes file = readWhole(path);
        const Decoded result = read(file);
        const bool damaged = name.starts_with("fuzz/") || name.starts_with("broken/");
        if (name.find("/broken-") != std::string::npos) {
            EXPECT_FALSE(result.ok()) << name;
        }
        if (!result.ok()) {
            EXPECT_TRUE(damaged || name.find("/broken-") != std::string::npos) << name;
            ++refused;
            continue;
        }
        std::int32_t w = 0;
        std::int32_t h = 0;
        Bytes rgba;
        if (damaged || !stbDecode(file, w, h, rgba)) {
            ++alone;  // no other opinion, or none that counts
            continue;
        }
        // Both round the chroma on its way, each in its own manner: a few values in ten thousand
        // come out 3 or 4 apart.
        EXPECT_LE(largestDifference(result.picture.bgra, rgba), 4) << name;
        const std::size_t over = differencesAbove(2, result.picture.bgra, rgba);
        EXPECT_LE(over, rgba.size() / 1000) << name;
        filesOver += over > 0 ? 1 : 0;
        ++compared;
    }
    std::printf("compared %d (%d with values over 2), refused %d, alone %d\n", compared, filesOver,
                refused, alone);
}

}  // namespace
}  // namespace brushwork::platform::test
