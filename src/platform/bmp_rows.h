// Rows of a BMP file on their way to a sink: the conversion of one row, and the block in which
// converted rows are gathered.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "platform/bmp_header.h"
#include "platform/imaging.h"

namespace brushwork::platform {

// One field of a 16- or 32-bit pixel, scaled to 8 bits: the nearest value to v * 255 / largest.
class BmpField {
  public:
    BmpField() = default;
    // Without a mask every pixel gives `absent`.
    BmpField(std::uint32_t mask, std::uint8_t absent);

    [[nodiscard]] std::uint32_t of(std::uint32_t pixel) const {
        const std::uint32_t value = (pixel & mask_) >> shift_;
        return largest_ <= 255 ? table_[value] : scaled(value);
    }

  private:
    [[nodiscard]] std::uint32_t scaled(std::uint32_t value) const {
        return static_cast<std::uint32_t>((std::uint64_t{value} * 255 + largest_ / 2) / largest_);
    }

    std::uint32_t mask_ = 0;
    int shift_ = 0;
    std::uint32_t largest_ = 0;
    std::array<std::uint8_t, 256> table_{};
};

// Turns rows as a file holds them into blue, green, red, alpha.
class BmpRowConverter {
  public:
    // `bits` is the header's, or 8 where four-bit indices have been unpacked to a byte each. The
    // header must outlive the converter.
    BmpRowConverter(const BmpHeader& header, int bits);

    void convert(const std::uint8_t* packed, std::uint8_t* bgra) const;

  private:
    void convertIndices(const std::uint8_t* packed, std::uint8_t* bgra) const;
    void convertFields(const std::uint8_t* packed, std::uint8_t* bgra) const;

    const BmpHeader& header_;
    int bits_;
    std::size_t width_;
    bool fieldsAreBytes_;  // blue, green, red, then alpha or filling
    std::array<BmpField, 4> fields_;
};

// Takes rows in the order of the file and hands them to a sink in blocks.
class BmpRowBlock {
  public:
    BmpRowBlock(RowSink& sink, const BmpHeader& header);

    [[nodiscard]] bool allocate();
    // Where the next row goes; width * 4 bytes.
    [[nodiscard]] std::uint8_t* nextRow();
    // That row has been filled. False if the sink wants no more.
    [[nodiscard]] bool rowDone();

  private:
    void beginBlock();

    RowSink& sink_;
    std::int32_t height_;
    bool topDown_;
    std::size_t rowBytes_;
    std::int32_t capacity_;
    std::int32_t first_ = 0;  // row of the file at which the block begins
    std::int32_t count_ = 0;  // rows of this block
    std::int32_t filled_ = 0;
    std::unique_ptr<std::uint8_t[]> rows_;
};

}  // namespace brushwork::platform
