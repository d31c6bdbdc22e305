// Random kinds of TIFF, written by libtiff from samples that the test knows, against a naive model
// that turns those samples into pixels with long doubles.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <random>
#include <sstream>
#include <string>

#include "codec_corpus.h"
#include "codec_test_streams.h"
#include "codec_tiff_builder.h"
#include "platform/codec_tiff.h"

namespace brushwork::platform::test {
namespace {

struct Kind {
    std::uint32_t width, height;
    std::uint32_t bits;
    std::uint16_t sampleFormat;  // 1 unsigned, 2 signed, 3 floating point
    std::uint16_t photometric;
    std::uint32_t colours;
    std::vector<std::uint16_t> extras;
    bool tiled, separate;
    std::uint32_t chunkRows, tileWidth;
    std::uint16_t compression, predictor, fillOrder;
    std::string mode;

    std::uint32_t samples() const { return colours + static_cast<std::uint32_t>(extras.size()); }
    std::string text() const {
        std::ostringstream out;
        out << width << 'x' << height << " bits " << bits << " format " << sampleFormat
            << " photometric " << photometric << " extras";
        for (const auto extra : extras) out << ' ' << extra;
        out << " tiled " << tiled << " separate " << separate << " rows " << chunkRows
            << " tile width " << tileWidth << " compression " << compression << " predictor "
            << predictor << " fill order " << fillOrder << " mode " << mode;
        return out.str();
    }
};

class Sweep {
  public:
    explicit Sweep(unsigned seed) : random_(seed) {}

    void run() {
        kind_ = randomKind();
        fillSamples();
        const Bytes file = write();
        const Decoded decoded = decode(tiffCodec(), file);
        ASSERT_TRUE(decoded.ok()) << kind_.text();
        // Premultiplied floating point goes through 32-bit levels, which may break a tie.
        const int tolerance = premultiplied() && kind_.sampleFormat == 3 ? 1 : 0;
        EXPECT_LE(largestDifference(decoded.picture.bgra, expected()), tolerance) << kind_.text();
        EXPECT_EQ(decoded.picture.rowsSeen(), static_cast<std::int32_t>(kind_.height));
        EXPECT_EQ(decoded.header.grey, kind_.photometric <= 1 && alphaPlace() < 0);
        EXPECT_EQ(decoded.header.alpha, alphaPlace() >= 0);
    }

  private:
    std::uint32_t pick(std::uint32_t below) {
        return static_cast<std::uint32_t>(random_() % below);
    }
    template <typename T>
    T oneOf(std::initializer_list<T> values) {
        return values.begin()[pick(static_cast<std::uint32_t>(values.size()))];
    }

    Kind randomKind() {
        Kind kind{};
        kind.width = 1 + pick(70);
        kind.height = 1 + pick(40);
        kind.photometric = oneOf<std::uint16_t>({0, 1, 2, 2, 3, 5});
        kind.colours = kind.photometric == 2 ? 3 : kind.photometric == 5 ? 4 : 1;
        kind.sampleFormat = kind.photometric == 3 ? 1 : oneOf<std::uint16_t>({1, 1, 1, 2, 3});
        if (kind.photometric == 3)
            kind.bits = oneOf({1U, 2U, 4U, 8U});
        else if (kind.sampleFormat == 3)
            kind.bits = oneOf({16U, 32U, 64U});
        else
            kind.bits =
                oneOf({1U, 2U, 3U, 4U, 7U, 8U, 8U, 8U, 10U, 12U, 16U, 16U, 24U, 31U, 32U, 64U});
        for (std::uint32_t i = pick(3); i > 0 && pick(2) == 0; --i)
            kind.extras.push_back(oneOf<std::uint16_t>({0, 1, 2}));
        kind.tiled = pick(3) == 0;
        kind.separate = pick(3) == 0;
        kind.chunkRows = kind.tiled ? 16 * (1 + pick(2)) : 1 + pick(kind.height);
        kind.tileWidth = 16 * (1 + pick(3));
        kind.compression = oneOf<std::uint16_t>(
            {COMPRESSION_NONE, COMPRESSION_NONE, COMPRESSION_PACKBITS, COMPRESSION_LZW,
             COMPRESSION_ADOBE_DEFLATE, COMPRESSION_ZSTD, COMPRESSION_LZMA});
        if (TIFFIsCODECConfigured(kind.compression) == 0) kind.compression = COMPRESSION_NONE;
        if (kind.bits == 1 && kind.photometric <= 1 && kind.extras.empty())
            kind.compression = oneOf<std::uint16_t>({COMPRESSION_CCITTRLE, COMPRESSION_CCITTFAX3,
                                                     COMPRESSION_CCITTFAX4, COMPRESSION_LZW});
        kind.predictor = 1;
        if (kind.compression == COMPRESSION_LZW || kind.compression == COMPRESSION_ADOBE_DEFLATE) {
            if (kind.sampleFormat != 3 && (kind.bits == 8 || kind.bits == 16 || kind.bits == 32))
                kind.predictor = oneOf<std::uint16_t>({1, 2});
        }
        kind.fillOrder = oneOf<std::uint16_t>({1, 1, 2});
        kind.mode = oneOf<const char*>({"wl", "wb", "wl8", "wb8"});
        // The floating-point predictor; the library's writer scrambles it in the other byte order.
        if (kind.sampleFormat == 3 && kind.mode[1] == 'l' &&
            (kind.compression == COMPRESSION_LZW || kind.compression == COMPRESSION_ADOBE_DEFLATE))
            kind.predictor = oneOf<std::uint16_t>({1, 3});
        return kind;
    }

