#include "image/work/bmp_dump.h"

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <vector>

#include "image/work/byte_swizzle.h"
#include "platform/file_calls.h"

namespace brushwork {
namespace {

constexpr std::uint32_t fileHeaderBytes = 14;
constexpr std::uint32_t infoHeaderBytes = 40;
constexpr std::uint32_t paletteBytes = 256 * 4;

struct Layout {
    std::int32_t width, height, channels;
    std::uint32_t rowBytes;     // padded
    std::uint32_t pixelOffset;  // in the file
    std::uint32_t pixelBytes;
};

bool layOut(std::int32_t width, std::int32_t height, std::int32_t channels, Layout& layout) {
    if (width < 1 || height < 1 || (channels != 1 && channels != 4)) return false;
    const std::uint64_t row =
        (static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(channels) + 3) / 4 * 4;
    const std::uint64_t pixels = row * static_cast<std::uint64_t>(height);
    const std::uint32_t offset =
        fileHeaderBytes + infoHeaderBytes + (channels == 1 ? paletteBytes : 0);
    if (offset + pixels > 0xFFFFFFFFu) return false;
    layout = {width,    height,
              channels, static_cast<std::uint32_t>(row),
              offset,   static_cast<std::uint32_t>(pixels)};
    return true;
}

// Little-endian numbers into a row of bytes.
struct Packer {
    std::uint8_t* at;
    void put(std::uint32_t value, int bytes) {
        for (; bytes > 0; --bytes, value >>= 8) *at++ = static_cast<std::uint8_t>(value);
    }
};

std::vector<std::uint8_t> headerOf(const Layout& layout) {
    std::vector<std::uint8_t> header(layout.pixelOffset);
    Packer pack{header.data()};
    pack.put('B' | ('M' << 8), 2);
    pack.put(layout.pixelOffset + layout.pixelBytes, 4);
    pack.put(0, 4);
    pack.put(layout.pixelOffset, 4);
    pack.put(infoHeaderBytes, 4);
    pack.put(static_cast<std::uint32_t>(layout.width), 4);
    pack.put(static_cast<std::uint32_t>(layout.height), 4);
    pack.put(1, 2);
    pack.put(static_cast<std::uint32_t>(layout.channels) * 8, 2);
    pack.put(0, 4);  // not compressed
    pack.put(layout.pixelBytes, 4);
    pack.put(0, 8);  // pixels a metre: unknown
    pack.put(layout.channels == 1 ? 256 : 0, 4);
    pack.put(0, 4);
    if (layout.channels == 1)
        for (std::uint32_t grey = 0; grey < 256; ++grey) pack.put(grey * 0x010101u, 4);
    return header;
}

bool writeAll(std::FILE* file, const Layout& layout, const std::uint8_t* pixels) {
    const std::vector<std::uint8_t> header = headerOf(layout);
    if (std::fwrite(header.data(), 1, header.size(), file) != header.size()) return false;
    std::vector<std::uint8_t> row(layout.rowBytes);
    const auto width = static_cast<std::size_t>(layout.width);
    for (std::int32_t y = 0; y < layout.height; ++y) {
        if (layout.channels == 4)
            swapBytes02(pixels, row.data(), width);
        else
            std::memcpy(row.data(), pixels, width);
        pixels += width * static_cast<std::size_t>(layout.channels);
        if (std::fwrite(row.data(), 1, row.size(), file) != row.size()) return false;
    }
    return std::fflush(file) == 0;
}

}  // namespace

bool writeBmp(std::u16string_view path, const std::uint8_t* pixels, std::int32_t width,
              std::int32_t height, std::int32_t channels) {
    Layout layout{};
    if (!pixels || !layOut(width, height, channels, layout)) return false;
    int number = 0;
    platform::FileStream file = platform::openStream(path, "wb", number);
    if (!file) return false;
    if (writeAll(file.get(), layout, pixels)) return true;
    file.reset();
    static_cast<void>(platform::unlinkFile(path));
    return false;
}

}  // namespace brushwork
