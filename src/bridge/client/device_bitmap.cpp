#include "bridge/client/device_bitmap.h"

#include <cstring>
#include <limits>

#include "bridge/client/image_to_bitmap.h"

namespace brushwork {

namespace {

using platform::GlobalBlock;
using platform::LockedBlock;
using platform::PixelFormat;

constexpr std::size_t fileHeaderBytes = 14;
constexpr std::size_t infoHeaderBytes = 40;
constexpr std::uint32_t bitFields = 3;
constexpr std::size_t maskBytes = 12;

// Where fields stand in the header.
enum Field : std::size_t {
    SizeField = 0,
    WidthField = 4,
    HeightField = 8,
    PlanesField = 12,
    BitCountField = 14,
    CompressionField = 16,
    UsedColoursField = 32,
};

void put16(std::uint8_t* bytes, std::uint32_t value) {
    bytes[0] = static_cast<std::uint8_t>(value);
    bytes[1] = static_cast<std::uint8_t>(value >> 8);
}
void put32(std::uint8_t* bytes, std::uint32_t value) {
    put16(bytes, value);
    put16(bytes + 2, value >> 16);
}
std::uint32_t get16(const std::uint8_t* bytes) {
    return static_cast<std::uint32_t>(bytes[0]) | static_cast<std::uint32_t>(bytes[1]) << 8;
}
std::uint32_t get32(const std::uint8_t* bytes) {
    return get16(bytes) | get16(bytes + 2) << 16;
}

// Room for header and pixels, all zero; none where that can't be had.
GlobalBlock roomFor(std::int32_t width, std::int32_t height, std::int32_t bitsPerPixel) {
    const std::size_t pixels = platform::paddedBitmapBytes(width, height, bitsPerPixel);
    if (pixels == 0 || pixels > std::numeric_limits<std::size_t>::max() - infoHeaderBytes)
        return {};
    return GlobalBlock::allocate(pixels + infoHeaderBytes);
}

void putHeader(std::uint8_t* header, std::int32_t width, std::int32_t height,
               std::uint32_t bitsPerPixel) {
    put32(header + SizeField, infoHeaderBytes);
    put32(header + WidthField, static_cast<std::uint32_t>(width));
    put32(header + HeightField, static_cast<std::uint32_t>(height));
    put16(header + PlanesField, 1);
    put16(header + BitCountField, bitsPerPixel);
}

// Rows of three bytes a pixel.
class PackedSink final : public platform::RowSink {
  public:
    PackedSink(std::uint8_t* pixels, std::int32_t width)
        : pixels_(pixels),
          width_(static_cast<std::size_t>(width)),
          stride_((width_ * 3 + 3) / 4 * 4) {}

    bool putRows(std::int32_t y, std::int32_t count, const std::uint8_t* bgra) override {
        for (const std::int32_t end = y + count; y < end; ++y) {
            std::uint8_t* to = pixels_ + stride_ * static_cast<std::size_t>(y);
            for (std::size_t x = 0; x < width_; ++x, to += 3, bgra += 4) std::memcpy(to, bgra, 3);
        }
        return true;
    }

  private:
    std::uint8_t* pixels_;
    std::size_t width_;
    std::size_t stride_;
};

// Bytes of headers and palette or masks; the header has been seen to be there.
std::uint64_t pixelPlace(const std::uint8_t* header) {
    const std::uint64_t size = get32(header + SizeField);
    if (get32(header + CompressionField) == bitFields) return size + maskBytes;
    const std::uint32_t depth = get16(header + BitCountField);
    std::uint64_t colours = get32(header + UsedColoursField);
    if (colours == 0 && depth <= 8) colours = std::uint64_t{1} << depth;
    return size + colours * 4;
}

}  // namespace

GlobalBlock deviceBitmapOf(Gdiplus::Bitmap& bitmap) {
    GlobalBlock block = roomFor(bitmap.width(), bitmap.height(), 24);
    const LockedBlock lock(block);
    if (lock.bytes().empty()) return {};
    std::uint8_t* const header = lock.bytes().data();
    putHeader(header, bitmap.width(), -bitmap.height(), 24);
    PackedSink sink(header + infoHeaderBytes, bitmap.width());
    if (!bitmap.readRows(PixelFormat::Argb32, sink)) return {};
    return block;
}

GlobalBlock deviceBitmapOf(ilImage& image) {
    // Straight is what leaves alpha as it lies.
    BitmapRows rows(image, {StoredAlpha::Straight, StoredOrder::Engine});
    if (!rows.isUsable()) return {};
    GlobalBlock block = roomFor(rows.width(), rows.height(), 32);
    const LockedBlock lock(block);
    if (lock.bytes().empty()) return {};
    std::uint8_t* const header = lock.bytes().data();
    putHeader(header, rows.width(), rows.height(), 32);
    if (!rows.read(0, rows.height(), header + infoHeaderBytes)) return {};
    return block;
}

GlobalBlock bitmapFileOf(const GlobalBlock& block) {
    const LockedBlock source(block);
    const auto bytes = source.bytes();
    if (bytes.size() < infoHeaderBytes || get32(bytes.data() + SizeField) < infoHeaderBytes)
        return {};
    const std::uint64_t place = pixelPlace(bytes.data());
    const std::uint64_t size = std::uint64_t{bytes.size()} + fileHeaderBytes;
    constexpr std::uint32_t largest = std::numeric_limits<std::uint32_t>::max();
    if (place >= bytes.size() || size > largest) return {};
    GlobalBlock file = GlobalBlock::allocate(static_cast<std::size_t>(size));
    const LockedBlock target(file);
    if (target.bytes().empty()) return {};
    std::uint8_t* const to = target.bytes().data();
    to[0] = 'B';
    to[1] = 'M';
    put32(to + 2, static_cast<std::uint32_t>(size));
    put32(to + 10, static_cast<std::uint32_t>(place + fileHeaderBytes));
    std::memcpy(to + fileHeaderBytes, bytes.data(), bytes.size());
    return file;
}

}  // namespace brushwork