    // Raw samples as their bits, biased to the ends of their range.
    void fillSamples() {
        samples_.resize(std::size_t{kind_.width} * kind_.height * kind_.samples());
        const std::uint64_t mask = kind_.bits == 64 ? ~0ULL : (1ULL << kind_.bits) - 1;
        for (auto& sample : samples_) {
            const std::uint32_t choice = pick(8);
            if (kind_.sampleFormat == 3) {
                const float value = choice == 0   ? std::nanf("")
                                    : choice == 1 ? -2.5F
                                    : choice == 2 ? 1.0F
                                    : choice == 3 ? HUGE_VALF
                                                  : static_cast<float>(pick(1025)) / 1024;
                sample = floatBits(value);
            } else {
                sample = (choice == 0 ? 0 : choice == 1 ? mask : random_()) & mask;
            }
        }
        palette_.resize(3U << (kind_.photometric == 3 ? kind_.bits : 1));
        for (auto& level : palette_)
            level = static_cast<std::uint16_t>(256 * pick(256) + pick(256));
        palette_[0] = 0xFFFF;  // so that they can't pass for 8-bit levels
    }

    // Thousandths of two are exact in all three widths; a half float holds them in 10 bits.
    std::uint64_t floatBits(float value) const {
        if (kind_.bits == 64) return std::bit_cast<std::uint64_t>(static_cast<double>(value));
        const auto whole = std::bit_cast<std::uint32_t>(value);
        if (kind_.bits == 32) return whole;
        const std::uint32_t sign = whole >> 16 & 0x8000;
        if (std::isnan(value)) return sign | 0x7E00;
        if (std::isinf(value)) return sign | 0x7C00;
        if (value == 0) return sign;
        const auto exponent = static_cast<std::uint32_t>((whole >> 23 & 255) - 127 + 15);
        return sign | exponent << 10 | (whole >> 13 & 0x3FF);
    }

    std::uint64_t sample(std::uint32_t x, std::uint32_t y, std::uint32_t s) const {
        return samples_[(std::size_t{y} * kind_.width + x) * kind_.samples() + s];
    }

    // One row of a chunk as libtiff wants it; pixels beyond the picture are zero.
    void packRow(std::uint8_t* out, std::uint32_t x0, std::uint32_t count, std::uint32_t y,
                 std::uint32_t firstSample, std::uint32_t step) const {
        std::size_t bit = 0;
        for (std::uint32_t x = x0; x < x0 + count; ++x) {
            for (std::uint32_t s = firstSample; s < firstSample + step; ++s) {
                const std::uint64_t value =
                    x < kind_.width && y < kind_.height ? sample(x, y, s) : 0;
                if (kind_.bits % 8 == 0) {
                    std::memcpy(out + bit / 8, &value, kind_.bits / 8);
                    bit += kind_.bits;
                    continue;
                }
                for (std::uint32_t b = kind_.bits; b-- > 0; ++bit)
                    if ((value >> b & 1) != 0)
                        out[bit / 8] = static_cast<std::uint8_t>(out[bit / 8] | 128U >> bit % 8);
            }
        }
    }

