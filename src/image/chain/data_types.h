// What a channel is stored as, how channels are laid out, and what they mean.
#pragma once

#include <cstddef>
#include <cstdint>

namespace brushwork {

// A mask, so that a class can say which types it takes.
enum DataType : std::int32_t {
    TypeBit = 1,
    TypeUChar = 2,
    TypeChar = 4,
    TypeUShort = 8,
    TypeShort = 16,
    TypeULong = 32,
    TypeLong = 64,
    TypeFloat = 128,
    TypeDouble = 256,
    TypeAny = 511,  // no type yet, or any type
};
inline constexpr std::int32_t signedTypes = 0x1D4;

struct DataTypeInfo {
    const char* name;
    std::size_t bytes;  // of one channel value; 0 for bits, of which eight share a byte
    double maximum;
    double minimum;
};
// All zero, with an empty name, for a value that is no single type. The minimum of "unsigned char"
// is -128: default limits and fills derive from it.
[[nodiscard]] const DataTypeInfo& dataTypeInfo(std::int32_t type);
// Bytes of a buffer of `count` channel values; bits are rounded up to a byte. 0 for other types.
// What can't be addressed answers the largest size there is, which nobody can allocate.
[[nodiscard]] std::size_t bufferBytes(std::int32_t type, std::size_t count);
// The same for a block of that many values on each axis; a negative size counts as 0.
[[nodiscard]] std::size_t blockBytes(std::int32_t type, std::int32_t x, std::int32_t y,
                                     std::int32_t z, std::int32_t channels);

enum DimensionOrder : std::int32_t {
    OrderInterleaved = 1,  // the channels of a pixel side by side
    OrderSequential = 2,   // a row of each channel, row by row
    OrderSeparate = 4,     // a plane of each channel; a page holds one channel
    OrderAny = 7,          // the image's own
};
// "interleaved", "sequential", "separate"; empty otherwise.
[[nodiscard]] const char* orderName(std::int32_t order);

// Distances between neighbours, in channel values, of a block of rows of `width` pixels. For
// OrderSeparate `rows` tells the height of a plane.
struct ElementStrides {
    std::ptrdiff_t channel = 0;
    std::ptrdiff_t pixel = 0;
    std::ptrdiff_t row = 0;
};
[[nodiscard]] ElementStrides elementStrides(std::int32_t order, std::int32_t width,
                                            std::int32_t rows, std::int32_t channels);

enum ColorModel : std::int32_t {
    ColorGreyMinIsWhite = 1,
    ColorGreyMinIsBlack = 2,
    ColorRGB = 3,
    ColorIndex = 4,
    ColorRGBA = 5,
    ColorHSV = 6,
    ColorCMY = 7,
    ColorCMYK = 8,
    ColorBGR = 9,
    ColorABGR = 10,
    ColorMultiSpectral = 11,
    ColorThreeChannel = 12,  // three channels without a name of its own
};
// "grey: minimum value white", ...; "unspecified" for any other value.
[[nodiscard]] const char* colorModelName(std::int32_t model);
// Channels that a model implies; 0 for multi-spectral and unknown values, which take any count.
[[nodiscard]] std::int32_t colorModelChannels(std::int32_t model);
// What an image of that many channels is taken for. Four channels are multi-spectral on request.
[[nodiscard]] ColorModel defaultColorModel(std::int32_t channels,
                                           bool fourAreMultiSpectral = false);

}  // namespace brushwork
