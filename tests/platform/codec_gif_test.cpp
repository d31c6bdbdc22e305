#include "platform/codec_gif.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <random>
#include <string>

#include "codec_corpus.h"
#include "codec_test_streams.h"
#include "platform/gif_dither.h"
#include "platform/gif_palette.h"
#include "stb_oracle.h"

namespace brushwork::platform::test {
namespace {

using Random = std::mt19937;

int below(Random& random, int limit) {
    return static_cast<int>(random() % static_cast<unsigned>(limit));
}

void put16(Bytes& bytes, int value) {
    bytes.push_back(static_cast<std::uint8_t>(value));
    bytes.push_back(static_cast<std::uint8_t>(value >> 8));
}

// The plainest data there is: every pixel its own code, and a clear code before codes would grow.
Bytes plainCodes(const Bytes& indices, int codeSize) {
    Bytes data;
    unsigned held = 0;
    int bits = 0;
    const auto code = [&](unsigned value) {
        held |= value << bits;
        for (bits += codeSize + 1; bits >= 8; bits -= 8, held >>= 8)
            data.push_back(static_cast<std::uint8_t>(held));
    };
    const unsigned clear = 1U << codeSize;
    for (std::size_t i = 0; i < indices.size(); ++i) {
        if (i % (clear / 2) == 0) code(clear);
        code(indices[i]);
    }
    code(clear + 1);
    if (bits > 0) data.push_back(static_cast<std::uint8_t>(held));
    return data;
}

// A GIF file with one frame, field by field.
struct File {
    int screenWidth = 1;
    int screenHeight = 1;
    int left = 0;
    int top = 0;
    int width = 1;
    int height = 1;
    bool interlaced = false;
    int transparent = -1;
    int codeSize = 8;
    std::vector<std::uint32_t> globalColours;  // 0xrrggbb; none, or a power of two of them
    std::vector<std::uint32_t> localColours;
    Bytes indices;  // width * height, from the top

    [[nodiscard]] Bytes bytes(Bytes data = {}) const {
        Bytes file{'G', 'I', 'F', '8', '9', 'a'};
        put16(file, screenWidth);
        put16(file, screenHeight);
        file.insert(file.end(), {tableFlags(globalColours), 0, 0});
        table(file, globalColours);
        // Blocks that have to be passed over, one of them of several parts.
        file.insert(file.end(), {0x21, 0xFE, 2, 'h', 'i', 1, '!', 0, 0x21, 0x77, 0});
        if (transparent >= 0) {
            file.insert(file.end(),
                        {0x21, 0xF9, 4, 1, 0, 0, static_cast<std::uint8_t>(transparent), 0});
        }
        file.push_back(0x2C);
        for (const int value : {left, top, width, height}) put16(file, value);
        file.push_back(
            static_cast<std::uint8_t>(tableFlags(localColours) | (interlaced ? 0x40 : 0)));
        table(file, localColours);
        file.push_back(static_cast<std::uint8_t>(codeSize));
        if (data.empty()) data = plainCodes(ordered(), codeSize);
        for (std::size_t at = 0; at < data.size(); at += 255) {
            const std::size_t count = std::min<std::size_t>(255, data.size() - at);
            file.push_back(static_cast<std::uint8_t>(count));
            file.insert(file.end(), data.begin() + static_cast<std::ptrdiff_t>(at),
                        data.begin() + static_cast<std::ptrdiff_t>(at + count));
        }
        file.insert(file.end(), {0, 0x3B});
        return file;
    }

    // What the file shows on a canvas of that size.
    [[nodiscard]] Bytes shown(int canvasWidth, int canvasHeight) const {
        const auto& colours = localColours.empty() ? globalColours : localColours;
        Bytes bgra(static_cast<std::size_t>(canvasWidth * canvasHeight * 4));
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const std::size_t index = indices[static_cast<std::size_t>(y * width + x)];
                if (left + x >= canvasWidth || top + y >= canvasHeight) continue;
                if (static_cast<int>(index) == transparent || index >= colours.size()) continue;
                const auto at = static_cast<std::size_t>(((top + y) * canvasWidth + left + x) * 4);
                for (std::size_t c = 0; c < 3; ++c)
                    bgra[at + c] = static_cast<std::uint8_t>(colours[index] >> (8 * c));
                bgra[at + 3] = 255;
            }
        }
        return bgra;
    }

