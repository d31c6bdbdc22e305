#include "platform/bmp_write.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "platform/bmp_header.h"

namespace brushwork::platform {

namespace {

constexpr std::size_t plainHeaderBytes = 40;
constexpr std::size_t alphaHeaderBytes = 108;
constexpr std::size_t blockBytes = std::size_t{128} << 10;

enum class Depth { Opaque24, Alpha32 };
enum class Outcome { Done, NeedsAlpha, SourceFailed, TargetFailed, OutOfMemory };

struct Layout {
    Layout(const EncodeRequest& request, Depth kind)
        : depth(kind),
          infoBytes(kind == Depth::Opaque24 ? plainHeaderBytes : alphaHeaderBytes),
          pixelBytes(kind == Depth::Opaque24 ? 3 : 4),
          stride((static_cast<std::uint64_t>(request.width) * pixelBytes + 3) / 4 * 4),
          dataBytes(stride * static_cast<std::uint64_t>(request.height)) {}

    [[nodiscard]] std::size_t headerBytes() const { return bmpFileHeaderBytes + infoBytes; }
    // Width and height are below 2^31, so no product here passes 2^64.
    [[nodiscard]] bool fits() const { return dataBytes <= UINT32_MAX - headerBytes(); }

    Depth depth;
    std::size_t infoBytes;
    std::size_t pixelBytes;
    std::uint64_t stride;
    std::uint64_t dataBytes;
};

class HeaderBytes {
  public:
    void u16(std::size_t at, std::uint32_t value) {
        bytes_[at] = static_cast<std::uint8_t>(value);
        bytes_[at + 1] = static_cast<std::uint8_t>(value >> 8);
    }
    void u32(std::size_t at, std::uint64_t value) {
        u16(at, static_cast<std::uint32_t>(value & 0xFFFF));
        u16(at + 2, static_cast<std::uint32_t>(value >> 16 & 0xFFFF));
    }
    [[nodiscard]] const std::uint8_t* data() const { return bytes_.data(); }

  private:
    std::array<std::uint8_t, bmpFileHeaderBytes + alphaHeaderBytes> bytes_{};
};

std::uint32_t dotsPerMetre(float dotsPerInch) {
    const double dots = std::round(static_cast<double>(dotsPerInch) / 0.0254);
    if (!(dots > 0.0)) return 0;
    return static_cast<std::uint32_t>(std::min<double>(dots, INT32_MAX));
}

bool writeHeader(const EncodeRequest& request, const Layout& layout, ByteTarget& target) {
    HeaderBytes header;
    header.u16(0, 0x4D42);
    header.u32(2, layout.headerBytes() + layout.dataBytes);
    header.u32(10, layout.headerBytes());
    header.u32(14, layout.infoBytes);
    header.u32(18, static_cast<std::uint32_t>(request.width));
    header.u32(22, static_cast<std::uint32_t>(request.height));
    header.u16(26, 1);
    header.u16(28, static_cast<std::uint32_t>(layout.pixelBytes * 8));
    header.u32(34, layout.dataBytes);
    header.u32(38, dotsPerMetre(request.xResolution));
    header.u32(42, dotsPerMetre(request.yResolution));
    if (layout.depth == Depth::Alpha32) {
        constexpr std::uint32_t bitFields = 3;
        constexpr std::uint32_t sRgb = 0x73524742;
        header.u32(30, bitFields);
        header.u32(54, 0x00FF0000);
        header.u32(58, 0x0000FF00);
        header.u32(62, 0x000000FF);
        header.u32(66, 0xFF000000);
        header.u32(70, sRgb);
    }
    return target.writeAt(0, header.data(), layout.headerBytes());
}

// Drops the alpha of a row. False if it isn't opaque throughout.
bool packOpaque(const std::uint8_t* bgra, std::size_t width, std::uint8_t* bgr) {
    unsigned alpha = 255;
    for (std::size_t x = 0; x < width; ++x, bgra += 4, bgr += 3) {
        bgr[0] = bgra[0];
        bgr[1] = bgra[1];
        bgr[2] = bgra[2];
        alpha &= bgra[3];
    }
    return alpha == 255;
}

// Rows stand in the file from the picture's last to its first.
Outcome writeRows(const EncodeRequest& request, const Layout& layout, ByteTarget& target) {
    const auto stride = static_cast<std::size_t>(layout.stride);
    const auto width = static_cast<std::size_t>(request.width);
    const std::size_t blockRows =
        std::clamp<std::size_t>(blockBytes / stride, 1, static_cast<std::size_t>(request.height));
    const std::unique_ptr<std::uint8_t[]> block(new (std::nothrow)
                                                    std::uint8_t[blockRows * stride]());
    const std::unique_ptr<std::uint8_t[]> row(new (std::nothrow) std::uint8_t[width * 4]);
    if (!block || !row) return Outcome::OutOfMemory;

    std::uint64_t offset = layout.headerBytes();
    std::size_t filled = 0;
    for (std::int32_t y = request.height - 1; y >= 0; --y) {
        std::uint8_t* out = block.get() + filled * stride;
        if (layout.depth == Depth::Alpha32) {
            if (!request.source->getRow(y, out)) return Outcome::SourceFailed;
        } else {
            if (!request.source->getRow(y, row.get())) return Outcome::SourceFailed;
            if (!packOpaque(row.get(), width, out)) return Outcome::NeedsAlpha;
        }
        if (++filled < blockRows && y > 0) continue;
        if (!target.writeAt(offset, block.get(), filled * stride)) return Outcome::TargetFailed;
        offset += filled * stride;
        filled = 0;
    }
    return Outcome::Done;
}

Outcome writeAs(const EncodeRequest& request, const Layout& layout, ByteTarget& target) {
    if (!writeHeader(request, layout, target)) return Outcome::TargetFailed;
    return writeRows(request, layout, target);
}

}  // namespace

ImagingStatus writeBmp(const EncodeRequest& request, ByteTarget& target) {
    if (request.width < 1 || request.height < 1 || request.source == nullptr)
        return ImagingStatus::InvalidParameter;
    const Layout opaque(request, Depth::Opaque24);
    const Layout alpha(request, Depth::Alpha32);
    // A row of 32-bit pixels stays below 2 GiB.
    if (!opaque.fits() || request.width > INT32_MAX / 4) return ImagingStatus::ValueOverflow;
    Outcome outcome = writeAs(request, opaque, target);
    // The longer form covers every byte of the shorter one.
    if (outcome == Outcome::NeedsAlpha) {
        if (!alpha.fits()) return ImagingStatus::ValueOverflow;
        outcome = writeAs(request, alpha, target);
    }
    switch (outcome) {
        case Outcome::Done: return ImagingStatus::Ok;
        case Outcome::OutOfMemory: return ImagingStatus::OutOfMemory;
        default: return ImagingStatus::GenericError;
    }
}

}  // namespace brushwork::platform
