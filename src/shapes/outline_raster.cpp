#include "shapes/outline_raster.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "foundation/services/log.h"
#include "shapes/edge_class.h"
#include "shapes/line_crossings.h"

namespace brushwork {
namespace {

constexpr float lineStep = 0.25f;
constexpr int linesPerPixel = 4;          // the fifth is the next pixel's first
constexpr float thinnest = 0.003921569f;  // of a pair of crossings, in pixels
constexpr std::uint32_t fifth = 0x3334;   // of 65536, rounded up

// The columns of a row, or the rows of a column, as five lines fill them.
class PixelLines {
  public:
    explicit PixelLines(std::size_t length) : sums_(length), line_(length) {}

    // One line between each two crossings, which are sorted and even in number.
    void fill(std::span<const float> crossings) {
        std::fill(line_.begin(), line_.end(), std::uint8_t{0});
        for (std::size_t i = 0; i + 1 < crossings.size(); i += 2)
            fillPair(crossings[i], crossings[i + 1]);
        for (std::size_t i = 0; i < line_.size(); ++i)
            sums_[i] = static_cast<std::uint16_t>(sums_[i] + line_[i]);
    }
    void skip() { std::fill(line_.begin(), line_.end(), std::uint8_t{0}); }

    [[nodiscard]] std::uint8_t mean(std::size_t i) const {
        return static_cast<std::uint8_t>((sums_[i] * fifth) >> 16);
    }
    // The last line is also the first one of what follows.
    void carryOn() { std::copy(line_.begin(), line_.end(), sums_.begin()); }

  private:
    void fillPair(float a, float b) {
        if (b - a < thinnest) return;
        const auto first = static_cast<std::size_t>(a);
        const auto last = static_cast<std::size_t>(b);
        if (first == last) {
            add(first, (b - a) * 255.0f);
            return;
        }
        add(first, (1.0f - (a - static_cast<float>(first))) * 255.0f);
        std::fill(line_.begin() + static_cast<std::ptrdiff_t>(first) + 1,
                  line_.begin() + static_cast<std::ptrdiff_t>(last), std::uint8_t{255});
        add(last, (b - static_cast<float>(last)) * 255.0f);
    }
    // What several pairs leave in one pixel stops at 255.
    void add(std::size_t i, float value) {
        line_[i] = static_cast<std::uint8_t>(std::min(line_[i] + static_cast<int>(value), 255));
    }

    std::vector<std::uint16_t> sums_;
    std::vector<std::uint8_t> line_;
};

// Runs through one pass: `finish(n, lines)` gets the n-th row or column once it is complete.
template <class Finish>
void runPass(LineCrossings& crossings, const char* complaint, float begin, std::size_t count,
             std::size_t length, const Finish& finish) {
    PixelLines lines(length);
    for (std::size_t n = 0; n <= count * linesPerPixel; ++n) {
        const float place = begin + static_cast<float>(n) * lineStep;
        const std::span<const float> found = crossings.at(place);
        if (found.size() % 2 == 0) {
            lines.fill(found);
        } else {
            log(complaint, static_cast<double>(place), static_cast<int>(found.size()));
            lines.skip();
        }
        if (n == 0 || n % linesPerPixel != 0) continue;
        finish(n / linesPerPixel - 1, lines);
        lines.carryOn();
    }
}

void mergeColumn(std::span<std::uint8_t> mask, std::size_t x, std::size_t width,
                 const PixelLines& lines) {
    for (std::size_t y = 0; y * width < mask.size(); ++y) {
        const std::uint8_t value = lines.mean(y);
        if (value <= 2 || value >= 253) continue;
        const std::size_t index = y * width + x;
        const int edge = edgeClass(mask, index, width);
        if (edge == 2) mask[index] = value;
        if (edge == 3) mask[index] = static_cast<std::uint8_t>((mask[index] + value) >> 1);
    }
}

}  // namespace

ilTile filledBox(const OutlineExtent& extent) {
    constexpr double farthest = 1 << 29;
    if (!(extent.lowX > -farthest && extent.lowY > -farthest && extent.highX < farthest &&
          extent.highY < farthest)) {
        return {};
    }
    const auto left = static_cast<std::int32_t>(extent.lowX - 2.0);
    const auto low = static_cast<std::int32_t>(extent.lowY - 2.0);
    return flatTile(left, low, static_cast<std::int32_t>(extent.highX + 3.0) - left + 1,
                    static_cast<std::int32_t>(extent.highY + 3.0) - low + 1);
}

bool rasterizeOutline(const OutlineSegments& outline, const ilTile& box,
                      std::span<std::uint8_t> mask) {
    if (box.isEmpty()) return false;
    const auto width = static_cast<std::size_t>(box.nx);
    const auto height = static_cast<std::size_t>(box.ny);
    if (mask.size() / width != height || mask.size() % width != 0) return false;

    LineCrossings across(outline, LineCrossings::Lines::Horizontal, box);
    runPass(across, "Odd number of Horizontal intersection points! %f, %d\n",
            static_cast<float>(box.y), height, width, [&](std::size_t y, const PixelLines& lines) {
                for (std::size_t x = 0; x < width; ++x) mask[y * width + x] = lines.mean(x);
            });
    LineCrossings along(outline, LineCrossings::Lines::Vertical, box);
    runPass(along, "Odd number of Vertical intersection points! %f, %d, \n",
            static_cast<float>(box.x), width, height,
            [&](std::size_t x, const PixelLines& lines) { mergeColumn(mask, x, width, lines); });
    return true;
}

void applyOpacity(std::span<std::uint8_t> mask, float opacity) {
    if (!(opacity < 0.997f)) return;
    const auto factor = static_cast<std::uint32_t>(std::lround(std::max(opacity, 0.0f) * 256.0f));
    for (std::uint8_t& byte : mask) byte = static_cast<std::uint8_t>((byte * factor) >> 8);
}

}  // namespace brushwork