  private:
    static std::uint8_t tableFlags(const std::vector<std::uint32_t>& colours) {
        if (colours.empty()) return 0;
        return static_cast<std::uint8_t>(0x80 | (std::lround(std::log2(colours.size())) - 1));
    }
    static void table(Bytes& file, const std::vector<std::uint32_t>& colours) {
        for (const std::uint32_t colour : colours)
            for (const int shift : {16, 8, 0})
                file.push_back(static_cast<std::uint8_t>(colour >> shift));
    }
    // Rows in the order of the file.
    [[nodiscard]] Bytes ordered() const {
        std::vector<int> rows;
        const auto pass = [&](int first, int step) {
            for (int y = first; y < height; y += step) rows.push_back(y);
        };
        if (interlaced) {
            pass(0, 8);
            pass(4, 8);
            pass(2, 4);
            pass(1, 2);
        } else {
            pass(0, 1);
        }
        Bytes all;
        for (const int y : rows)
            all.insert(all.end(), indices.begin() + y * width, indices.begin() + (y + 1) * width);
        return all;
    }
};

Decoded read(const Bytes& file) {
    return decode(gifCodec(), file);
}

std::vector<std::uint32_t> randomColours(Random& random, int bits) {
    std::vector<std::uint32_t> colours(std::size_t{1} << bits);
    for (auto& colour : colours) colour = static_cast<std::uint32_t>(random() & 0xFFFFFF);
    return colours;
}

void fill(File& file, Random& random) {
    file.indices.resize(static_cast<std::size_t>(file.width * file.height));
    for (auto& index : file.indices)
        index = static_cast<std::uint8_t>(random() & ((1U << file.codeSize) - 1));
}

TEST(CodecGif, FramesLandOnTheScreenAsDrawn) {
    for (unsigned seed = 0; seed < 1500; ++seed) {
        Random random(seed);
        File file;
        file.codeSize = 2 + below(random, 7);
        if (below(random, 3) > 0) file.globalColours = randomColours(random, 1 + below(random, 8));
        if (file.globalColours.empty() || below(random, 2) == 0)
            file.localColours = randomColours(random, 1 + below(random, 8));
        file.width = 1 + below(random, 20);
        file.height = 1 + below(random, 30);
        file.left = below(random, 10);
        file.top = below(random, 10);
        // The frame fits the screen, though not always where it stands.
        file.screenWidth = file.width + below(random, 14);
        file.screenHeight = file.height + below(random, 14);
        file.interlaced = below(random, 2) == 0;
        if (below(random, 2) == 0) file.transparent = below(random, 1 << file.codeSize);
        fill(file, random);
        const Decoded got = read(file.bytes());
        ASSERT_TRUE(got.ok()) << seed;
        ASSERT_EQ(got.header.width, file.screenWidth) << seed;
        ASSERT_EQ(got.header.height, file.screenHeight) << seed;
        EXPECT_EQ(got.header.xResolution, 96.0F);
        EXPECT_EQ(got.picture.twice, 0) << seed;
        const Bytes shown = file.shown(file.screenWidth, file.screenHeight);
        ASSERT_EQ(got.picture.bgra, shown) << seed;
        bool translucent = false;
        for (std::size_t i = 3; i < shown.size(); i += 4) translucent |= shown[i] != 255;
        EXPECT_TRUE(got.header.alpha || !translucent) << seed;
    }
}

TEST(CodecGif, ScreensThatCannotHoldTheirFrameGrow) {
    Random random(1);
    File file;
    file.globalColours = randomColours(random, 8);
    file.width = 6;
    file.height = 5;
    file.left = 2;
    file.top = 3;
    fill(file, random);
    struct Case {
        int screenWidth, screenHeight, width, height;
    };
    for (const Case& each : {Case{0, 0, 8, 8},
                             {0, 20, 8, 20},
                             {5, 4, 8, 8},
                             {6, 5, 6, 5},
                             {6, 4, 6, 8},
                             {100, 1, 100, 8}}) {
        file.screenWidth = each.screenWidth;
        file.screenHeight = each.screenHeight;
        const Decoded got = read(file.bytes());
        ASSERT_TRUE(got.ok());
        ASSERT_EQ(got.header.width, each.width);
        ASSERT_EQ(got.header.height, each.height);
        EXPECT_EQ(got.picture.bgra, file.shown(each.width, each.height));
    }
}

