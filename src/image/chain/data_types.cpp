#include "image/chain/data_types.h"

#include <bit>
#include <initializer_list>
#include <limits>

namespace brushwork {
namespace {

template <class T>
constexpr DataTypeInfo infoOf(const char* name) {
    return {name, sizeof(T), static_cast<double>(std::numeric_limits<T>::max()),
            static_cast<double>(std::numeric_limits<T>::lowest())};
}

constexpr DataTypeInfo noType = {"", 0, 0.0, 0.0};
constexpr DataTypeInfo types[] = {
    {"bit", 0, 1.0, 0.0},          {"unsigned char", 1, 255.0, -128.0},
    infoOf<std::int8_t>("char"),   infoOf<std::uint16_t>("unsigned short"),
    infoOf<std::int16_t>("short"), infoOf<std::uint32_t>("unsigned long"),
    infoOf<std::int32_t>("long"),  infoOf<float>("float"),
    infoOf<double>("double"),
};

constexpr const char* modelNames[] = {
    "unspecified",
    "grey: minimum value white",
    "grey: minimum value black",
    "RGB",
    "color index",
    "RGBA",
    "HSV",
    "CMY",
    "CMYK",
    "BGR",
    "ABGR",
    "multi-spectral",
};

}  // namespace

const DataTypeInfo& dataTypeInfo(std::int32_t type) {
    if (type < TypeBit || type > TypeDouble) return noType;
    const auto bits = static_cast<std::uint32_t>(type);
    return std::has_single_bit(bits) ? types[std::countr_zero(bits)] : noType;
}

std::size_t bufferBytes(std::int32_t type, std::size_t count) {
    if (type == TypeBit) return count / 8 + (count % 8 != 0 ? 1 : 0);
    const std::size_t bytes = dataTypeInfo(type).bytes;
    if (bytes == 0) return 0;
    constexpr std::size_t most = std::numeric_limits<std::size_t>::max();
    return count > most / bytes ? most : count * bytes;
}

std::size_t blockBytes(std::int32_t type, std::int32_t x, std::int32_t y, std::int32_t z,
                       std::int32_t channels) {
    constexpr std::size_t most = std::numeric_limits<std::size_t>::max();
    std::size_t count = 1;
    bool tooMany = false;
    for (const std::int32_t size : {x, y, z, channels}) {
        if (size < 1) return 0;
        const auto factor = static_cast<std::size_t>(size);
        tooMany = tooMany || count > most / factor;
        if (!tooMany) count *= factor;
    }
    if (!tooMany) return bufferBytes(type, count);
    return type == TypeBit || dataTypeInfo(type).bytes != 0 ? most : 0;
}

const char* orderName(std::int32_t order) {
    switch (order) {
        case OrderInterleaved: return "interleaved";
        case OrderSequential: return "sequential";
        case OrderSeparate: return "separate";
        default: return "";
    }
}

ElementStrides elementStrides(std::int32_t order, std::int32_t width, std::int32_t rows,
                              std::int32_t channels) {
    const std::ptrdiff_t w = width;
    switch (order) {
        case OrderSequential: return {w, 1, w * channels};
        case OrderSeparate: return {w * rows, 1, w};
        default: return {1, channels, w * channels};
    }
}

const char* colorModelName(std::int32_t model) {
    return modelNames[model >= ColorGreyMinIsWhite && model <= ColorMultiSpectral ? model : 0];
}

std::int32_t colorModelChannels(std::int32_t model) {
    switch (model) {
        case ColorGreyMinIsWhite:
        case ColorGreyMinIsBlack:
        case ColorIndex: return 1;
        case ColorRGB:
        case ColorHSV:
        case ColorCMY:
        case ColorBGR:
        case ColorThreeChannel: return 3;
        case ColorRGBA:
        case ColorCMYK:
        case ColorABGR: return 4;
        default: return 0;
    }
}

ColorModel defaultColorModel(std::int32_t channels, bool fourAreMultiSpectral) {
    switch (channels) {
        case 1: return ColorGreyMinIsBlack;
        case 3: return ColorRGB;
        case 4: return fourAreMultiSpectral ? ColorMultiSpectral : ColorRGBA;
        default: return ColorMultiSpectral;
    }
}

}  // namespace brushwork
