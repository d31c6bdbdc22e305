#include "platform/codec_jpeg_exif.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace brushwork::platform {

namespace {

constexpr std::array<std::uint8_t, 6> exifSignature{'E', 'x', 'i', 'f', 0, 0};

// The TIFF part. Reading beyond its end gives zeros, which no field here takes for a value.
class TiffFields {
  public:
    explicit TiffFields(std::span<const std::uint8_t> bytes)
        : bytes_(bytes), bigEndian_(byte(0) == 'M') {}

    bool hasSignature() const {
        const std::uint8_t mark = bigEndian_ ? 'M' : 'I';
        return byte(0) == mark && byte(1) == mark && word(2) == 42;
    }
    std::uint32_t word(std::uint64_t at) const {
        const std::uint32_t first = byte(at);
        const std::uint32_t second = byte(at + 1);
        return bigEndian_ ? first << 8 | second : second << 8 | first;
    }
    std::uint32_t longWord(std::uint64_t at) const {
        return bigEndian_ ? word(at) << 16 | word(at + 2) : word(at + 2) << 16 | word(at);
    }
    // Of the first directory; the position of the entry, 0 if there is none of that tag and type.
    std::uint64_t entry(std::uint32_t tag, std::uint32_t type) const {
        const std::uint64_t directory = longWord(4);
        const std::uint32_t count = word(directory);
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::uint64_t at = directory + 2 + std::uint64_t{i} * 12;
            if (at >= bytes_.size()) break;
            if (word(at) == tag && word(at + 2) == type) return at;
        }
        return 0;
    }
    // 0 if missing or not usable.
    double rational(std::uint32_t tag) const {
        constexpr std::uint32_t rationalType = 5;
        const std::uint64_t at = entry(tag, rationalType);
        if (at == 0) return 0;
        const std::uint64_t value = longWord(at + 8);
        const std::uint32_t divisor = longWord(value + 4);
        return divisor == 0 ? 0 : static_cast<double>(longWord(value)) / divisor;
    }

  private:
    std::uint32_t byte(std::uint64_t at) const {
        return at < bytes_.size() ? bytes_[static_cast<std::size_t>(at)] : 0;
    }

    std::span<const std::uint8_t> bytes_;
    bool bigEndian_;
};

// 0 for an unknown unit; inches where none is told.
double unitsPerInch(const TiffFields& fields) {
    constexpr std::uint32_t unitTag = 0x0128;
    constexpr std::uint32_t shortType = 3;
    const std::uint64_t at = fields.entry(unitTag, shortType);
    if (at == 0) return 1;
    switch (fields.word(at + 8)) {
        case 2: return 1;
        case 3: return 2.54;
        default: return 0;
    }
}

}  // namespace

std::optional<ExifResolution> exifResolution(std::span<const std::uint8_t> segment) {
    if (segment.size() < exifSignature.size() ||
        !std::equal(exifSignature.begin(), exifSignature.end(), segment.begin())) {
        return std::nullopt;
    }
    const TiffFields fields(segment.subspan(exifSignature.size()));
    if (!fields.hasSignature()) return std::nullopt;
    const double unit = unitsPerInch(fields);
    const double x = fields.rational(0x011a) * unit;
    const double y = fields.rational(0x011b) * unit;
    if (!(x > 0) || !(y > 0)) return std::nullopt;
    return ExifResolution{static_cast<float>(x), static_cast<float>(y)};
}

}  // namespace brushwork::platform