// Counts rows without keeping them.
class CountingSink : public RowSink {
  public:
    [[nodiscard]] bool putRows(std::int32_t y, std::int32_t count, const std::uint8_t*) override {
        last = y;
        rows += count;
        return true;
    }
    std::int32_t rows = 0;
    std::int32_t last = -1;
};

TEST(CodecGif, BlankRowsAreNotHandedOver) {
    File file;
    file.screenWidth = 65535;
    file.screenHeight = 65535;
    file.globalColours = {0xFF0000, 0x00FF00};
    file.codeSize = 2;
    file.transparent = 0;
    file.left = 40000;
    file.top = 50000;
    file.width = 2;
    file.height = 3;
    file.indices = {0, 0, 0, 1, 0, 3};
    const Bytes bytes = file.bytes();
    SpanSource source(bytes);
    const auto reader = gifCodec().makeReader(source);
    PictureHeader header;
    ASSERT_EQ(reader->readHeader(header), ImagingStatus::Ok);
    EXPECT_EQ(header.width, 65535);
    EXPECT_TRUE(header.alpha);
    CountingSink sink;
    EXPECT_EQ(reader->readPixels(sink), ImagingStatus::Ok);
    EXPECT_EQ(sink.rows, 1);
    EXPECT_EQ(sink.last, 50001);
}

TEST(CodecGif, GreyMeansTheTableInUse) {
    File file;
    file.globalColours = {0x000000, 0x808080, 0xFFFFFF, 0x010101};
    file.indices = {1};
    EXPECT_TRUE(read(file.bytes()).header.grey);
    file.localColours = {0x000001, 0x808080};
    EXPECT_FALSE(read(file.bytes()).header.grey);
}

TEST(CodecGif, ATruncatedFrameNeverPasses) {
    for (unsigned seed = 0; seed < 12; ++seed) {
        Random random(seed);
        File file;
        file.globalColours = randomColours(random, 4);
        file.codeSize = 4;
        file.screenWidth = file.width = 9 + below(random, 30);
        file.screenHeight = file.height = 9 + below(random, 30);
        file.interlaced = seed % 2 == 0;
        fill(file, random);
        const Bytes whole = file.bytes();
        for (std::size_t size = 0; size < whole.size(); ++size) {
            const Decoded got = read(Bytes(whole.begin(), whole.begin() + static_cast<int>(size)));
            // Nothing but the mark behind the frame's last block may be missing.
            EXPECT_EQ(got.ok(), size + 1 >= whole.size()) << seed << " " << size;
        }
        SpanSource source(whole);
        const auto reader = gifCodec().makeReader(source);
        PictureHeader header;
        ASSERT_EQ(reader->readHeader(header), ImagingStatus::Ok);
        PictureBuffer picture(header.width, header.height);
        picture.failAt = 5;
        EXPECT_NE(reader->readPixels(picture), ImagingStatus::Ok);
    }
}

TEST(CodecGif, DamagedFilesAreRefused) {
    Random random(2);
    File good;
    good.globalColours = randomColours(random, 8);
    good.screenWidth = good.width = 4;
    good.screenHeight = good.height = 4;
    fill(good, random);
    ASSERT_TRUE(read(good.bytes()).ok());
    const auto refused = [](const File& file, const Bytes& data = {}) {
        return !read(file.bytes(data)).ok();
    };
    File file = good;
    file.globalColours.clear();
    EXPECT_TRUE(refused(file)) << "no colours";
    file = good;
    file.width = 0;
    file.indices.clear();
    EXPECT_TRUE(refused(file)) << "no pixels";
    for (const int size : {9, 12, 255}) {
        file = good;
        file.codeSize = size;
        EXPECT_TRUE(refused(file, Bytes(100, 0))) << "code size " << size;
    }
    Bytes few = good.indices;
    few.pop_back();
    EXPECT_TRUE(refused(good, plainCodes(few, 8))) << "end code before the last pixel";
    EXPECT_TRUE(refused(good, {0xFF, 0xFF, 0xFF})) << "a code that means nothing";
    Bytes bytes = good.bytes();
    bytes[6 + 7 + 768 + 11] = 0x55;
    EXPECT_FALSE(read(bytes).ok()) << "an unknown record";
    bytes = good.bytes();
    bytes.resize(6 + 7 + 768);
    bytes.push_back(0x3B);
    EXPECT_FALSE(read(bytes).ok()) << "no frame";
    // More pixels than the data could ever hold are refused before any row is made.
    file = good;
    file.screenWidth = file.width = 65535;
    file.screenHeight = file.height = 65535;
    EXPECT_NE(read(file.bytes(Bytes(2000, 0))).headerStatus, ImagingStatus::Ok);
    // Pixels beyond the frame do no harm.
    Bytes many = good.indices;
    many.insert(many.end(), 700, 3);
    const Decoded got = read(good.bytes(plainCodes(many, 8)));
    ASSERT_TRUE(got.ok());
    EXPECT_EQ(got.picture.bgra, good.shown(4, 4));
}

