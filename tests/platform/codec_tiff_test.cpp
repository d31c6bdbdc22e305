#include "platform/codec_tiff.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <random>
#include <set>
#include <string>

#include "codec_corpus.h"
#include "codec_test_streams.h"
#include "codec_tiff_builder.h"

namespace brushwork::platform::test {
namespace {

namespace fs = std::filesystem;

Decoded read(const Bytes& file) {
    return decode(tiffCodec(), file);
}

// The pixels as red, green, blue, alpha; empty if the reading failed.
Bytes rgba(const Bytes& file) {
    Decoded decoded = read(file);
    if (!decoded.ok()) return {};
    Bytes& pixels = decoded.picture.bgra;
    for (std::size_t i = 0; i < pixels.size(); i += 4) std::swap(pixels[i], pixels[i + 2]);
    return pixels;
}

// 2 x 2, red, green, blue, a strip for each row.
TiffBuilder smallRgb() {
    TiffBuilder tiff;
    tiff.basics(2, 2, {8, 8, 8}, 2);
    tiff.set(278, {1}, 4);
    tiff.chunks = {{1, 2, 3, 4, 5, 6}, {7, 8, 9, 250, 251, 252}};
    return tiff;
}
const Bytes smallRgbPixels{1, 2, 3, 255, 4, 5, 6, 255, 7, 8, 9, 255, 250, 251, 252, 255};

TEST(CodecTiff, RecognisesTheFourSignaturesAlone) {
    const auto recognises = [](Bytes head) { return tiffCodec().recognises(head); };
    for (const bool bigEndian : {false, true})
        for (const bool big : {false, true}) {
            TiffBuilder tiff = smallRgb();
            tiff.bigEndian = bigEndian;
            tiff.big = big;
            EXPECT_TRUE(recognises(tiff.build()));
        }
    EXPECT_FALSE(recognises({}));
    EXPECT_FALSE(recognises({'I', 'I', 42}));
    EXPECT_FALSE(recognises({'I', 'I', 0, 42}));
    EXPECT_FALSE(recognises({'M', 'M', 42, 0}));
    EXPECT_FALSE(recognises({'I', 'M', 42, 0}));
}

TEST(CodecTiff, ReadsBothByteOrdersAndOffsetWidths) {
    for (const bool bigEndian : {false, true})
        for (const bool big : {false, true}) {
            TiffBuilder tiff = smallRgb();
            tiff.bigEndian = bigEndian;
            tiff.big = big;
            EXPECT_EQ(rgba(tiff.build()), smallRgbPixels) << bigEndian << big;

            TiffBuilder deep;
            deep.bigEndian = bigEndian;
            deep.big = big;
            deep.basics(3, 1, {16}, 0);
            deep.chunks = {{}};
            for (const std::uint64_t level : {0U, 128U, 65535U})
                deep.append(deep.chunks[0], level, 2);
            // 128 of 65535 is 0.498 of a level, so it stays at the white end.
            EXPECT_EQ(rgba(deep.build()),
                      (Bytes{255, 255, 255, 255, 255, 255, 255, 255, 0, 0, 0, 255}));
        }
}

TEST(CodecTiff, ReadsTilesThatReachBeyondThePicture) {
    TiffBuilder tiff;
    tiff.basics(18, 17, {8}, 1);
    tiff.set(322, {16});
    tiff.set(323, {16});
    for (std::uint8_t tile = 0; tile < 4; ++tile)
        tiff.chunks.emplace_back(256, static_cast<std::uint8_t>(10 + tile));
    const Bytes pixels = rgba(tiff.build(true));
    ASSERT_EQ(pixels.size(), 18U * 17 * 4);
    for (std::size_t y = 0; y < 17; ++y)
        for (std::size_t x = 0; x < 18; ++x)
            ASSERT_EQ(pixels[(y * 18 + x) * 4], 10 + x / 16 + y / 16 * 2) << x << ',' << y;
}

TEST(CodecTiff, ReadsPalettesOfEightAndSixteenBitLevels) {
    for (const std::uint64_t scale : {1U, 256U, 257U}) {
        TiffBuilder tiff;
        tiff.basics(4, 1, {2}, 3);
        std::vector<std::uint64_t> map;
        for (const std::uint64_t level : {0U, 11U, 22U, 255U, 1U, 2U, 3U, 4U, 200U, 100U, 50U, 25U})
            map.push_back(level * scale);
        tiff.set(320, map);
        tiff.chunks = {{0b00'01'10'11}};
        EXPECT_EQ(rgba(tiff.build()),
                  (Bytes{0, 1, 200, 255, 11, 2, 100, 255, 22, 3, 50, 255, 255, 4, 25, 255}))
            << scale;
        tiff.entries.erase(320);
        EXPECT_TRUE(rgba(tiff.build()).empty());
    }
}

TEST(CodecTiff, DividesOutPremultipliedAlphaAlone) {
    TiffBuilder tiff;
    tiff.basics(3, 1, {8, 8, 8, 8}, 2);
    tiff.chunks = {{10, 20, 30, 60, 9, 9, 9, 0, 200, 100, 50, 100}};
    tiff.set(338, {1});  // premultiplied; more colour than alpha is cut off
    EXPECT_EQ(rgba(tiff.build()), (Bytes{43, 85, 128, 60, 0, 0, 0, 0, 255, 255, 128, 100}));
    tiff.set(338, {2});
    EXPECT_EQ(rgba(tiff.build()), tiff.chunks[0]);
    tiff.set(338, {0});  // not said to be alpha
    EXPECT_EQ(rgba(tiff.build()), (Bytes{10, 20, 30, 255, 9, 9, 9, 255, 200, 100, 50, 255}));
    EXPECT_FALSE(read(tiff.build()).header.alpha);
}

TEST(CodecTiff, SpreadsSharedChroma) {
    for (const std::uint32_t across : {1U, 2U, 4U})
        for (const std::uint32_t down : {1U, 2U, 4U}) {
            const std::uint32_t blocksX = (5 + across - 1) / across;
            const std::uint32_t blocksY = (6 + down - 1) / down;
            const std::size_t lumas = std::size_t{across} * down;
            std::mt19937 random(across * 10 + down);
            TiffBuilder tiff;
            tiff.basics(5, 6, {8, 8, 8}, 6);
            tiff.set(530, {across, down});
            Bytes strip(blocksX * blocksY * (lumas + 2));
            for (auto& byte : strip) byte = static_cast<std::uint8_t>(random());
            tiff.chunks = {strip};
            const Bytes pixels = rgba(tiff.build());
            ASSERT_EQ(pixels.size(), 5U * 6 * 4) << across << down;
            for (std::uint32_t y = 0; y < 6; ++y)
                for (std::uint32_t x = 0; x < 5; ++x) {
                    const std::uint8_t* block =
                        &strip[(y / down * blocksX + x / across) * (lumas + 2)];
                    const double luma = block[y % down * across + x % across];
                    const double cb = block[lumas] - 128.0;
                    const double cr = block[lumas + 1] - 128.0;
                    const double wanted[3] = {
                        luma + 1.402 * cr, luma - 0.344136 * cb - 0.714136 * cr, luma + 1.772 * cb};
                    for (std::size_t i = 0; i < 3; ++i)
                        ASSERT_NEAR(pixels[(y * 5 + x) * 4 + i],
                                    std::min(std::max(wanted[i], 0.0), 255.0), 0.51);
                }
        }
}

// A flat colour survives the cosine transform, so the planes and the colour space show.
TEST(CodecTiff, ReadsJpegAndWebpData) {
    for (const int scheme : {COMPRESSION_JPEG, COMPRESSION_WEBP})
        for (const bool tiled : {false, true})
            for (const int photometric : {PHOTOMETRIC_RGB, PHOTOMETRIC_YCBCR}) {
                if (TIFFIsCODECConfigured(static_cast<std::uint16_t>(scheme)) == 0) continue;
                if (scheme == COMPRESSION_WEBP && photometric != PHOTOMETRIC_RGB) continue;
                MemoryTiff memory("w");
                TIFF* const tiff = memory.get();
                for (const auto& [tag, value] : std::initializer_list<std::pair<unsigned, int>>{
                         {TIFFTAG_IMAGEWIDTH, 20},
                         {TIFFTAG_IMAGELENGTH, 32},
                         {TIFFTAG_BITSPERSAMPLE, 8},
                         {TIFFTAG_SAMPLESPERPIXEL, 3},
                         {TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG},
                         {TIFFTAG_COMPRESSION, scheme},
                         {TIFFTAG_PHOTOMETRIC, photometric},
                         {tiled ? TIFFTAG_TILEWIDTH : TIFFTAG_ROWSPERSTRIP, 16}})
                    TIFFSetField(tiff, tag, value);
                if (tiled) TIFFSetField(tiff, TIFFTAG_TILELENGTH, 16);
                if (scheme == COMPRESSION_JPEG)
                    TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
                else
                    TIFFSetField(tiff, TIFFTAG_WEBP_LOSSLESS, 1);
                const std::uint32_t chunks = tiled ? 4 : 2;
                for (std::uint32_t i = 0; i < chunks; ++i) {
                    Bytes chunk;
                    for (int pixel = tiled ? 256 : 320; pixel > 0; --pixel)
                        chunk.insert(chunk.end(), {200, static_cast<std::uint8_t>(60 + i), 20});
                    const auto size = static_cast<tmsize_t>(chunk.size());
                    if (tiled)
                        TIFFWriteEncodedTile(tiff, i, chunk.data(), size);
                    else
                        TIFFWriteEncodedStrip(tiff, i, chunk.data(), size);
                }
                Bytes wanted;
                for (int y = 0; y < 32; ++y)
                    for (int x = 0; x < 20; ++x)
                        wanted.insert(wanted.end(),
                                      {200,
                                       static_cast<std::uint8_t>(60 + y / 16 * (tiled ? 2 : 1) +
                                                                 (tiled ? x / 16 : 0)),
                                       20, 255});
                const Decoded decoded = read(memory.finish());
                ASSERT_TRUE(decoded.ok()) << scheme << tiled << photometric;
                EXPECT_LE(largestDifference(decoded.picture.bgra, wanted),
                          scheme == COMPRESSION_JPEG ? 3 : 0)
                    << scheme << tiled << photometric;
            }
}

TEST(CodecTiff, TellsResolutionInEachUnit) {
    const auto resolutions = [](std::vector<std::uint64_t> unit, std::vector<std::uint64_t> x) {
        TiffBuilder tiff = smallRgb();
        if (!unit.empty()) tiff.set(296, std::move(unit));
        if (!x.empty()) tiff.set(282, std::move(x), 5);
        tiff.set(283, {150, 1}, 5);
        const Decoded decoded = read(tiff.build());
        EXPECT_TRUE(decoded.ok());
        return std::pair(decoded.header.xResolution, decoded.header.yResolution);
    };
    EXPECT_EQ(resolutions({2}, {3001, 10}), std::pair(300.1F, 150.0F));
    EXPECT_EQ(resolutions({}, {300, 1}), std::pair(300.0F, 150.0F));  // inches unless told
    EXPECT_EQ(resolutions({3}, {100, 1}), std::pair(254.0F, 381.0F));
    EXPECT_EQ(resolutions({1}, {300, 1}), std::pair(96.0F, 96.0F));
    EXPECT_EQ(resolutions({2}, {}), std::pair(96.0F, 150.0F));
    EXPECT_EQ(resolutions({2}, {0, 1}), std::pair(96.0F, 150.0F));
    EXPECT_EQ(resolutions({2}, {1, 0}), std::pair(96.0F, 150.0F));
}

TEST(CodecTiff, RefusesWhatIsNotWhole) {
    ::testing::internal::CaptureStderr();  // the library is not to talk
    const auto refused = [](const TiffBuilder& tiff, bool tiled = false) {
        const Decoded decoded = read(tiff.build(tiled));
        EXPECT_EQ(decoded.picture.rowsSeen(), 0);
        return !decoded.ok();
    };
    TiffBuilder tiff = smallRgb();
    tiff.set(273, {8, 0}, 4);  // a strip that isn't there
    EXPECT_TRUE(refused(tiff));
    tiff = smallRgb();
    tiff.set(279, {6, 0}, 4);
    EXPECT_TRUE(refused(tiff));
    tiff = smallRgb();
    tiff.set(279, {6, 5}, 4);  // a byte short
    EXPECT_TRUE(refused(tiff));
    tiff = smallRgb();
    tiff.set(273, {8, 1000000}, 4);
    EXPECT_TRUE(refused(tiff));
    tiff = smallRgb();
    tiff.set(273, {8}, 4);  // fewer strips than the height needs
    tiff.set(279, {6}, 4);
    EXPECT_TRUE(refused(tiff));
    for (const std::uint16_t tag : {std::uint16_t{256}, std::uint16_t{257}}) {
        tiff = smallRgb();
        tiff.set(tag, {0}, 4);
        EXPECT_TRUE(refused(tiff)) << tag;
        for (const std::uint64_t size : {3U, 100000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
            tiff = smallRgb();
            tiff.set(tag, {size}, 4);
            EXPECT_TRUE(refused(tiff)) << tag << ' ' << size;
        }
    }
    tiff = smallRgb();
    tiff.set(262, {5});  // CMYK of three samples
    EXPECT_TRUE(refused(tiff));
    tiff = smallRgb();
    tiff.set(339, {5, 5, 5});  // pairs of integers
    EXPECT_TRUE(refused(tiff));
    tiff = smallRgb();
    tiff.set(259, {6});  // old-style JPEG
    EXPECT_TRUE(refused(tiff));
    tiff = smallRgb();
    tiff.set(322, {0xFFFFFFF0U}, 4);
    tiff.set(323, {0xFFFFFFF0U}, 4);
    EXPECT_TRUE(refused(tiff, true));
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST(CodecTiff, ReadsTheFirstOfDirectoriesInALoop) {
    TiffBuilder tiff = smallRgb();
    const std::size_t directory = tiff.build().size() - (2 + tiff.entries.size() * 12 + 24 + 4);
    tiff.nextDirectory = directory;
    EXPECT_EQ(rgba(tiff.build()), smallRgbPixels);
}

// Every tag claims most of the file as its value; kept side by side they would fill a gigabyte.
TEST(CodecTiff, RefusesValuesThatOverlap) {
    TiffBuilder tiff = smallRgb();
    tiff.chunks.emplace_back(200000, std::uint8_t{1});
    tiff.set(273, {8, 14}, 4);
    tiff.set(279, {6, 6}, 4);
    EXPECT_EQ(rgba(tiff.build()), smallRgbPixels);
    for (std::uint16_t tag = 40000; tag < 40900; ++tag) tiff.set(tag, {1}, 4);
    EXPECT_EQ(rgba(tiff.build()), smallRgbPixels);
    Bytes file = tiff.build();
    for (std::size_t at = file.size() - 4 - 900 * 12; at < file.size() - 4; at += 12) {
        const std::uint32_t claim[2] = {49000, 20};
        std::memcpy(&file[at + 4], claim, sizeof claim);
    }
    EXPECT_FALSE(read(file).ok());
}

// Whatever is cut off, the answer is a failure or the whole picture.
TEST(CodecTiff, NeverFillsInForACutFile) {
    std::vector<Bytes> files{smallRgb().build()};
    std::mt19937 random(5);
    Bytes noise(24 * 20 * 4);
    for (auto& byte : noise) byte = static_cast<std::uint8_t>(random() & 0x83);
    BufferSource source(24, 20, noise);
    VectorTarget target;
    ASSERT_EQ(tiffCodec().write({24, 20, &source, std::nullopt, 96, 96}, target),
              ImagingStatus::Ok);
    files.push_back(target.bytes);
    for (const auto scheme : {COMPRESSION_CCITTRLE, COMPRESSION_CCITTFAX3, COMPRESSION_CCITTFAX4,
                              COMPRESSION_PACKBITS, COMPRESSION_ADOBE_DEFLATE, COMPRESSION_LZW}) {
        MemoryTiff memory("wb");
        for (const auto& [tag, value] :
             std::initializer_list<std::pair<unsigned, int>>{{TIFFTAG_IMAGEWIDTH, 64},
                                                             {TIFFTAG_IMAGELENGTH, 20},
                                                             {TIFFTAG_COMPRESSION, scheme},
                                                             {TIFFTAG_PHOTOMETRIC, 0},
                                                             {TIFFTAG_BITSPERSAMPLE, 1},
                                                             {TIFFTAG_ROWSPERSTRIP, 20}})
            TIFFSetField(memory.get(), tag, value);
        Bytes strip(160);
        for (auto& byte : strip) byte = static_cast<std::uint8_t>(random() & random());
        TIFFWriteEncodedStrip(memory.get(), 0, strip.data(), 160);
        files.push_back(memory.finish());
    }
    for (const Bytes& file : files) {
        const Bytes whole = rgba(file);
        ASSERT_FALSE(whole.empty());
        for (std::size_t size = 0; size < file.size(); ++size) {
            const Bytes cut = rgba(Bytes(file.begin(), file.begin() + static_cast<long>(size)));
            EXPECT_TRUE(cut.empty() || cut == whole) << size << " of " << file.size();
        }
    }
    // The directory is whole here, but the strip's own byte count says less: the data ends early.
    for (std::size_t i = 2; i < files.size(); ++i) {
        const Bytes whole = rgba(files[i]);
        int shortened = 0;
        Bytes file = files[i];
        const auto number = [&file](std::size_t at) {
            return std::size_t{file[at]} << 24 | std::size_t{file[at + 1]} << 16 |
                   std::size_t{file[at + 2]} << 8 | file[at + 3];
        };
        const std::size_t directory = number(4);
        for (std::size_t at = directory + 2; at + 12 < file.size(); at += 12) {
            if (file[at] != 1 || file[at + 1] != 279 - 256) continue;
            // A long in the field, or a short in its first half.
            const bool isLong = file[at + 3] == 4;
            const std::size_t bytes = isLong ? number(at + 8) : number(at + 8) >> 16;
            for (std::size_t less = bytes / 2; less < bytes; ++less) {
                file[at + (isLong ? 10U : 8U)] = static_cast<std::uint8_t>(less >> 8);
                file[at + (isLong ? 11U : 9U)] = static_cast<std::uint8_t>(less);
                const Bytes cut = rgba(file);
                EXPECT_TRUE(cut.empty() || cut == whole) << i << ": " << less << " of " << bytes;
                ++shortened;
            }
        }
        EXPECT_GT(shortened, 10);
    }
}

TEST(CodecTiff, FailsWithItsStreams) {
    const Bytes file = smallRgb().build();
    SpanSource source(file);
    const auto reader = tiffCodec().makeReader(source);
    PictureHeader header;
    ASSERT_EQ(reader->readHeader(header), ImagingStatus::Ok);
    source.failFrom = 17;  // within the second strip
    PictureBuffer picture(2, 2);
    EXPECT_NE(reader->readPixels(picture), ImagingStatus::Ok);

    SpanSource again(file);
    const auto second = tiffCodec().makeReader(again);
    ASSERT_EQ(second->readHeader(header), ImagingStatus::Ok);
    picture.failAt = 1;
    EXPECT_EQ(second->readPixels(picture), ImagingStatus::Aborted);

    const Bytes pixels(300 * 300 * 4, 255);
    BufferSource rows(300, 300, pixels);
    const EncodeRequest request{300, 300, &rows, std::nullopt, 96, 96};
    VectorTarget whole;
    ASSERT_EQ(tiffCodec().write(request, whole), ImagingStatus::Ok);
    for (std::uint64_t room = 0; room < whole.bytes.size(); room += 37) {
        VectorTarget target;
        target.failFrom = room;
        EXPECT_NE(tiffCodec().write(request, target), ImagingStatus::Ok) << room;
    }
    rows.failAt = 250;
    VectorTarget target;
    EXPECT_EQ(tiffCodec().write(request, target), ImagingStatus::Aborted);
}

TEST(CodecTiff, RoundTripIsExact) {
    std::mt19937 random(7);
    for (int i = 0; i < 60; ++i) {
        const auto width = static_cast<std::int32_t>(1 + random() % (i % 10 == 0 ? 40000 : 300));
        const auto height = static_cast<std::int32_t>(1 + random() % (i % 10 == 0 ? 4 : 300));
        Bytes pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
        const unsigned mask = i % 3 == 0 ? 0xFF : 0x11;
        for (auto& byte : pixels) byte = static_cast<std::uint8_t>(random() & mask);
        const bool opaque = i % 2 == 0;
        for (std::size_t at = 3; at < pixels.size(); at += 4)
            if (opaque) pixels[at] = 255;
        BufferSource source(width, height, pixels);
        VectorTarget target;
        ASSERT_EQ(tiffCodec().write({width, height, &source, std::nullopt, 300, 72.5F}, target),
                  ImagingStatus::Ok);
        EXPECT_FALSE(target.committed);  // that is the caller's
        const Decoded decoded = read(target.bytes);
        ASSERT_TRUE(decoded.ok()) << width << 'x' << height;
        EXPECT_EQ(decoded.picture.bgra, pixels) << width << 'x' << height;
        EXPECT_EQ(decoded.header.alpha, !opaque);
        EXPECT_EQ(decoded.header.xResolution, 300.0F);
        EXPECT_EQ(decoded.header.yResolution, 72.5F);
    }
}

TEST(CodecTiffCorpus, LosslessCupsAreTheirSource) {
    const auto files = corpusFiles({"tiff-variants"}, ".tif");
    if (files.empty()) GTEST_SKIP() << "BRUSHWORK_CORPUS does not name the corpus";
    const std::set<std::string> others{"cup-cmyk-lzw.tif", "cup-jpeg-rgb.tif", "cup-jpeg-ycc.tif",
                                       "cup-pal8-rle.tif"};
    int compared = 0;
    for (const auto& path : files) {
        const std::string name = path.filename().string();
        if (name.starts_with("broken")) {
            EXPECT_FALSE(read(readWhole(path)).ok()) << name;
        }
        if (!name.starts_with("cup-") || others.contains(name)) continue;
        const Bytes reference = readWhole(path.parent_path() / "ref" / "cup.ppm");
        Bytes pixels = rgba(readWhole(path));
        Bytes colours;
        for (std::size_t i = 0; i < pixels.size(); ++i)
            if (i % 4 != 3) colours.push_back(pixels[i]);
        ASSERT_LT(colours.size(), reference.size());
        EXPECT_FALSE(colours.empty()) << name;
        EXPECT_TRUE(std::equal(colours.rbegin(), colours.rend(), reference.rbegin())) << name;
        ++compared;
    }
    EXPECT_GE(compared, 10);
}

// Decodes all of them with Pillow; gives the directory of the results, numbered as the files.
fs::path pillowResults(const std::vector<fs::path>& files, int& exitCode) {
    const fs::path directory =
        fs::temp_directory_path() / ("tiff_pillow_" + std::to_string(std::random_device{}()));
    fs::create_directories(directory);
    std::string command = "/usr/bin/python3 '" BRUSHWORK_TEST_TOOLS "/pillow_rgba.py'";
    for (std::size_t i = 0; i < files.size(); ++i)
        command +=
            " '" + files[i].string() + "' '" + (directory / std::to_string(i)).string() + "'";
    exitCode = std::system((command + " 2>/dev/null").c_str()) / 256;
    return directory;
}

TEST(CodecTiffCorpus, AgreesWithPillow) {
    auto files = corpusFiles({"tiff-flower", "tiff-misc", "tiff-variants"}, ".tif");
    const auto more = corpusFiles({"tiff-flower", "tiff-misc", "tiff-variants"}, ".tiff");
    files.insert(files.end(), more.begin(), more.end());
    if (files.empty()) GTEST_SKIP() << "BRUSHWORK_CORPUS does not name the corpus";
    // Pillow takes 16-bit planes for 8-bit ones, cuts signed samples off at 0, and turns the
    // picture by its orientation.
    const std::set<std::string> misread{"flower-rgb-planar-16.tif", "int16.tif",
                                        "seq-1c-i16-63af2488.tiff", "cup-orient2.tif",
                                        "cup-orient4.tif",          "cup-orient6.tif"};
    int exitCode = 0;
    const fs::path results = pillowResults(files, exitCode);
    int within[3] = {};
    for (std::size_t i = 0; i < files.size(); ++i) {
        const std::string name = files[i].filename().string();
        const Bytes theirs = readWhole(results / std::to_string(i));
        if (theirs.size() < 8 || misread.contains(name)) continue;
        const Decoded decoded = read(readWhole(files[i]));
        EXPECT_TRUE(decoded.ok()) << name;
        const int difference =
            largestDifference(decoded.picture.bgra, Bytes(theirs.begin() + 8, theirs.end()));
        EXPECT_LE(difference, 2) << name;
        if (difference <= 2) ++within[difference];
    }
    fs::remove_all(results);
    if (exitCode != 0 && exitCode != 1) GTEST_SKIP() << "/usr/bin/python3 has no Pillow";
    std::printf("exact %d, within 1: %d, within 2: %d\n", within[0], within[1], within[2]);
    EXPECT_GE(within[0], 30);
}

}  // namespace
}  // namespace brushwork::platform::test
