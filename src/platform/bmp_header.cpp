#include "platform/bmp_header.h"

#include <algorithm>
#include <bit>

namespace brushwork::platform {

namespace {

constexpr std::size_t coreHeaderBytes = 12;
constexpr std::size_t masksAt = 54;  // inside a long header or right behind one of 40 bytes
constexpr std::size_t largestHeaders = bmpFileHeaderBytes + 124;

enum Compression : std::uint32_t {
    plain = 0,
    runLength8 = 1,
    runLength4 = 2,
    bitFields = 3,
    runLength24 = 4,  // with the 64-byte header; elsewhere a wrapped JPEG
    alphaBitFields = 6,
};

// The headers as they stand in the file; what the file doesn't have is zero.
class RawHeaders {
  public:
    explicit RawHeaders(ByteSource& source) {
        held_ = source.readAt(0, bytes_.data(), bytes_.size());
        if (held_ >= bmpFileHeaderBytes + 4) infoBytes_ = u32(bmpFileHeaderBytes);
        // Beyond a short header stands something else, except for the fields behind 40 bytes.
        std::size_t known = std::min<std::size_t>(held_, bmpFileHeaderBytes + infoBytes_);
        if (infoBytes_ == 40) known = held_;
        std::fill(bytes_.begin() + static_cast<std::ptrdiff_t>(known), bytes_.end(),
                  std::uint8_t{0});
    }

    std::uint32_t u16(std::size_t at) const {
        return static_cast<std::uint32_t>(bytes_[at] | bytes_[at + 1] << 8);
    }
    std::uint32_t u32(std::size_t at) const { return u16(at) | u16(at + 2) << 16; }
    std::int32_t i32(std::size_t at) const { return static_cast<std::int32_t>(u32(at)); }

    std::size_t infoBytes() const { return infoBytes_; }
    bool isCore() const { return infoBytes_ == coreHeaderBytes; }
    bool holds(std::size_t count) const { return held_ >= count; }

    bool areWhole() const {
        constexpr std::array<std::size_t, 8> sizes{12, 16, 40, 52, 56, 64, 108, 124};
        return u16(0) == 0x4D42 &&
               std::find(sizes.begin(), sizes.end(), infoBytes_) != sizes.end() &&
               holds(bmpFileHeaderBytes + infoBytes_);
    }

