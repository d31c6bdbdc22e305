// What a flood has to give, written down without pages, rows or waves.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

#include "fill/fill_pictures.h"

namespace brushwork::test {

inline int byteAt(std::uint32_t word, int index) {
    return static_cast<int>(word >> (8 * index) & 0xFF);
}

inline int naiveDistance(std::uint32_t pixel, std::uint32_t target, std::int32_t channels) {
    if (channels == 1) return std::abs(byteAt(pixel, 0) - byteAt(target, 0));
    int sum = 0;
    for (int c = 0; c < 3; ++c) sum += std::abs(byteAt(pixel, c) - byteAt(target, c));
    const float product =
        static_cast<float>(sum) * static_cast<float>(byteAt(target, 3)) * 0.003921569f;
    return std::max(std::min(static_cast<int>(product), 255),
                    std::abs(byteAt(pixel, 3) - byteAt(target, 3)));
}

inline int naiveCoverage(int distance, int tolerance, bool smooth) {
    if (!smooth) return distance < std::max(tolerance, 1) && distance < 255 ? 255 : 0;
    const int fall = tolerance + 128 < 256 ? 128 : 255 - tolerance;
    const int soft = tolerance < 32 ? tolerance : 32;
    const int value = (tolerance - distance - soft) * 255 / (fall + soft) + 255;
    return value < 0 ? 0 : value > 255 ? 255 : value;
}

// The coverage of all pixels of the picture's box, over what `old` has there.
inline std::vector<std::uint8_t> naiveFlood(const Picture& picture, std::int32_t seedX,
                                            std::int32_t seedY, int tolerance, bool smooth,
                                            const std::vector<std::uint8_t>& old) {
    const std::uint32_t target = picture.at(seedX, seedY);
    const auto distanceAt = [&](std::int32_t x, std::int32_t y) {
        return naiveDistance(picture.at(x, y), target, picture.channels);
    };
    const auto wanted = [&](std::int32_t x, std::int32_t y) {
        return naiveCoverage(distanceAt(x, y), tolerance, smooth);
    };
    const auto passes = [&](std::int32_t x, std::int32_t y) {
        const int before = old[picture.index(x, y)];
        return distanceAt(x, y) < std::max(tolerance, 1) &&
               (smooth ? wanted(x, y) > before : before < 255);
    };
    std::vector<std::uint8_t> mask = old;
    std::vector<char> reached(old.size(), 0);
    const auto raise = [&](std::int32_t x, std::int32_t y, int to) {
        auto& value = mask[picture.index(x, y)];
        value = std::max(value, static_cast<std::uint8_t>(to));
    };
    std::vector<std::pair<std::int32_t, std::int32_t>> open{{seedX, seedY}};
    reached[picture.index(seedX, seedY)] = 1;
    raise(seedX, seedY, 255);
    constexpr int steps[4][2] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}};
    while (!open.empty()) {
        const auto [x, y] = open.back();
        open.pop_back();
        for (const auto& step : steps) {
            const std::int32_t nx = x + step[0];
            const std::int32_t ny = y + step[1];
            if (!picture.holds(nx, ny)) continue;
            raise(nx, ny, wanted(nx, ny));
            // Beside a tried pixel, in its own page.
            for (const int side : {-1, 1}) {
                const std::int32_t hx = nx + side * step[1];
                const std::int32_t hy = ny + side * step[0];
                const bool samePage = (hx & ~127) == (nx & ~127) && (hy & ~127) == (ny & ~127);
                if (smooth && samePage && picture.holds(hx, hy)) raise(hx, hy, wanted(hx, hy) / 2);
            }
            char& mark = reached[picture.index(nx, ny)];
            if (mark || !passes(nx, ny)) continue;
            mark = 1;
            open.emplace_back(nx, ny);
        }
    }
    return mask;
}

}  // namespace brushwork::test