    void describe(TIFF* tiff) const {
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, kind_.width);
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, kind_.height);
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, kind_.bits);
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, kind_.samples());
        TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, kind_.sampleFormat);
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, kind_.photometric);
        TIFFSetField(tiff, TIFFTAG_FILLORDER, kind_.fillOrder);
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, kind_.compression);
        TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, kind_.separate ? 2 : 1);
        if (kind_.predictor != 1) TIFFSetField(tiff, TIFFTAG_PREDICTOR, kind_.predictor);
        if (!kind_.extras.empty())
            TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, static_cast<int>(kind_.extras.size()),
                         kind_.extras.data());
        if (kind_.photometric == 3) {
            const std::size_t size = std::size_t{1} << kind_.bits;
            TIFFSetField(tiff, TIFFTAG_COLORMAP, &palette_[0], &palette_[size],
                         &palette_[2 * size]);
        }
        if (kind_.tiled) {
            TIFFSetField(tiff, TIFFTAG_TILEWIDTH, kind_.tileWidth);
            TIFFSetField(tiff, TIFFTAG_TILELENGTH, kind_.chunkRows);
        } else {
            TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, kind_.chunkRows);
        }
    }

    Bytes write() const {
        MemoryTiff memory(kind_.mode.c_str());
        TIFF* const tiff = memory.get();
        describe(tiff);
        const std::uint32_t step = kind_.separate ? 1 : kind_.samples();
        const std::uint32_t chunkWidth = kind_.tiled ? kind_.tileWidth : kind_.width;
        const std::size_t rowBytes = (std::size_t{chunkWidth} * step * kind_.bits + 7) / 8;
        std::uint32_t chunk = 0;
        for (std::uint32_t s = 0; s < kind_.samples(); s += step)
            for (std::uint32_t y = 0; y < kind_.height; y += kind_.chunkRows)
                for (std::uint32_t x = 0; x < kind_.width; x += chunkWidth, ++chunk) {
                    const std::uint32_t rows =
                        kind_.tiled ? kind_.chunkRows : std::min(kind_.chunkRows, kind_.height - y);
                    Bytes bytes(rowBytes * rows);
                    for (std::uint32_t i = 0; i < rows; ++i)
                        packRow(&bytes[i * rowBytes], x, chunkWidth, y + i, s, step);
                    const auto size = static_cast<tmsize_t>(bytes.size());
                    const tmsize_t wrote =
                        kind_.tiled ? TIFFWriteEncodedTile(tiff, chunk, bytes.data(), size)
                                    : TIFFWriteEncodedStrip(tiff, chunk, bytes.data(), size);
                    EXPECT_EQ(wrote, size);
                }
        return memory.finish();
    }

    int alphaPlace() const {
        for (std::size_t i = 0; i < kind_.extras.size(); ++i)
            if (kind_.extras[i] != 0) return static_cast<int>(kind_.colours + i);
        return -1;
    }

    bool premultiplied() const {
        const int alpha = alphaPlace();
        return alpha >= 0 && kind_.extras[static_cast<std::size_t>(alpha) - kind_.colours] == 1;
    }

    // Of `full()`, as the codec's header defines it; exact up to 56 bits.
    long double amount(std::uint64_t raw) const {
        if (kind_.sampleFormat == 3) {
            const long double value = floatValue(raw);
            return std::isnan(value) ? 0 : std::min(std::max(value, 0.0L), 1.0L);
        }
        if (kind_.sampleFormat == 2) raw ^= std::uint64_t{1} << (kind_.bits - 1);
        return static_cast<long double>(raw);
    }
    long double full() const {
        return kind_.sampleFormat == 3 ? 1 : std::ldexp(1.0L, static_cast<int>(kind_.bits)) - 1;
    }

    long double floatValue(std::uint64_t raw) const {
        if (kind_.bits == 64) return std::bit_cast<double>(raw);
        if (kind_.bits == 32) return std::bit_cast<float>(static_cast<std::uint32_t>(raw));
        const int sign = (raw & 0x8000) != 0 ? -1 : 1;
        if ((raw & 0x7FFF) == 0) return 0;
        if ((raw & 0x7C00) == 0x7C00) return (raw & 0x3FF) != 0 ? NAN : sign * HUGE_VALL;
        return sign * std::ldexp(1024.0L + static_cast<long double>(raw & 0x3FF),
                                 static_cast<int>(raw >> 10 & 31) - 25);
    }

    // Multiplied first, so that a tie stays one.
    static std::uint8_t nearest(long double part, long double whole) {
        return static_cast<std::uint8_t>(std::floor(part * 255 / whole + 0.5L));
    }

    Bytes expected() const {
        Bytes rgba;
        const int alpha = alphaPlace();
        for (std::uint32_t y = 0; y < kind_.height; ++y)
            for (std::uint32_t x = 0; x < kind_.width; ++x) {
                const long double opacity =
                    alpha < 0 ? full() : amount(sample(x, y, static_cast<std::uint32_t>(alpha)));
                int level[4] = {};
                for (std::uint32_t s = 0; s < kind_.colours; ++s) {
                    const long double value = amount(sample(x, y, s));
                    level[s] = !premultiplied() ? nearest(value, full())
                               : opacity == 0   ? 0
                                                : nearest(std::min(value, opacity), opacity);
                }
                appendPixel(rgba, level, sample(x, y, 0));
                rgba.push_back(nearest(opacity, full()));
            }
        return rgba;
    }

    void appendPixel(Bytes& rgba, const int* level, std::uint64_t index) const {
        for (std::size_t i = 0; i < 3; ++i) {
            int value = level[kind_.photometric == 2 ? i : 0];
            if (kind_.photometric == 0) value = 255 - value;
            if (kind_.photometric == 3) value = palette_[(i << kind_.bits) + index] >> 8;
            if (kind_.photometric == 5)
                value = nearest((255 - level[i]) * (255 - level[3]), 255 * 255);
            rgba.push_back(static_cast<std::uint8_t>(value));
        }
    }

    std::mt19937_64 random_;
    Kind kind_;
    std::vector<std::uint64_t> samples_;
    std::vector<std::uint16_t> palette_;  // red, then green, then blue
};

TEST(CodecTiffSweep, RandomKindsMatchTheModel) {
    for (unsigned seed = 1; seed <= 600; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Sweep(seed).run();
        if (HasFatalFailure()) return;
    }
}

}  // namespace
}  // namespace brushwork::platform::test
