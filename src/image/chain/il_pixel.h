// ilPixel: the value of one pixel, of any type and up to 32 bytes of channels.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "image/chain/data_types.h"

namespace brushwork {

// A value. Channels travel as double. An integer store truncates toward zero; what the type can't
// hold becomes its nearest bound, not-a-number becomes 0.
class ilPixel {
  public:
    static constexpr std::size_t capacity = 32;  // bytes

    // Four channels of unsigned char, all zero.
    ilPixel() = default;
    // All channels zero. A count that doesn't fit the capacity is cut to what does.
    ilPixel(std::int32_t type, std::int32_t channels);
    ilPixel(std::int32_t type, std::int32_t channels, const void* data);
    // No type yet, no channels.
    [[nodiscard]] static ilPixel untyped() { return ilPixel(TypeAny, 0); }

    [[nodiscard]] std::int32_t type() const { return type_; }
    [[nodiscard]] std::int32_t channels() const { return channels_; }
    [[nodiscard]] const std::uint8_t* data() const { return data_.data(); }
    [[nodiscard]] std::uint8_t* data() { return data_.data(); }

    // The index is brought into 0 to channels - 1; without channels 0.0.
    [[nodiscard]] double channel(std::int32_t index) const;
    // Storing beyond the count raises it and gives an untyped pixel the type double. False, with
    // nothing changed, for an index that is negative or doesn't fit the capacity.
    bool setChannel(std::int32_t index, double value);

    // The same values in another type. Channel i of the result is channel list[i], or i without a
    // list; a count of 0 keeps this pixel's.
    [[nodiscard]] ilPixel converted(std::int32_t type, std::int32_t channels = 0,
                                    const std::int32_t* list = nullptr) const;

    // Type, count and the bytes of the channels agree.
    friend bool operator==(const ilPixel& a, const ilPixel& b);

  private:
    std::array<std::uint8_t, capacity> data_{};
    std::int32_t channels_ = 4;
    std::int32_t type_ = TypeUChar;
};

}  // namespace brushwork