  private:
    std::array<std::uint8_t, largestHeaders> bytes_{};
    std::size_t held_ = 0;
    std::size_t infoBytes_ = 0;
};

bool takeSize(const RawHeaders& raw, BmpHeader& header) {
    std::int64_t width = raw.i32(18);
    std::int64_t height = raw.i32(22);
    if (raw.isCore()) {
        width = raw.u16(18);
        height = raw.u16(20);
    }
    header.topDown = height < 0;
    height = header.topDown ? -height : height;
    if (width < 1 || width > maxBmpWidth || height < 1 || height > INT32_MAX) return false;
    header.width = static_cast<std::int32_t>(width);
    header.height = static_cast<std::int32_t>(height);
    return true;
}

bool isContiguous(std::uint32_t mask) {
    if (mask == 0) return true;
    const std::uint32_t low = mask >> std::countr_zero(mask);
    return (low & (low + 1)) == 0;
}

bool takeMasks(const RawHeaders& raw, bool withAlpha, BmpHeader& header) {
    if (header.bits != 16 && header.bits != 32) return false;
    if (!raw.holds(masksAt + (withAlpha ? 16 : 12))) return false;
    const std::uint32_t pixelMask = header.bits == 16 ? 0xFFFF : 0xFFFFFFFF;
    for (std::size_t i = 0; i < (withAlpha ? 4U : 3U); ++i) {
        header.masks[i] = raw.u32(masksAt + 4 * i);
        if (!isContiguous(header.masks[i]) || (header.masks[i] & ~pixelMask) != 0) return false;
    }
    return (header.masks[0] | header.masks[1] | header.masks[2]) != 0;
}

// Sets `headersEnd` to where the palette begins.
bool takeLayout(const RawHeaders& raw, BmpHeader& header, std::size_t& headersEnd) {
    const std::size_t planesAt = raw.isCore() ? 22 : 26;
    header.bits = static_cast<int>(raw.u16(planesAt + 2));
    constexpr std::array<int, 7> depths{1, 2, 4, 8, 16, 24, 32};
    if (raw.u16(planesAt) != 1 ||
        std::find(depths.begin(), depths.end(), header.bits) == depths.end())
        return false;
    headersEnd = bmpFileHeaderBytes + raw.infoBytes();

    const std::uint32_t compression = raw.isCore() ? plain : raw.u32(30);
    if (compression == plain) {
        if (header.bits == 16) header.masks = {0x7C00, 0x03E0, 0x001F, 0};
        if (header.bits == 32) header.masks = {0xFF0000, 0x00FF00, 0x0000FF, 0};
        return true;
    }
    const bool secondFamily = raw.infoBytes() == 64;
    if ((compression == bitFields || compression == alphaBitFields) && !secondFamily) {
        const bool withAlpha =
            raw.infoBytes() == 40 ? compression == alphaBitFields : raw.infoBytes() >= 56;
        headersEnd = std::max(headersEnd, masksAt + (withAlpha ? 16 : 12));
        return takeMasks(raw, withAlpha, header);
    }
    if (header.topDown) return false;
    if (compression == runLength8) header.packing = BmpPacking::RunLength8;
    if (compression == runLength4) header.packing = BmpPacking::RunLength4;
    if (compression == runLength24 && secondFamily) header.packing = BmpPacking::RunLength24;
    switch (header.packing) {
        case BmpPacking::RunLength4: return header.bits == 4;
        case BmpPacking::RunLength8: return header.bits == 8;
        case BmpPacking::RunLength24: return header.bits == 24;
        case BmpPacking::Plain: break;
    }
    return false;
}

bool takePalette(ByteSource& source, std::size_t at, std::size_t entryBytes, std::size_t count,
                 BmpHeader& header) {
    std::array<std::uint8_t, 256 * 4> bytes{};
    if (source.readAt(at, bytes.data(), count * entryBytes) != count * entryBytes) return false;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t* entry = bytes.data() + i * entryBytes;
        header.palette[i] = 0xFF000000U | static_cast<std::uint32_t>(entry[2]) << 16 |
                            static_cast<std::uint32_t>(entry[1]) << 8 | entry[0];
    }
    return true;
}

// The pixels begin where the file header says, unless that lies inside the headers (0 is met in the
// wild): then they follow the palette. A palette never reaches into the pixels.
bool takeColours(ByteSource& source, const RawHeaders& raw, std::size_t headersEnd,
                 BmpHeader& header) {
    const std::size_t entryBytes = raw.isCore() ? 3 : 4;
    const std::size_t useful = header.bits <= 8 ? std::size_t{1} << header.bits : 0;
    std::uint64_t declared = raw.isCore() ? useful : raw.u32(46);
    if (declared == 0) declared = useful;

    header.pixelOffset = raw.u32(10);
    if (header.pixelOffset < headersEnd) header.pixelOffset = headersEnd + declared * entryBytes;
    const std::uint64_t room = (header.pixelOffset - headersEnd) / entryBytes;

    header.palette.fill(0xFF000000U);
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>({declared, useful, room}));
    return takePalette(source, headersEnd, entryBytes, count, header);
}

float dotsPerInch(std::int32_t dotsPerMetre) {
    if (dotsPerMetre <= 0) return defaultResolution;
    return static_cast<float>(dotsPerMetre * 0.0254);
}

}  // namespace

bool BmpHeader::isGrey() const {
    if (bits > 8) return false;
    return std::all_of(palette.begin(), palette.end(), [](std::uint32_t colour) {
        return (colour & 0xFF) * 0x010101U == (colour & 0xFFFFFF);
    });
}

std::size_t BmpHeader::rowBytes() const {
    return static_cast<std::size_t>(
        (static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(bits) + 7) / 8);
}

bool readBmpHeader(ByteSource& source, BmpHeader& header) {
    const RawHeaders raw(source);
    std::size_t headersEnd = 0;
    if (!raw.areWhole() || !takeSize(raw, header) || !takeLayout(raw, header, headersEnd) ||
        !takeColours(source, raw, headersEnd, header))
        return false;
    if (!raw.isCore()) {
        header.xResolution = dotsPerInch(raw.i32(38));
        header.yResolution = dotsPerInch(raw.i32(42));
    }
    return true;
}

}  // namespace brushwork::platform
