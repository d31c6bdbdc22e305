#include "platform/codec_tiff_samples.h"

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstring>

namespace brushwork::platform {

namespace {

constexpr std::uint32_t allOnes = 0xFFFFFFFFU;

// NaN fails the first comparison.
std::uint32_t spread(double value) {
    if (!(value > 0.0)) return 0;
    if (value >= 1.0) return allOnes;
    return static_cast<std::uint32_t>(value * static_cast<double>(allOnes) + 0.5);
}

double fromHalf(std::uint16_t half) {
    const int exponent = half >> 10 & 31;
    const int fraction = half & 0x3FF;
    if (exponent == 31 && fraction != 0) return std::nan("");
    const double size = exponent == 0    ? std::ldexp(fraction, -24)
                        : exponent == 31 ? HUGE_VAL
                                         : std::ldexp(fraction + 1024, exponent - 25);
    return (half & 0x8000) != 0 ? -size : size;
}

// Whole bytes a sample: T as it lies in memory, turned into 32 bits by `convert`.
template <typename T, typename Convert>
void unpackWhole(const std::uint8_t* row, std::uint64_t first, std::uint32_t count,
                 std::uint32_t* out, std::uint32_t stride, Convert convert) {
    const std::uint8_t* at = row + static_cast<std::size_t>(first) * sizeof(T);
    for (std::uint32_t i = 0; i < count; ++i, at += sizeof(T), out += stride) {
        T value;
        std::memcpy(&value, at, sizeof value);
        *out = convert(value);
    }
}

struct Triple {
    std::uint8_t bytes[3];
    std::uint32_t value() const {
        constexpr bool little = std::endian::native == std::endian::little;
        return static_cast<std::uint32_t>(bytes[little ? 2 : 0]) << 16 |
               static_cast<std::uint32_t>(bytes[1]) << 8 | bytes[little ? 0 : 2];
    }
};

// Any other width: a string of bits from the high end of each byte down.
void unpackBits(std::uint32_t bits, const std::uint8_t* row, std::uint64_t first,
                std::uint32_t count, std::uint32_t flip, std::uint32_t* out, std::uint32_t stride) {
    const std::uint64_t firstBit = first * bits;
    const std::uint8_t* at = row + static_cast<std::size_t>(firstBit / 8);
    std::uint64_t held = 0;  // its low `have` bits are still to be given out
    std::uint32_t have = 0;
    if (firstBit % 8 != 0) {
        held = *at++;
        have = 8 - static_cast<std::uint32_t>(firstBit % 8);
    }
    const std::uint64_t mask = (std::uint64_t{1} << bits) - 1;
    for (std::uint32_t i = 0; i < count; ++i, out += stride) {
        for (; have < bits; have += 8) held = held << 8 | *at++;
        have -= bits;
        *out = static_cast<std::uint32_t>(held >> have & mask) ^ flip;
    }
}

}  // namespace

bool tiffSamplesSupported(TiffSampleKind kind, std::uint32_t bits) {
    if (kind == TiffSampleKind::Float) return bits == 16 || bits == 32 || bits == 64;
    return (bits >= 1 && bits <= 32) || bits == 64;
}

std::uint64_t largestTiffSample(TiffSampleKind kind, std::uint32_t bits) {
    if (kind == TiffSampleKind::Float || bits >= 32) return allOnes;
    return (std::uint64_t{1} << bits) - 1;
}

void unpackTiffSamples(TiffSampleKind kind, std::uint32_t bits, const std::uint8_t* row,
                       std::uint64_t first, std::uint32_t count, std::uint32_t* out,
                       std::uint32_t stride) {
    if (kind == TiffSampleKind::Float) {
        if (bits == 16)
            unpackWhole<std::uint16_t>(row, first, count, out, stride,
                                       [](std::uint16_t v) { return spread(fromHalf(v)); });
        else if (bits == 32)
            unpackWhole<float>(row, first, count, out, stride, [](float v) { return spread(v); });
        else
            unpackWhole<double>(row, first, count, out, stride, spread);
        return;
    }
    // The lowest signed value becomes 0 when its highest bit is turned.
    const auto flip = kind == TiffSampleKind::Signed && bits <= 32 ? std::uint32_t{1} << (bits - 1)
                      : kind == TiffSampleKind::Signed             ? std::uint32_t{1} << 31
                                                                   : 0U;
    const auto turned = [flip](std::uint32_t v) { return v ^ flip; };
    switch (bits) {
        case 8: unpackWhole<std::uint8_t>(row, first, count, out, stride, turned); break;
        case 16: unpackWhole<std::uint16_t>(row, first, count, out, stride, turned); break;
        case 24:
            unpackWhole<Triple>(row, first, count, out, stride,
                                [&](const Triple& v) { return turned(v.value()); });
            break;
        case 32: unpackWhole<std::uint32_t>(row, first, count, out, stride, turned); break;
        case 64:
            unpackWhole<std::uint64_t>(row, first, count, out, stride, [&](std::uint64_t v) {
                return turned(static_cast<std::uint32_t>(v >> 32));
            });
            break;
        default: unpackBits(bits, row, first, count, flip, out, stride); break;
    }
}

}  // namespace brushwork::platform
