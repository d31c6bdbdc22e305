#include "platform/bmp_run_length.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "bmp_test_file.h"

namespace brushwork::platform::test {
namespace {

using namespace bmp;

// Random run-length data and, drawn beside it, the indices that it stands for.
struct RunLengthPicture {
    BmpFile file;
    std::vector<std::uint32_t> drawn;  // width * height from the bottom row up

    RunLengthPicture(int bits, unsigned seed) : random_(seed) {
        file.bits = bits;
        file.infoBytes = bits == 24 ? 64 : 40;
        file.compression = bits == 8 ? 1 : bits == 4 ? 2 : 4;
        file.width = static_cast<std::int32_t>(1 + below(random_, 70));
        file.height = static_cast<std::int32_t>(1 + below(random_, 12));
        if (bits <= 8) file.palette = randomPalette(random_, std::size_t{1} << bits);
        drawn.resize(static_cast<std::size_t>(file.width * file.height));
        while (y_ < file.height && step()) {
        }
    }

    [[nodiscard]] Bytes pixels() const {
        Bytes bgra;
        for (std::int32_t y = file.height - 1; y >= 0; --y) {
            for (std::int32_t x = 0; x < file.width; ++x) {
                const std::uint32_t value = drawn[static_cast<std::size_t>(y * file.width + x)];
                put(bgra, bgra.size(),
                    (file.bits == 24 ? value : file.palette[value]) | 0xFF000000U, 4);
            }
        }
        return bgra;
    }

  private:
    void code(std::uint32_t a, std::uint32_t b) {
        put(file.pixels, file.pixels.size(), a, 1);
        put(file.pixels, file.pixels.size(), b, 1);
    }
    std::uint32_t value() {
        return static_cast<std::uint32_t>(random_()) & ((1U << file.bits) - 1);
    }
    void draw(std::uint32_t value) {
        drawn[static_cast<std::size_t>(y_ * file.width + x_++)] = value;
    }
    bool step() {
        const auto left = static_cast<std::uint32_t>(file.width - x_);
        switch (below(random_, 12)) {
            case 0: code(0, 0); return nextRow(1);
            case 1: skip(left); return true;
            case 2:
                if (below(random_, 8) != 0) return true;
                code(0, 1);
                return false;
            case 3:
            case 4:
            case 5: literal(left); return true;
            default: run(left); return true;
        }
    }
    bool nextRow(std::int32_t count) {
        x_ = count > 0 ? 0 : x_;
        y_ += count;
        return true;
    }
    void skip(std::uint32_t left) {
        const auto right = below(random_, std::min(left, 20U) + 1);
        const auto up = below(random_, static_cast<std::uint32_t>(file.height - y_)) % 3;
        code(0, 2);
        code(right, up);
        x_ += static_cast<std::int32_t>(right);
        y_ += static_cast<std::int32_t>(up);
    }
    void run(std::uint32_t left) {
        if (left == 0) return;
        const std::uint32_t count = 1 + below(random_, left);
        const std::uint32_t pixel = value();
        put(file.pixels, file.pixels.size(), count, 1);
        if (file.bits == 4) {
            const std::uint32_t other = value();
            put(file.pixels, file.pixels.size(), pixel << 4 | other, 1);
            for (std::uint32_t i = 0; i < count; ++i) draw(i % 2 == 0 ? pixel : other);
            return;
        }
        put(file.pixels, file.pixels.size(), pixel, file.bits / 8);
        for (std::uint32_t i = 0; i < count; ++i) draw(pixel);
    }
    void literal(std::uint32_t left) {
        if (left < 3) return;
        const std::uint32_t count = 3 + below(random_, left - 2);
        code(0, count);
        const std::size_t start = file.pixels.size();
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::uint32_t pixel = value();
            draw(pixel);
            if (file.bits == 4 && i % 2 == 1) {
                file.pixels.back() = static_cast<std::uint8_t>(file.pixels.back() | pixel);
            } else {
                put(file.pixels, file.pixels.size(), file.bits == 4 ? pixel << 4 : pixel,
                    std::max(file.bits / 8, 1));
            }
        }
        if ((file.pixels.size() - start) % 2 != 0) file.pixels.push_back(0);
    }

