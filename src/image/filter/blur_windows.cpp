#include "image/filter/blur_windows.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace brushwork {

std::uint64_t BlurWindows::countAt(std::int32_t centre) const {
    std::uint64_t count = 0;
    for (const std::int32_t r : reach) {
        const std::int64_t first = std::max<std::int64_t>(0, std::int64_t{centre} - r);
        const std::int64_t last = std::min<std::int64_t>(length - 1, std::int64_t{centre} + r);
        count += static_cast<std::uint64_t>(last - first + 1);
    }
    return count;
}

std::uint64_t BlurWindows::largestCount() const {
    std::uint64_t count = 0;
    for (const std::int32_t r : reach) {
        count +=
            static_cast<std::uint64_t>(std::min<std::int64_t>(2 * std::int64_t{r} + 1, length));
    }
    return count;
}

BlurWindows blurWindows(std::int32_t length, std::int32_t size) {
    const std::int64_t half = std::max(size, 0) >> 1;
    BlurWindows windows;
    windows.length = length;
    const std::array<std::int64_t, 4> reach = {(half * 65 + 128) >> 8, (half * 122 + 128) >> 8,
                                               (half * 176 + 128) >> 8, half};
    for (std::size_t k = 0; k < reach.size(); ++k) {
        windows.reach[k] = static_cast<std::int32_t>(std::min<std::int64_t>(reach[k], length));
    }
    return windows;
}

float blurReciprocal(std::uint64_t count) {
    return std::nextafter(1.0f / static_cast<float>(count), std::numeric_limits<float>::infinity());
}

std::vector<float> blurReciprocals(const BlurWindows& windows, std::size_t padding) {
    std::vector<float> table(static_cast<std::size_t>(windows.length) + padding, 0.0f);
    for (std::int32_t c = 0; c < windows.length; ++c) {
        table[static_cast<std::size_t>(c)] = blurReciprocal(windows.countAt(c));
    }
    return table;
}

}  // namespace brushwork