TEST(CodecGif, MutatedFilesNeverCrash) {
    for (unsigned seed = 0; seed < 4000; ++seed) {
        Random random(seed);
        File file;
        file.codeSize = 2 + below(random, 7);
        file.globalColours = randomColours(random, 3);
        file.screenWidth = file.width = 1 + below(random, 40);
        file.screenHeight = file.height = 1 + below(random, 40);
        fill(file, random);
        Bytes bytes = file.bytes();
        for (int i = 0; i < 1 + below(random, 4); ++i)
            bytes[static_cast<std::size_t>(below(random, static_cast<int>(bytes.size())))] =
                static_cast<std::uint8_t>(random());
        const Decoded got = decode(gifCodec(), bytes, 4'000'000);
        EXPECT_EQ(got.picture.outside, 0) << seed;
        EXPECT_EQ(got.picture.twice, 0) << seed;
    }
}

ImagingStatus write(std::int32_t width, std::int32_t height, const Bytes& bgra, Bytes& file) {
    BufferSource source(width, height, bgra);
    VectorTarget target;
    const ImagingStatus status =
        gifCodec().write({width, height, &source, std::nullopt, 96, 96}, target);
    file = target.bytes;
    return status;
}

// A picture of exactly so many colours, and perhaps pixels of low alpha.
Bytes pictureOf(int colours, bool transparent, std::int32_t width, std::int32_t height,
                unsigned seed) {
    Random random(seed);
    std::vector<std::uint32_t> table;
    while (static_cast<int>(table.size()) < colours) {
        const auto colour = static_cast<std::uint32_t>(random() & 0xFFFFFF);
        if (std::find(table.begin(), table.end(), colour) == table.end()) table.push_back(colour);
    }
    Bytes bgra;
    for (int i = 0; i < width * height; ++i) {
        const auto number = i < colours ? i : below(random, colours);
        const std::uint32_t colour = table[static_cast<std::size_t>(number)];
        int alpha = 128 + below(random, 128);
        if (transparent && i >= colours && below(random, 3) == 0) alpha = below(random, 128);
        for (const int shift : {0, 8, 16})
            bgra.push_back(static_cast<std::uint8_t>(colour >> shift));
        bgra.push_back(static_cast<std::uint8_t>(alpha));
    }
    return bgra;
}

Bytes thresholded(Bytes bgra) {
    for (std::size_t i = 0; i < bgra.size(); i += 4) {
        const bool visible = bgra[i + 3] >= 128;
        if (!visible) std::fill_n(bgra.begin() + static_cast<std::ptrdiff_t>(i), 4, 0);
        if (visible) bgra[i + 3] = 255;
    }
    return bgra;
}

