// Pixels of any type and order, one value at a time through double: what the image classes are
// compared with.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "brushwork/il_tile.h"
#include "image/chain/data_types.h"

namespace brushwork::test {

inline constexpr std::int32_t allTypes[] = {TypeBit,   TypeUChar, TypeChar,  TypeUShort, TypeShort,
                                            TypeULong, TypeLong,  TypeFloat, TypeDouble};
inline constexpr std::int32_t allOrders[] = {OrderInterleaved, OrderSequential, OrderSeparate};

class NaivePixels {
  public:
    // Guard bytes stand behind the pixels.
    NaivePixels(const ilTile& frame, std::int32_t type, std::int32_t order, std::int32_t channels)
        : frame_(frame), type_(type), order_(order), channels_(channels) {
        const std::size_t values = count();
        bytes_.assign((type == TypeBit ? (values + 7) / 8 : values * valueBytes()) + 16, 0xA5);
    }
    [[nodiscard]] std::uint8_t* data() { return bytes_.data(); }
    [[nodiscard]] const std::vector<std::uint8_t>& bytes() const { return bytes_; }
    [[nodiscard]] const ilTile& frame() const { return frame_; }
    [[nodiscard]] std::int32_t channels() const { return channels_; }
    [[nodiscard]] std::int32_t type() const { return type_; }

    [[nodiscard]] double get(std::int32_t x, std::int32_t y, std::int32_t z, std::int32_t c) const {
        const std::size_t n = place(x, y, z, c);
        switch (type_) {
            case TypeBit: return (bytes_[n / 8] >> (7 - n % 8)) & 1;
            case TypeUChar: return load<std::uint8_t>(n);
            case TypeChar: return load<std::int8_t>(n);
            case TypeUShort: return load<std::uint16_t>(n);
            case TypeShort: return load<std::int16_t>(n);
            case TypeULong: return load<std::uint32_t>(n);
            case TypeLong: return load<std::int32_t>(n);
            case TypeFloat: return static_cast<double>(load<float>(n));
            default: return load<double>(n);
        }
    }
    void set(std::int32_t x, std::int32_t y, std::int32_t z, std::int32_t c, double value) {
        const std::size_t n = place(x, y, z, c);
        switch (type_) {
            case TypeBit: {
                const auto mask = static_cast<std::uint8_t>(0x80 >> (n % 8));
                const bool on = whole(value, 0, 1) != 0;
                bytes_[n / 8] =
                    static_cast<std::uint8_t>(on ? bytes_[n / 8] | mask : bytes_[n / 8] & ~mask);
                break;
            }
            case TypeUChar: store(n, static_cast<std::uint8_t>(whole(value, 0, 255))); break;
            case TypeChar: store(n, static_cast<std::int8_t>(whole(value, -128, 127))); break;
            case TypeUShort: store(n, static_cast<std::uint16_t>(whole(value, 0, 65535))); break;
            case TypeShort: store(n, static_cast<std::int16_t>(whole(value, -32768, 32767))); break;
            case TypeULong:
                store(n, static_cast<std::uint32_t>(whole(value, 0, 4294967295.0)));
                break;
            case TypeLong:
                store(n, static_cast<std::int32_t>(whole(value, -2147483648.0, 2147483647.0)));
                break;
            case TypeFloat: store(n, narrowed(value)); break;
            default: store(n, value); break;
        }
    }
    // Bit for bit, between equal types.
    void copyFrom(const NaivePixels& other, std::size_t from, std::size_t to) {
        if (type_ == TypeBit) return;
        std::memcpy(bytes_.data() + to * valueBytes(), other.bytes_.data() + from * valueBytes(),
                    valueBytes());
    }
    [[nodiscard]] std::size_t place(std::int32_t x, std::int32_t y, std::int32_t z,
                                    std::int32_t c) const {
        const auto at = [](std::int32_t v) { return static_cast<std::size_t>(v); };
        x -= frame_.x;
        y -= frame_.y;
        z -= frame_.z;
        const std::size_t w = at(frame_.nx), h = at(frame_.ny), n = at(channels_);
        switch (order_) {
            case OrderInterleaved: return ((at(z) * h + at(y)) * w + at(x)) * n + at(c);
            case OrderSequential: return ((at(z) * h + at(y)) * n + at(c)) * w + at(x);
            default: return ((at(z) * n + at(c)) * h + at(y)) * w + at(x);
        }
    }
    // Bytes at random; floating values by half from a list of awkward ones.
    void randomize(std::mt19937& random) {
        for (std::size_t n = 0; n + 16 < bytes_.size(); ++n)
            bytes_[n] = static_cast<std::uint8_t>(random());
        if (type_ != TypeFloat && type_ != TypeDouble) return;
        constexpr double infinity = std::numeric_limits<double>::infinity();
        const double awkward[] = {
            -0.5,         0.999,         1.0,
            127.5,        -128.9,        255.5,
            256.0,        65535.5,       2147483647.5,
            4294967295.9, -2147483649.0, 1e30,
            -1e30,        1e300,         -1e300,
            infinity,     -infinity,     std::numeric_limits<double>::quiet_NaN()};
        std::uniform_real_distribution<double> usual(-300.0, 70000.0);
        for (std::size_t n = 0; n < count(); ++n) {
            const double value =
                random() % 2 ? awkward[random() % std::size(awkward)] : usual(random);
            if (type_ == TypeFloat)
                store(n, narrowed(value));
            else
                store(n, value);
        }
    }

