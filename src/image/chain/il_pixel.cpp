#include "image/chain/il_pixel.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace brushwork {
namespace {

template <class T>
double load(const std::uint8_t* data, std::size_t index) {
    T value;
    std::memcpy(&value, data + index * sizeof(T), sizeof(T));
    return static_cast<double>(value);
}

template <class T>
void store(std::uint8_t* data, std::size_t index, T value) {
    std::memcpy(data + index * sizeof(T), &value, sizeof(T));
}

std::uint8_t bitMask(std::size_t index) {
    return static_cast<std::uint8_t>(0x80U >> (index % 8));
}

// The type's reported limits bound the value. So -128 to -1 are let through to an unsigned char,
// whose minimum is -128, and are stored as their low byte.
std::int64_t toInteger(const DataTypeInfo& info, double value) {
    if (std::isnan(value)) return 0;
    return static_cast<std::int64_t>(std::clamp(value, info.minimum, info.maximum));
}

float toFloat(double value) {
    if (!std::isfinite(value)) return static_cast<float>(value);
    constexpr double most = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(value, -most, most));
}

void storeBit(std::uint8_t* data, std::size_t index, bool value) {
    std::uint8_t& byte = data[index / 8];
    const std::uint8_t mask = bitMask(index);
    byte = static_cast<std::uint8_t>(value ? byte | mask : byte & ~mask);
}

std::int32_t capacityOf(std::int32_t type) {
    if (type == TypeBit) return static_cast<std::int32_t>(ilPixel::capacity * 8);
    const std::size_t bytes = dataTypeInfo(type).bytes;
    return bytes == 0 ? 0 : static_cast<std::int32_t>(ilPixel::capacity / bytes);
}

}  // namespace

ilPixel::ilPixel(std::int32_t type, std::int32_t channels)
    : channels_(std::clamp(channels, 0, capacityOf(type))), type_(type) {}

ilPixel::ilPixel(std::int32_t type, std::int32_t channels, const void* data)
    : ilPixel(type, channels) {
    const auto count = static_cast<std::size_t>(channels_);
    if (count == 0 || !data) return;
    std::memcpy(data_.data(), data, bufferBytes(type_, count));
    if (type_ != TypeBit) return;
    // What follows the last bit in its byte is no part of the value.
    for (std::size_t i = count; i % 8 != 0; ++i) storeBit(data_.data(), i, false);
}

double ilPixel::channel(std::int32_t index) const {
    if (channels_ < 1) return 0.0;
    const auto i = static_cast<std::size_t>(std::clamp(index, 0, channels_ - 1));
    const std::uint8_t* const data = data_.data();
    switch (type_) {
        case TypeBit: return (data[i / 8] & bitMask(i)) != 0 ? 1.0 : 0.0;
        case TypeUChar: return data[i];
        case TypeChar: return load<std::int8_t>(data, i);
        case TypeUShort: return load<std::uint16_t>(data, i);
        case TypeShort: return load<std::int16_t>(data, i);
        case TypeULong: return load<std::uint32_t>(data, i);
        case TypeLong: return load<std::int32_t>(data, i);
        case TypeFloat: return load<float>(data, i);
        case TypeDouble: return load<double>(data, i);
        default: return 0.0;
    }
}

bool ilPixel::setChannel(std::int32_t index, double value) {
    const std::int32_t type = type_ == TypeAny ? std::int32_t{TypeDouble} : type_;
    if (index < 0 || index >= capacityOf(type)) return false;
    type_ = type;
    channels_ = std::max(channels_, index + 1);
    const auto i = static_cast<std::size_t>(index);
    std::uint8_t* const data = data_.data();
    if (type == TypeFloat) {
        store(data, i, toFloat(value));
        return true;
    }
    if (type == TypeDouble) {
        store(data, i, value);
        return true;
    }
    const DataTypeInfo& info = dataTypeInfo(type);
    const std::int64_t whole = toInteger(info, value);
    switch (info.bytes) {
        case 0: storeBit(data, i, whole != 0); break;
        case 1: store(data, i, static_cast<std::uint8_t>(whole)); break;
        case 2: store(data, i, static_cast<std::uint16_t>(whole)); break;
        default: store(data, i, static_cast<std::uint32_t>(whole)); break;
    }
    return true;
}

ilPixel ilPixel::converted(std::int32_t type, std::int32_t channels,
                           const std::int32_t* list) const {
    ilPixel result(type, channels > 0 ? channels : channels_);
    for (std::int32_t i = 0; i < result.channels_; ++i) {
        result.setChannel(i, channel(list ? list[i] : i));
    }
    return result;
}

bool operator==(const ilPixel& a, const ilPixel& b) {
    if (a.type_ != b.type_ || a.channels_ != b.channels_) return false;
    const std::size_t bytes = bufferBytes(a.type_, static_cast<std::size_t>(a.channels_));
    return std::equal(a.data_.begin(), a.data_.begin() + static_cast<std::ptrdiff_t>(bytes),
                      b.data_.begin());
}

}  // namespace brushwork