TEST(CodecGif, PicturesOfFewColoursAreKeptExactly) {
    for (const bool transparent : {false, true}) {
        for (const int colours : {1, 2, 3, 4, 5, 16, 17, 128, 255, 256, 257}) {
            const Bytes bgra = pictureOf(colours, transparent, 37, 29, 5);
            Bytes file;
            ASSERT_EQ(write(37, 29, bgra, file), ImagingStatus::Ok);
            EXPECT_EQ(std::string(file.begin(), file.begin() + 6), "GIF89a");
            const Decoded got = read(file);
            ASSERT_TRUE(got.ok()) << colours;
            // Data for two colours has room for four, so that it could hold more than its table.
            EXPECT_EQ(got.header.alpha, transparent || colours < 3) << colours;
            const bool fits = colours + (transparent ? 1 : 0) <= 256;
            EXPECT_EQ(got.picture.bgra == thresholded(bgra), fits) << colours;
            for (std::size_t i = 3; i < bgra.size(); i += 4)
                ASSERT_EQ(got.picture.bgra[i], bgra[i] >= 128 ? 255 : 0) << colours;
            std::int32_t w = 0;
            std::int32_t h = 0;
            Bytes rgba;
            ASSERT_TRUE(stbDecode(file, w, h, rgba));
            EXPECT_EQ(largestDifference(got.picture.bgra, rgba), 0) << colours;
        }
    }
    // Nothing visible at all, and codes long enough to fill the code table many times.
    Bytes file;
    ASSERT_EQ(write(3, 2, Bytes(24, 9), file), ImagingStatus::Ok);
    EXPECT_EQ(read(file).picture.bgra, Bytes(24, 0));
    const Bytes large = pictureOf(256, false, 300, 200, 6);
    ASSERT_EQ(write(300, 200, large, file), ImagingStatus::Ok);
    EXPECT_EQ(read(file).picture.bgra, thresholded(large));
}

double peakSignalToNoise(const Bytes& a, const Bytes& b) {
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i) sum += (a[i] - b[i]) * (a[i] - b[i]);
    return 10 * std::log10(255.0 * 255.0 * static_cast<double>(a.size()) * 0.75 / sum);
}

// How far the means of blocks of 16 x 16 lie apart.
double blockError(const Bytes& a, const Bytes& b, int side) {
    double total = 0;
    for (int by = 0; by < side; by += 16) {
        for (int bx = 0; bx < side; bx += 16) {
            for (int c = 0; c < 3; ++c) {
                int sum = 0;
                for (int i = 0; i < 256; ++i) {
                    const auto at =
                        static_cast<std::size_t>(((by + i / 16) * side + bx + i % 16) * 4 + c);
                    sum += a[at] - b[at];
                }
                total += std::abs(sum) / 256.0;
            }
        }
    }
    return total / (side * side / 256.0 * 3);
}

TEST(CodecGif, ManyColoursGetAGoodPaletteAndTheirErrorIsDiffused) {
    constexpr int side = 256;
    Bytes bgra;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            for (const double phase : {0.0, 2.1, 4.2})
                bgra.push_back(static_cast<std::uint8_t>(
                    128 + 100 * std::sin(phase + x / 60.0) * std::cos(y / (50.0 + 5 * phase))));
            bgra.push_back(255);
        }
    }
    // The same palette without diffusion, to compare with.
    ColourCensus census;
    for (int y = 0; y < side; ++y) census.add(bgra.data() + y * side * 4, side);
    ASSERT_FALSE(census.isExact());
    const std::vector<std::uint32_t> palette = fitPalette(census, 256);
    ASSERT_EQ(palette.size(), 256U);
    NearestColour nearest(palette);
    Bytes plain = bgra;
    for (std::size_t i = 0; i < plain.size(); i += 4) {
        const auto& colour = nearest.colour(nearest.find(plain[i + 2], plain[i + 1], plain[i]));
        for (std::size_t c = 0; c < 3; ++c) plain[i + c] = static_cast<std::uint8_t>(colour[2 - c]);
    }
    Bytes file;
    ASSERT_EQ(write(side, side, bgra, file), ImagingStatus::Ok);
    const Decoded got = read(file);
    ASSERT_TRUE(got.ok());
    EXPECT_GT(peakSignalToNoise(bgra, plain), 33.0);
    EXPECT_GT(peakSignalToNoise(bgra, got.picture.bgra), 31.0);
    EXPECT_LT(blockError(bgra, got.picture.bgra, side), blockError(bgra, plain, side) * 0.75);
}

