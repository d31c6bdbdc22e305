#include "platform/bmp_rows.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <new>

namespace brushwork::platform {

namespace {

// Pixels are moved as whole words.
static_assert(std::endian::native == std::endian::little);

constexpr std::uint32_t opaque = 0xFF000000U;
constexpr std::size_t blockBytes = std::size_t{128} << 10;

std::uint32_t load32(const std::uint8_t* from) {
    std::uint32_t value = 0;
    std::memcpy(&value, from, sizeof value);
    return value;
}

void store32(std::uint8_t* to, std::uint32_t value) {
    std::memcpy(to, &value, sizeof value);
}

// Four pixels a step: three words in, four words out.
void convertBgr(const std::uint8_t* packed, std::uint8_t* bgra, std::size_t width) {
    std::size_t x = 0;
    for (; x + 4 <= width; x += 4, packed += 12, bgra += 16) {
        const std::uint32_t a = load32(packed);
        const std::uint32_t b = load32(packed + 4);
        const std::uint32_t c = load32(packed + 8);
        store32(bgra, a | opaque);
        store32(bgra + 4, a >> 24 | b << 8 | opaque);
        store32(bgra + 8, b >> 16 | c << 16 | opaque);
        store32(bgra + 12, c >> 8 | opaque);
    }
    for (; x < width; ++x, packed += 3, bgra += 4) {
        store32(bgra,
                static_cast<std::uint32_t>(packed[0] | packed[1] << 8 | packed[2] << 16) | opaque);
    }
}

void convertFilled(const std::uint8_t* packed, std::uint8_t* bgra, std::size_t width) {
    for (std::size_t x = 0; x < width; ++x) store32(bgra + x * 4, load32(packed + x * 4) | opaque);
}

}  // namespace

BmpField::BmpField(std::uint32_t mask, std::uint8_t absent) : mask_(mask) {
    table_[0] = absent;
    if (mask == 0) return;
    shift_ = std::countr_zero(mask);
    largest_ = mask >> shift_;
    for (std::uint32_t value = 0; value <= std::min(largest_, 255U); ++value)
        table_[value] = static_cast<std::uint8_t>(scaled(value));
}

BmpRowConverter::BmpRowConverter(const BmpHeader& header, int bits)
    : header_(header),
      bits_(bits),
      width_(static_cast<std::size_t>(header.width)),
      fieldsAreBytes_(header.masks[0] == 0xFF0000 && header.masks[1] == 0xFF00 &&
                      header.masks[2] == 0xFF &&
                      (header.masks[3] == 0 || header.masks[3] == opaque)) {
    for (std::size_t i = 0; i < 4; ++i) fields_[i] = BmpField(header.masks[i], i == 3 ? 255 : 0);
}

void BmpRowConverter::convert(const std::uint8_t* packed, std::uint8_t* bgra) const {
    if (bits_ <= 8) return convertIndices(packed, bgra);
    if (bits_ == 24) return convertBgr(packed, bgra, width_);
    if (bits_ == 16 || !fieldsAreBytes_) return convertFields(packed, bgra);
    if (!header_.hasAlpha()) return convertFilled(packed, bgra, width_);
    std::memcpy(bgra, packed, width_ * 4);
}

void BmpRowConverter::convertIndices(const std::uint8_t* packed, std::uint8_t* bgra) const {
    const std::uint32_t* palette = header_.palette.data();
    if (bits_ == 8) {
        for (std::size_t x = 0; x < width_; ++x) store32(bgra + x * 4, palette[packed[x]]);
        return;
    }
    // The first pixel stands in the highest bits.
    const auto bits = static_cast<unsigned>(bits_);
    const unsigned mask = (1U << bits) - 1;
    for (std::size_t x = 0; x < width_; ++packed) {
        for (unsigned shift = 8; shift > 0 && x < width_; ++x) {
            shift -= bits;
            store32(bgra + x * 4, palette[*packed >> shift & mask]);
        }
    }
}

void BmpRowConverter::convertFields(const std::uint8_t* packed, std::uint8_t* bgra) const {
    const std::size_t pixelBytes = bits_ == 16 ? 2 : 4;
    for (std::size_t x = 0; x < width_; ++x, packed += pixelBytes) {
        const std::uint32_t pixel =
            bits_ == 16 ? static_cast<std::uint32_t>(packed[0] | packed[1] << 8) : load32(packed);
        store32(bgra + x * 4, fields_[3].of(pixel) << 24 | fields_[0].of(pixel) << 16 |
                                  fields_[1].of(pixel) << 8 | fields_[2].of(pixel));
    }
}

BmpRowBlock::BmpRowBlock(RowSink& sink, const BmpHeader& header)
    : sink_(sink),
      height_(header.height),
      topDown_(header.topDown),
      rowBytes_(static_cast<std::size_t>(header.width) * 4),
      capacity_(static_cast<std::int32_t>(
          std::clamp<std::size_t>(blockBytes / rowBytes_, 1, static_cast<std::size_t>(height_)))) {
    beginBlock();
}

bool BmpRowBlock::allocate() {
    rows_.reset(new (std::nothrow) std::uint8_t[static_cast<std::size_t>(capacity_) * rowBytes_]);
    return rows_ != nullptr;
}

void BmpRowBlock::beginBlock() {
    count_ = std::min(capacity_, height_ - first_);
    filled_ = 0;
}

std::uint8_t* BmpRowBlock::nextRow() {
    const std::int32_t place = topDown_ ? filled_ : count_ - 1 - filled_;
    return rows_.get() + static_cast<std::size_t>(place) * rowBytes_;
}

bool BmpRowBlock::rowDone() {
    if (++filled_ < count_) return true;
    const std::int32_t y = topDown_ ? first_ : height_ - first_ - count_;
    if (!sink_.putRows(y, count_, rows_.get())) return false;
    first_ += count_;
    beginBlock();
    return true;
}

}  // namespace brushwork::platform
