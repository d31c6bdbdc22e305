#include "platform/codec_tiff_pixels.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "platform/codec_tiff_samples.h"

namespace brushwork::platform {

namespace {

// Pixels converted at a time. A multiple of 8, so that every block begins on a whole byte.
constexpr std::uint32_t blockPixels = 256;
constexpr std::uint32_t mostTableBits = 16;

std::uint8_t nearestLevel(std::uint64_t sample, std::uint64_t largest) {
    return static_cast<std::uint8_t>((sample * 255 + largest / 2) / largest);
}

// 255 for white where an ink is 0; the black ink darkens all three.
std::uint8_t underInk(unsigned ink, unsigned black) {
    return static_cast<std::uint8_t>(((255 - ink) * (255 - black) + 127) / 255);
}

std::uint8_t clampLevel(float value) {
    return static_cast<std::uint8_t>(std::clamp(value + 0.5F, 0.0F, 255.0F));
}

void putGrey(std::uint8_t* bgra, std::uint8_t grey) {
    bgra[0] = bgra[1] = bgra[2] = grey;
}

}  // namespace

std::uint32_t tiffColourSamples(TiffColour colour) {
    switch (colour) {
        case TiffColour::Rgb:
        case TiffColour::YCbCr: return 3;
        case TiffColour::Cmyk: return 4;
        default: return 1;
    }
}

bool TiffPixels::supports(const TiffPixelFormat& format) {
    if (!tiffSamplesSupported(format.kind, format.bits)) return false;
    if (format.samples < tiffColourSamples(format.colour) || format.samples > mostSamples)
        return false;
    const bool whole = format.kind == TiffSampleKind::Unsigned;
    if (format.colour == TiffColour::YCbCr) return whole && format.bits == 8;
    if (format.colour == TiffColour::Palette)
        return whole && format.bits <= mostTableBits &&
               format.palette.size() == std::size_t{1} << format.bits;
    return true;
}

TiffPixels::TiffPixels(TiffPixelFormat format)
    : format_(std::move(format)), largest_(largestTiffSample(format_.kind, format_.bits)) {
    gathered_.resize(std::size_t{blockPixels} * format_.samples);
    levelled_.resize(gathered_.size());
    if (largest_ >> mostTableBits != 0) return;
    levels_.resize(static_cast<std::size_t>(largest_) + 1);
    for (std::size_t i = 0; i < levels_.size(); ++i) levels_[i] = nearestLevel(i, largest_);
}

bool TiffPixels::uses(std::uint32_t sample) const {
    return sample < tiffColourSamples(format_.colour) ||
           (format_.alpha != TiffAlpha::None && sample == format_.alphaSample);
}

void TiffPixels::convert(std::span<const std::uint8_t* const> planes, std::uint32_t count,
                         std::uint8_t* bgra) {
    const bool asStored = format_.kind == TiffSampleKind::Unsigned && format_.bits == 8 &&
                          planes.size() == 1 && format_.colour != TiffColour::Palette &&
                          format_.alpha != TiffAlpha::Premultiplied;
    if (asStored) return colourise(planes[0], count, bgra);
    for (std::uint32_t first = 0; first < count; first += blockPixels) {
        const std::uint32_t part = std::min(blockPixels, count - first);
        std::uint8_t* out = bgra + std::size_t{first} * 4;
        gather(planes, first, part);
        levelAll(part);
        if (format_.colour == TiffColour::Palette)
            lookUp(part, out);
        else
            colourise(levelled_.data(), part, out);
    }
}

void TiffPixels::gather(std::span<const std::uint8_t* const> planes, std::uint32_t first,
                        std::uint32_t count) {
    const std::uint32_t samples = format_.samples;
    if (planes.size() == 1) {
        unpackTiffSamples(format_.kind, format_.bits, planes[0], std::uint64_t{first} * samples,
                          count * samples, gathered_.data(), 1);
        return;
    }
    for (std::uint32_t i = 0; i < samples; ++i)
        if (uses(i))
            unpackTiffSamples(format_.kind, format_.bits, planes[i], first, count, &gathered_[i],
                              samples);
}

std::uint8_t TiffPixels::level(std::uint32_t sample) const {
    return levels_.empty() ? nearestLevel(sample, largest_) : levels_[sample];
}

// Colour over alpha is a ratio, so the width of the samples drops out of it, and what deep samples
// know of a faint colour survives.
void TiffPixels::levelAll(std::uint32_t count) {
    const std::uint32_t* in = gathered_.data();
    std::uint8_t* out = levelled_.data();
    if (format_.alpha != TiffAlpha::Premultiplied || format_.colour == TiffColour::Palette) {
        std::transform(in, in + std::size_t{count} * format_.samples, out,
                       [this](std::uint32_t sample) { return level(sample); });
        return;
    }
    const std::uint32_t colours = tiffColourSamples(format_.colour);
    for (std::uint32_t i = 0; i < count; ++i, in += format_.samples, out += format_.samples) {
        const std::uint32_t alpha = in[format_.alphaSample];
        for (std::uint32_t c = 0; c < colours; ++c)
            out[c] = alpha == 0 ? std::uint8_t{0} : nearestLevel(std::min(in[c], alpha), alpha);
        out[format_.alphaSample] = level(alpha);
    }
}

void TiffPixels::lookUp(std::uint32_t count, std::uint8_t* bgra) const {
    for (std::uint32_t i = 0; i < count; ++i, bgra += 4) {
        const std::size_t at = std::size_t{i} * format_.samples;
        const auto& entry = format_.palette[gathered_[at]];
        std::copy(entry.begin(), entry.end(), bgra);
        bgra[3] = format_.alpha == TiffAlpha::None ? std::uint8_t{255}
                                                   : levelled_[at + format_.alphaSample];
    }
}

void TiffPixels::colourise(const std::uint8_t* levels, std::uint32_t count,
                           std::uint8_t* bgra) const {
    const std::uint8_t* in = levels;
    const std::uint32_t step = format_.samples;
    std::uint8_t* out = bgra;
    std::uint8_t* const end = bgra + std::size_t{count} * 4;
    switch (format_.colour) {
        case TiffColour::WhiteIsZero:
            for (; out != end; out += 4, in += step)
                putGrey(out, static_cast<std::uint8_t>(255 - in[0]));
            break;
        case TiffColour::Palette:  // has a way of its own
        case TiffColour::BlackIsZero:
            for (; out != end; out += 4, in += step) putGrey(out, in[0]);
            break;
        case TiffColour::Rgb:
            for (; out != end; out += 4, in += step) {
                out[0] = in[2];
                out[1] = in[1];
                out[2] = in[0];
            }
            break;
        case TiffColour::Cmyk:
            for (; out != end; out += 4, in += step) {
                out[0] = underInk(in[2], in[3]);
                out[1] = underInk(in[1], in[3]);
                out[2] = underInk(in[0], in[3]);
            }
            break;
        case TiffColour::YCbCr: fromYcbcr(levels, count, bgra); break;
    }
    const bool opaque = format_.alpha == TiffAlpha::None;
    in = levels + (opaque ? 0 : format_.alphaSample);
    for (out = bgra; out != end; out += 4, in += step) out[3] = opaque ? std::uint8_t{255} : *in;
}

void TiffPixels::fromYcbcr(const std::uint8_t* levels, std::uint32_t count,
                           std::uint8_t* bgra) const {
    const auto& [black, white, cbZero, cbEnd, crZero, crEnd] = format_.ycbcr.reference;
    const auto& [red, green, blue] = format_.ycbcr.luma;
    const float yScale = 255.0F / (white - black);
    const float cbScale = 127.0F / (cbEnd - cbZero) * (2.0F - 2.0F * blue);
    const float crScale = 127.0F / (crEnd - crZero) * (2.0F - 2.0F * red);
    for (std::uint32_t i = 0; i < count; ++i, levels += format_.samples, bgra += 4) {
        const float y = (static_cast<float>(levels[0]) - black) * yScale;
        const float b = y + (static_cast<float>(levels[1]) - cbZero) * cbScale;
        const float r = y + (static_cast<float>(levels[2]) - crZero) * crScale;
        bgra[0] = clampLevel(b);
        bgra[1] = clampLevel((y - blue * b - red * r) / green);
        bgra[2] = clampLevel(r);
    }
}

}  // namespace brushwork::platform