TEST(CodecGif, TheNearestColourIsTheNearest) {
    for (unsigned seed = 0; seed < 30; ++seed) {
        Random random(seed);
        std::vector<std::uint32_t> palette(static_cast<std::size_t>(1 + below(random, 256)));
        const unsigned spread = seed % 3 == 0 ? 0x0F0F0F : 0xFFFFFF;  // crowded or not
        for (auto& colour : palette) colour = static_cast<std::uint32_t>(random() & spread);
        NearestColour nearest(palette);
        for (int i = 0; i < 3000; ++i) {
            const int r = below(random, 256);
            const int g = below(random, 256);
            const int b = below(random, 256);
            std::size_t best = 0;
            int least = INT32_MAX;
            for (std::size_t k = 0; k < palette.size(); ++k) {
                const int dr = static_cast<int>(palette[k] >> 16) - r;
                const int dg = static_cast<int>(palette[k] >> 8 & 255) - g;
                const int db = static_cast<int>(palette[k] & 255) - b;
                if (dr * dr + dg * dg + db * db >= least) continue;
                least = dr * dr + dg * dg + db * db;
                best = k;
            }
            ASSERT_EQ(nearest.find(r, g, b), best) << seed;
        }
    }
}

TEST(CodecGif, WritingFailsCleanly) {
    Bytes file;
    EXPECT_EQ(write(0, 1, {}, file), ImagingStatus::InvalidParameter);
    EXPECT_EQ(write(1, -5, {}, file), ImagingStatus::InvalidParameter);
    EXPECT_EQ(write(65536, 1, {}, file), ImagingStatus::ValueOverflow);
    EXPECT_EQ(write(1, 65536, {}, file), ImagingStatus::ValueOverflow);
    const Bytes bgra = pictureOf(250, true, 200, 300, 7);
    ASSERT_EQ(write(200, 300, bgra, file), ImagingStatus::Ok);
    for (std::uint64_t limit = 0; limit < file.size(); limit += limit < 40 ? 1 : 1009) {
        BufferSource source(200, 300, bgra);
        VectorTarget target;
        target.failFrom = limit;
        EXPECT_NE(gifCodec().write({200, 300, &source, std::nullopt, 96, 96}, target),
                  ImagingStatus::Ok)
            << limit;
    }
    BufferSource source(200, 300, bgra);
    source.failAt = 299;
    VectorTarget target;
    EXPECT_NE(gifCodec().write({200, 300, &source, std::nullopt, 96, 96}, target),
              ImagingStatus::Ok);
}

// "key = value" below [section] of a test's description; empty if it isn't there.
std::string setting(const std::filesystem::path& path, const std::string& section,
                    const std::string& key) {
    std::ifstream file(path);
    std::string line;
    bool inside = false;
    while (std::getline(file, line)) {
        if (line.starts_with("[")) inside = line == "[" + section + "]";
        if (inside && line.starts_with(key + " = ")) return line.substr(key.size() + 3);
    }
    return {};
}

TEST(CodecGif, CorpusFramesMatchTheirReferences) {
    if (std::getenv("BRUSHWORK_CORPUS") == nullptr) GTEST_SKIP() << "no corpus";
    int compared = 0;
    for (const auto& path : corpusFiles({"gifsuite"}, ".conf")) {
        const std::string name = path.stem();
        const std::string frames = setting(path, "config", "frames");
        const std::string frame = frames.substr(0, frames.find(','));
        const Bytes bytes = readWhole(path.parent_path() / setting(path, "config", "input"));
        const Decoded got = read(bytes);
        // A file without a picture is refused, whether or not others show a blank one.
        const bool empty = frame.empty() || name == "no-data" || name == "image-zero-width";
        EXPECT_EQ(got.ok(), !empty) << name;
        if (!got.ok()) continue;
        // Its first image is never shown alone; the reference holds the one above it as well.
        if (name == "dispose-restore-previous") continue;
        const Bytes rgba = readWhole(path.parent_path() / setting(path, frame, "pixels"));
        EXPECT_EQ(largestDifference(got.picture.bgra, rgba), 0) << name;
        ++compared;
    }
    EXPECT_GT(compared, 15);
    for (const auto& path : corpusFiles({"gif-variants"}, ".gif")) {
        const Bytes bytes = readWhole(path);
        const Decoded got = read(bytes);
        EXPECT_EQ(got.ok(), path.stem() != "broken-truncated") << path;
        std::int32_t width = 0;
        std::int32_t height = 0;
        Bytes rgba;
        if (!got.ok() || !stbDecode(bytes, width, height, rgba)) continue;
        EXPECT_EQ(largestDifference(got.picture.bgra, rgba), 0) << path;
    }
}

}  // namespace
}  // namespace brushwork::platform::test
