// From the samples of a TIFF row, as they are stored, to 8-bit blue, green, red, alpha.
//
// Every step to 8 bits is rounded to the nearest level of the full range: sample * 255 / largest.
// Signed samples run from their lowest to their highest value, floating-point ones from 0 to 1.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace brushwork::platform {

enum class TiffSampleKind : std::uint8_t { Unsigned, Signed, Float };
enum class TiffColour : std::uint8_t { WhiteIsZero, BlackIsZero, Rgb, Palette, Cmyk, YCbCr };
enum class TiffAlpha : std::uint8_t { None, Straight, Premultiplied };

// The weights of the primaries in luma, and what the samples call black and white (pairs for
// Y, Cb, Cr).
struct TiffYcbcr {
    std::array<float, 3> luma{0.299F, 0.587F, 0.114F};
    std::array<float, 6> reference{0, 255, 128, 255, 128, 255};
};

struct TiffPixelFormat {
    TiffSampleKind kind = TiffSampleKind::Unsigned;
    std::uint32_t bits = 8;     // a sample
    std::uint32_t samples = 1;  // a pixel, with those that are passed over
    TiffColour colour = TiffColour::BlackIsZero;
    TiffAlpha alpha = TiffAlpha::None;
    std::uint32_t alphaSample = 0;                     // its place among the samples
    std::vector<std::array<std::uint8_t, 3>> palette;  // blue, green, red; 2^bits of them
    TiffYcbcr ycbcr;
};

// Colour samples of a pixel: 1, 3 or 4.
[[nodiscard]] std::uint32_t tiffColourSamples(TiffColour colour);

class TiffPixels {
  public:
    // A pixel with more samples than that is no picture's.
    static constexpr std::uint32_t mostSamples = 32;

    // Whether rows of this format can be converted.
    [[nodiscard]] static bool supports(const TiffPixelFormat& format);

    explicit TiffPixels(TiffPixelFormat format);

    [[nodiscard]] const TiffPixelFormat& format() const { return format_; }
    // False for the planes of extra samples that are passed over.
    [[nodiscard]] bool uses(std::uint32_t sample) const;

    // Converts the first `count` pixels of a row. `planes` has one pointer for interleaved samples,
    // else one for each sample (null where uses() is false). Samples are packed from the high bit
    // down; those of whole bytes stand in the machine's byte order.
    void convert(std::span<const std::uint8_t* const> planes, std::uint32_t count,
                 std::uint8_t* bgra);

  private:
    void gather(std::span<const std::uint8_t* const> planes, std::uint32_t first,
                std::uint32_t count);
    void levelAll(std::uint32_t count);
    [[nodiscard]] std::uint8_t level(std::uint32_t sample) const;
    void lookUp(std::uint32_t count, std::uint8_t* bgra) const;
    void colourise(const std::uint8_t* levels, std::uint32_t count, std::uint8_t* bgra) const;
    void fromYcbcr(const std::uint8_t* levels, std::uint32_t count, std::uint8_t* bgra) const;

    TiffPixelFormat format_;
    std::uint64_t largest_;             // value of a gathered sample
    std::vector<std::uint8_t> levels_;  // by sample, for up to 16 bits
    std::vector<std::uint32_t> gathered_;
    std::vector<std::uint8_t> levelled_;
};

}  // namespace brushwork::platform