  private:
    [[nodiscard]] std::size_t count() const {
        return static_cast<std::size_t>(frame_.nx) * static_cast<std::size_t>(frame_.ny) *
               static_cast<std::size_t>(frame_.nz) * static_cast<std::size_t>(channels_);
    }
    [[nodiscard]] std::size_t valueBytes() const {
        switch (type_) {
            case TypeUShort:
            case TypeShort: return 2;
            case TypeULong:
            case TypeLong:
            case TypeFloat: return 4;
            case TypeDouble: return 8;
            default: return 1;
        }
    }
    template <class T>
    [[nodiscard]] T load(std::size_t n) const {
        T value;
        std::memcpy(&value, bytes_.data() + n * sizeof(T), sizeof(T));
        return value;
    }
    template <class T>
    void store(std::size_t n, T value) {
        std::memcpy(bytes_.data() + n * sizeof(T), &value, sizeof(T));
    }
    static double whole(double value, double least, double most) {
        return std::isnan(value) ? 0.0 : std::trunc(std::min(std::max(value, least), most));
    }
    static float narrowed(double value) {
        constexpr double most = std::numeric_limits<float>::max();
        if (!std::isfinite(value)) return static_cast<float>(value);
        return static_cast<float>(std::min(std::max(value, -most), most));
    }

    ilTile frame_;
    std::int32_t type_, order_, channels_;
    std::vector<std::uint8_t> bytes_;
};

// A box whose corner lies within `reach` of 0 and whose sides are 1 to `side`.
inline ilTile randomBox(std::mt19937& random, std::int32_t reach, std::int32_t side) {
    const auto corner = [&] {
        return static_cast<std::int32_t>(random() % static_cast<std::uint32_t>(2 * reach + 1)) -
               reach;
    };
    const auto extent = [&] {
        return 1 + static_cast<std::int32_t>(random() % static_cast<std::uint32_t>(side));
    };
    return {corner(), corner(), corner() / 4, extent(), extent(), 1 + extent() / 4};
}

// Calls f(x, y, z) for each pixel of a box.
template <class F>
void forEachPixel(const ilTile& box, F&& f) {
    for (std::int32_t z = box.z; z < box.endZ(); ++z)
        for (std::int32_t y = box.y; y < box.endY(); ++y)
            for (std::int32_t x = box.x; x < box.endX(); ++x) f(x, y, z);
}

inline bool isInside(const ilTile& box, std::int32_t x, std::int32_t y, std::int32_t z) {
    return x >= box.x && x < box.endX() && y >= box.y && y < box.endY() && z >= box.z &&
           z < box.endZ();
}

}  // namespace brushwork::test
