#include "platform/gif_dither.h"

#include <algorithm>
#include <limits>

namespace brushwork::platform {

namespace {

int square(int value) {
    return value * value;
}

// Errors are kept in sixteenths of a level, so that their parts add up.
constexpr int unit = 16;

int rounded(int value) {
    return (value + unit / 2) / unit;
}

}  // namespace

NearestColour::NearestColour(const std::vector<std::uint32_t>& palette)
    : cubes_(cubesPerSide * cubesPerSide * cubesPerSide) {
    for (const std::uint32_t colour : palette) {
        palette_.push_back({static_cast<int>(colour >> 16 & 0xFF),
                            static_cast<int>(colour >> 8 & 0xFF), static_cast<int>(colour & 0xFF)});
    }
}

// Wherever in the cube a colour lies, something is at most `bound` away from it; what is farther
// from all of the cube can't be the nearest.
NearestColour::Range NearestColour::list(const std::array<int, 3>& low) {
    std::array<int, maxGifColours> nearest{};
    int bound = std::numeric_limits<int>::max();
    for (std::size_t i = 0; i < palette_.size(); ++i) {
        int farthest = 0;
        for (std::size_t c = 0; c < 3; ++c) {
            const int toLow = palette_[i][c] - low[c];
            const int toHigh = palette_[i][c] - (low[c] + cubeSide - 1);
            farthest += std::max(square(toLow), square(toHigh));
            nearest[i] += square(std::max({-toLow, toHigh, 0}));
        }
        bound = std::min(bound, farthest);
    }
    const std::size_t first = candidates_.size();
    for (std::size_t i = 0; i < palette_.size(); ++i) {
        if (nearest[i] > bound) continue;
        candidates_.push_back(
            {static_cast<std::uint8_t>(palette_[i][0]), static_cast<std::uint8_t>(palette_[i][1]),
             static_cast<std::uint8_t>(palette_[i][2]), static_cast<std::uint8_t>(i)});
    }
    return {static_cast<std::uint32_t>(first),
            static_cast<std::uint32_t>(candidates_.size() - first)};
}

std::size_t NearestColour::find(int red, int green, int blue) {
    const int r = red / cubeSide;
    const int g = green / cubeSide;
    const int b = blue / cubeSide;
    Range& range = cubes_[static_cast<std::size_t>((r * cubesPerSide + g) * cubesPerSide + b)];
    if (range.count == 0) range = list({r * cubeSide, g * cubeSide, b * cubeSide});
    const Candidate* candidate = candidates_.data() + range.first;
    // Distance and index in one number, so that the search is a plain minimum without branches.
    int best = std::numeric_limits<int>::max();
    for (const Candidate* end = candidate + range.count; candidate != end; ++candidate) {
        const int distance = square(candidate->red - red) + square(candidate->green - green) +
                             square(candidate->blue - blue);
        best = std::min(best, distance << 8 | candidate->index);
    }
    return static_cast<std::size_t>(best & 0xFF);
}

ErrorDiffuser::ErrorDiffuser(std::size_t width, const std::vector<std::uint32_t>& palette,
                             std::uint8_t transparentIndex)
    : width_(width),
      transparentIndex_(transparentIndex),
      nearest_(palette),
      here_(width + 2),
      below_(width + 2) {}

void ErrorDiffuser::mapRow(const std::uint8_t* bgra, std::uint8_t* indices) {
    const std::ptrdiff_t step = backwards_ ? -1 : 1;
    std::ptrdiff_t x = backwards_ ? static_cast<std::ptrdiff_t>(width_) - 1 : 0;
    for (std::size_t i = 0; i < width_; ++i, x += step) {
        const std::uint8_t* pixel = bgra + x * 4;
        if (pixel[3] < opaqueFrom) {
            indices[x] = transparentIndex_;
            continue;
        }
        Error* here = here_.data() + x + 1;
        Error* below = below_.data() + x + 1;
        std::array<int, 3> wanted{};
        for (std::size_t c = 0; c < 3; ++c)
            wanted[c] = std::clamp(pixel[2 - c] * unit + (*here)[c], 0, 255 * unit);
        const std::size_t index =
            nearest_.find(rounded(wanted[0]), rounded(wanted[1]), rounded(wanted[2]));
        indices[x] = static_cast<std::uint8_t>(index);
        for (std::size_t c = 0; c < 3; ++c) {
            const int error = wanted[c] - nearest_.colour(index)[c] * unit;
            const int ahead = error * 7 / 16;
            const int behindBelow = error * 3 / 16;
            const int straightBelow = error * 5 / 16;
            here[step][c] += ahead;
            below[-step][c] += behindBelow;
            below[0][c] += straightBelow;
            below[step][c] += error - ahead - behindBelow - straightBelow;
        }
    }
    backwards_ = !backwards_;
    here_.swap(below_);
    std::fill(below_.begin(), below_.end(), Error{});
}

}  // namespace brushwork::platform
