// BMP files built field by field, and the definition of what they show.
#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <vector>

#include "codec_test_streams.h"
#include "platform/codec_bmp.h"

namespace brushwork::platform::test::bmp {

using Random = std::mt19937;

inline std::uint32_t below(Random& random, std::uint32_t limit) {
    return static_cast<std::uint32_t>(random() % limit);
}

inline void put(Bytes& bytes, std::size_t at, std::uint64_t value, int count) {
    if (bytes.size() < at + static_cast<std::size_t>(count))
        bytes.resize(at + static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        bytes[at + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(value >> (8 * i));
}

inline std::uint32_t get(const Bytes& bytes, std::size_t at, int count) {
    std::uint32_t value = 0;
    for (int i = 0; i < count; ++i)
        value |= std::uint32_t{bytes[at + static_cast<std::size_t>(i)]} << (8 * i);
    return value;
}

// A BMP file, field by field.
struct BmpFile {
    std::uint32_t infoBytes = 40;
    std::int32_t width = 1;
    std::int32_t height = 1;  // negative for rows from the top
    int bits = 24;
    std::uint32_t compression = 0;
    std::vector<std::uint32_t> masks;
    std::vector<std::uint32_t> palette;  // 0xrrggbb
    std::uint32_t declaredColours = 0;
    Bytes pixels;
    std::int32_t dotsPerMetre = 0;

    [[nodiscard]] std::size_t pixelOffset() const {
        std::size_t end = 14 + infoBytes;
        if (infoBytes == 40) end += masks.size() * 4;
        return end + palette.size() * (infoBytes == 12 ? 3 : 4);
    }

    [[nodiscard]] Bytes bytes() const {
        Bytes file(14 + infoBytes);
        put(file, 0, 0x4D42, 2);
        put(file, 2, pixelOffset() + pixels.size(), 4);
        put(file, 10, pixelOffset(), 4);
        put(file, 14, infoBytes, 4);
        if (infoBytes == 12) {
            put(file, 18, static_cast<std::uint32_t>(width), 2);
            put(file, 20, static_cast<std::uint32_t>(height), 2);
            put(file, 22, 1, 2);
            put(file, 24, static_cast<std::uint32_t>(bits), 2);
        } else {
            put(file, 18, static_cast<std::uint32_t>(width), 4);
            put(file, 22, static_cast<std::uint32_t>(height), 4);
            put(file, 26, 1, 2);
            put(file, 28, static_cast<std::uint32_t>(bits), 2);
        }
        if (infoBytes >= 40) {
            put(file, 30, compression, 4);
            put(file, 38, static_cast<std::uint32_t>(dotsPerMetre), 4);
            put(file, 42, static_cast<std::uint32_t>(dotsPerMetre) * 2, 4);
            put(file, 46, declaredColours, 4);
        }
        for (std::size_t i = 0; i < masks.size(); ++i) put(file, 54 + 4 * i, masks[i], 4);
        for (const std::uint32_t colour : palette)
            put(file, file.size(), colour, infoBytes == 12 ? 3 : 4);
        file.insert(file.end(), pixels.begin(), pixels.end());
        return file;
    }
};

inline Decoded read(const Bytes& file) {
    return decode(bmpCodec(), file);
}

inline std::size_t strideOf(const BmpFile& file) {
    return (static_cast<std::size_t>(file.width) * static_cast<std::size_t>(file.bits) + 31) / 32 *
           4;
}

// The definition: one pixel at a time, bit by bit, scaled in floating point.
inline Bytes model(const BmpFile& file) {
    const std::int32_t height = std::abs(file.height);
    Bytes bgra;
    for (std::int32_t y = 0; y < height; ++y) {
        const std::int32_t row = file.height < 0 ? y : height - 1 - y;
        for (std::int32_t x = 0; x < file.width; ++x) {
            const std::size_t start = static_cast<std::size_t>(row) * strideOf(file);
            std::uint32_t pixel = 0;
            if (file.bits < 8) {
                for (int bit = 0; bit < file.bits; ++bit) {
                    const auto at = static_cast<std::size_t>(x * file.bits + bit);
                    pixel = pixel << 1 | (file.pixels[start + at / 8] >> (7 - at % 8) & 1U);
                }
            } else {
                const auto count = static_cast<std::size_t>(file.bits / 8);
                pixel = get(file.pixels, start + static_cast<std::size_t>(x) * count,
                            static_cast<int>(count));
            }
            if (file.bits <= 8) {
                const std::uint32_t colour = pixel < file.palette.size() ? file.palette[pixel] : 0;
                put(bgra, bgra.size(), colour | 0xFF000000U, 4);
                continue;
            }
            std::vector<std::uint32_t> masks = file.masks;
            if (masks.empty() && file.bits == 16) masks = {0x7C00, 0x3E0, 0x1F};
            if (masks.empty()) masks = {0xFF0000, 0xFF00, 0xFF};
            std::array<std::uint8_t, 4> channels{0, 0, 0, 255};
            for (std::size_t c = 0; c < masks.size(); ++c) {
                if (masks[c] == 0) continue;
                const int low = std::countr_zero(masks[c]);
                const double largest = masks[c] >> low;
                channels[c] = static_cast<std::uint8_t>(
                    std::floor((pixel & masks[c]) / std::ldexp(1.0, low) * 255.0 / largest + 0.5));
            }
            bgra.insert(bgra.end(), {channels[2], channels[1], channels[0], channels[3]});
        }
    }
    return bgra;
}

inline void fill(BmpFile& file, Random& random) {
    file.pixels.resize(strideOf(file) * static_cast<std::size_t>(std::abs(file.height)));
    for (auto& byte : file.pixels) byte = static_cast<std::uint8_t>(random());
}

inline std::vector<std::uint32_t> randomPalette(Random& random, std::size_t count) {
    std::vector<std::uint32_t> palette(count);
    for (auto& colour : palette) colour = random() & 0xFFFFFF;
    return palette;
}

inline std::uint32_t randomMask(Random& random, int bits) {
    const auto low = below(random, static_cast<std::uint32_t>(bits));
    const auto length = 1 + below(random, static_cast<std::uint32_t>(bits) - low);
    return static_cast<std::uint32_t>(((std::uint64_t{1} << length) - 1) << low);
}

}  // namespace brushwork::platform::test::bmp