    Random random_;
    std::int32_t x_ = 0;
    std::int32_t y_ = 0;
};

TEST(CodecBmpRunLength, RandomRunLengthDataMatchesWhatItDraws) {
    for (const int bits : {4, 8, 24}) {
        for (unsigned seed = 0; seed < 600; ++seed) {
            const RunLengthPicture picture(bits, seed);
            const Decoded got = read(picture.file.bytes());
            ASSERT_TRUE(got.ok()) << bits << " bits, seed " << seed;
            EXPECT_EQ(got.picture.rowsSeen(), got.header.height);
            ASSERT_EQ(got.picture.bgra, picture.pixels()) << bits << " bits, seed " << seed;
        }
    }
}

TEST(CodecBmpRunLength, RunLengthDataMustFillOrEndThePicture) {
    BmpFile file;
    file.bits = 8;
    file.compression = 1;
    file.width = 4;
    file.height = 2;
    file.palette = {0x111111, 0x222222, 0x333333};
    const auto ok = [&](Bytes data) {
        file.pixels = std::move(data);
        return read(file.bytes()).ok();
    };
    EXPECT_TRUE(ok({0, 1}));                             // nothing drawn
    EXPECT_TRUE(ok({4, 1, 0, 0, 4, 2}));                 // no marks behind the last row
    EXPECT_TRUE(ok({4, 1, 0, 0, 4, 2, 0, 0}));           // no end mark
    EXPECT_TRUE(ok({4, 1, 0, 0, 4, 2, 0, 0, 9, 9, 9}));  // more than asked for
    EXPECT_TRUE(ok({0, 2, 0, 2}));                       // a step to the end
    EXPECT_FALSE(ok({}));
    EXPECT_FALSE(ok({4, 1, 0, 0, 3, 2}));              // a pixel is missing
    EXPECT_FALSE(ok({4, 1}));                          // a row is
    EXPECT_FALSE(ok({5, 1, 0, 1}));                    // too long a run
    EXPECT_FALSE(ok({2, 1, 0, 3, 1, 2, 0, 0, 0, 1}));  // too long a literal
    EXPECT_FALSE(ok({0, 2, 5, 0, 0, 1}));              // a step out to the right
    EXPECT_FALSE(ok({0, 2, 0, 3, 0, 1}));              // and above
    EXPECT_FALSE(ok({4, 1, 0, 0, 4, 2, 1, 1}));        // a run behind a full last row
    file.height = -2;
    EXPECT_FALSE(ok({0, 1}));  // run-length rows come from the bottom
    file.height = 2;
    file.bits = 4;
    EXPECT_FALSE(ok({0, 1}));
}

TEST(CodecBmpRunLength, TruncatedDataNeverShowsSomethingElse) {
    for (unsigned seed = 0; seed < 20; ++seed) {
        const RunLengthPicture picture(seed % 2 == 0 ? 8 : 4, seed);
        const Bytes whole = picture.file.bytes();
        for (std::size_t size = 0; size < whole.size(); ++size) {
            const Decoded got = read(Bytes(whole.begin(), whole.begin() + static_cast<int>(size)));
            if (!got.ok()) continue;
            EXPECT_EQ(got.picture.bgra, picture.pixels()) << seed << " " << size;
        }
    }
}

TEST(CodecBmpRunLength, MutatedFilesNeverCrash) {
    for (unsigned seed = 0; seed < 3000; ++seed) {
        Random random(seed);
        const int bits[] = {4, 8, 24};
        Bytes bytes = RunLengthPicture(bits[seed % 3], seed).file.bytes();
        for (unsigned i = 0; i < 1 + seed % 4; ++i)
            bytes[below(random, static_cast<std::uint32_t>(bytes.size()))] =
                static_cast<std::uint8_t>(random());
        const Decoded got = decode(bmpCodec(), bytes, 1'000'000);
        EXPECT_EQ(got.picture.outside, 0) << seed;
        EXPECT_EQ(got.picture.twice, 0) << seed;
    }
}

TEST(CodecBmpRunLength, ReadingStopsWhenTheSinkDoes) {
    for (unsigned seed = 0; seed < 30; ++seed) {
        const Bytes bytes = RunLengthPicture(8, seed).file.bytes();
        SpanSource source(bytes);
        const auto reader = bmpCodec().makeReader(source);
        PictureHeader header;
        ASSERT_EQ(reader->readHeader(header), ImagingStatus::Ok);
        PictureBuffer picture(header.width, header.height);
        picture.failAt = 0;
        EXPECT_NE(reader->readPixels(picture), ImagingStatus::Ok);
        EXPECT_EQ(picture.outside, 0);
    }
}

}  // namespace
}  // namespace brushwork::platform::test
