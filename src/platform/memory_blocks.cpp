#include "platform/memory_blocks.h"

#include <algorithm>
#include <limits>

namespace brushwork::platform {

GlobalBlock GlobalBlock::holding(std::span<const std::uint8_t> bytes) {
    GlobalBlock block = allocate(bytes.size());
    const LockedBlock lock(block);
    if (lock.bytes().size() < bytes.size() || bytes.empty()) return {};
    std::copy(bytes.begin(), bytes.end(), lock.bytes().begin());
    return block;
}

std::size_t paddedBitmapBytes(std::int32_t width, std::int32_t height, std::int32_t bitsPerPixel) {
    if (width < 1 || height < 1 || bitsPerPixel < 1 || bitsPerPixel > 32) return 0;
    const std::uint64_t bits =
        static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(bitsPerPixel);
    const std::uint64_t bytes = (bits + 31) / 32 * 4 * static_cast<std::uint64_t>(height);
    constexpr auto largest = static_cast<std::uint64_t>(std::numeric_limits<std::ptrdiff_t>::max());
    return bytes > largest ? 0 : static_cast<std::size_t>(bytes);
}

}  // namespace brushwork::platform
