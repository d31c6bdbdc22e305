#include "platform/gif_palette.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace brushwork::platform {

namespace {

using Cells = std::vector<ColourSums>;

// The squared length of the mean, times the count: the larger, the less variance is left.
double concentration(const ColourSums& sums) {
    if (sums.count == 0) return 0.0;
    const auto r = static_cast<double>(sums.red);
    const auto g = static_cast<double>(sums.green);
    const auto b = static_cast<double>(sums.blue);
    return (r * r + g * g + b * b) / static_cast<double>(sums.count);
}

// Cells low + 1 to high of each axis: red, green, blue.
struct Box {
    std::array<std::size_t, 3> low{};
    std::array<std::size_t, 3> high{};
    double variance = 0.0;  // times the count
};

// Each cell becomes the sum over the box from the origin to it.
void accumulate(Cells& cells) {
    constexpr std::size_t side = ColourCensus::side;
    constexpr std::array<std::size_t, 3> strides{side * side, side, 1};
    for (const std::size_t stride : strides) {
        for (std::size_t i = stride; i < cells.size(); ++i)
            if (i / stride % side != 0) cells[i] += cells[i - stride];
    }
}

ColourSums sumOf(const Cells& sums, const Box& box) {
    ColourSums total;
    for (unsigned corner = 0; corner < 8; ++corner) {
        const bool r = (corner & 1) != 0;
        const bool g = (corner & 2) != 0;
        const bool b = (corner & 4) != 0;
        const ColourSums& at =
            sums[ColourCensus::cellAt(r ? box.low[0] : box.high[0], g ? box.low[1] : box.high[1],
                                      b ? box.low[2] : box.high[2])];
        if ((r != g) != b) {
            total -= at;
        } else {
            total += at;
        }
    }
    return total;
}

void measure(const Cells& sums, Box& box) {
    const ColourSums all = sumOf(sums, box);
    bool divisible = false;
    for (std::size_t axis = 0; axis < 3; ++axis)
        divisible = divisible || box.high[axis] - box.low[axis] > 1;
    box.variance = divisible ? static_cast<double>(all.squares) - concentration(all) : 0.0;
}

// Cuts where the two halves together have the least variance. False if all lies in one cell.
bool cut(const Cells& sums, Box& box, Box& other) {
    const ColourSums all = sumOf(sums, box);
    double best = 0.0;
    std::size_t bestAxis = 3;
    std::size_t bestPlace = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        Box part = box;
        for (std::size_t place = box.low[axis] + 1; place < box.high[axis]; ++place) {
            part.high[axis] = place;
            const ColourSums below = sumOf(sums, part);
            ColourSums above = all;
            above -= below;
            if (below.count == 0 || above.count == 0) continue;
            const double score = concentration(below) + concentration(above);
            if (score <= best) continue;
            best = score;
            bestAxis = axis;
            bestPlace = place;
        }
    }
    if (bestAxis == 3) return false;
    other = box;
    box.high[bestAxis] = bestPlace;
    other.low[bestAxis] = bestPlace;
    return true;
}

std::vector<Box> divide(const Cells& sums, std::size_t limit) {
    constexpr std::size_t last = ColourCensus::side - 1;
    std::vector<Box> boxes(1, Box{{0, 0, 0}, {last, last, last}, 0.0});
    measure(sums, boxes[0]);
    while (boxes.size() < limit) {
        const auto widest =
            std::max_element(boxes.begin(), boxes.end(),
                             [](const Box& a, const Box& b) { return a.variance < b.variance; });
        if (widest->variance <= 0.0) break;
        Box other;
        if (cut(sums, *widest, other)) {
            measure(sums, *widest);
            measure(sums, other);
            boxes.push_back(other);
        } else {
            widest->variance = 0.0;
        }
    }
    return boxes;
}

struct Point {
    float red = 0.0F;
    float green = 0.0F;
    float blue = 0.0F;
    float weight = 0.0F;
};

Point meanOf(const ColourSums& sums) {
    const auto count = static_cast<double>(sums.count);
    return {static_cast<float>(static_cast<double>(sums.red) / count),
            static_cast<float>(static_cast<double>(sums.green) / count),
            static_cast<float>(static_cast<double>(sums.blue) / count), static_cast<float>(count)};
}

float distance(const Point& a, const Point& b) {
    const float r = a.red - b.red;
    const float g = a.green - b.green;
    const float y = a.blue - b.blue;
    return r * r + g * g + y * y;
}

struct Cluster {
    double red = 0.0;
    double green = 0.0;
    double blue = 0.0;
    double weight = 0.0;
};

// Gives each point to its nearest centre, then moves the centres to the means of what they got.
// Answers the error before the move.
double iterate(const std::vector<Point>& points, std::vector<Point>& centres) {
    std::vector<Cluster> clusters(centres.size());
    double error = 0.0;
    for (const Point& point : points) {
        std::size_t nearest = 0;
        float least = std::numeric_limits<float>::max();
        for (std::size_t i = 0; i < centres.size(); ++i) {
            const float d = distance(point, centres[i]);
            if (d >= least) continue;
            least = d;
            nearest = i;
        }
        const double weight = point.weight;
        error += weight * least;
        Cluster& cluster = clusters[nearest];
        cluster.red += weight * point.red;
        cluster.green += weight * point.green;
        cluster.blue += weight * point.blue;
        cluster.weight += weight;
    }
    for (std::size_t i = 0; i < centres.size(); ++i) {
        const Cluster& cluster = clusters[i];
        if (cluster.weight <= 0.0) continue;
        centres[i].red = static_cast<float>(cluster.red / cluster.weight);
        centres[i].green = static_cast<float>(cluster.green / cluster.weight);
        centres[i].blue = static_cast<float>(cluster.blue / cluster.weight);
    }
    return error;
}

void refine(const std::vector<Point>& points, std::vector<Point>& centres) {
    constexpr int mostIterations = 16;
    constexpr double worthwhile = 0.998;
    double before = std::numeric_limits<double>::max();
    for (int i = 0; i < mostIterations; ++i) {
        const double error = iterate(points, centres);
        if (error >= before * worthwhile) break;
        before = error;
    }
}

std::uint32_t rounded(const Point& point) {
    const auto channel = [](float value) {
        return static_cast<std::uint32_t>(std::clamp(std::lround(value), 0L, 255L));
    };
    return channel(point.red) << 16 | channel(point.green) << 8 | channel(point.blue);
}

}  // namespace

std::size_t ColourTable::slotOf(std::uint32_t colour) const {
    std::size_t slot = (colour * 2654435761U) >> 22;
    while (numbers_[slot] != 0 && colours_[static_cast<std::size_t>(numbers_[slot] - 1)] != colour)
        slot = (slot + 1) % slots;
    return slot;
}

int ColourTable::find(std::uint32_t colour) const {
    return numbers_[slotOf(colour)] - 1;
}

int ColourTable::add(std::uint32_t colour) {
    const std::size_t slot = slotOf(colour);
    if (numbers_[slot] == 0) {
        if (colours_.size() == maxGifColours) return -1;
        colours_.push_back(colour);
        numbers_[slot] = static_cast<std::int16_t>(colours_.size());
    }
    return numbers_[slot] - 1;
}

ColourSums& ColourSums::operator+=(const ColourSums& other) {
    count += other.count;
    red += other.red;
    green += other.green;
    blue += other.blue;
    squares += other.squares;
    return *this;
}

ColourSums& ColourSums::operator-=(const ColourSums& other) {
    count -= other.count;
    red -= other.red;
    green -= other.green;
    blue -= other.blue;
    squares -= other.squares;
    return *this;
}

void ColourCensus::add(const std::uint8_t* bgra, std::size_t width) {
    for (std::size_t x = 0; x < width; ++x, bgra += 4) {
        if (bgra[3] < opaqueFrom) {
            transparent_ = true;
            continue;
        }
        const int b = bgra[0];
        const int g = bgra[1];
        const int r = bgra[2];
        if (!overflown_) overflown_ = exact_.add(colourOf(bgra)) < 0;
        cells_[cellAt(static_cast<std::size_t>(r / 8 + 1), static_cast<std::size_t>(g / 8 + 1),
                      static_cast<std::size_t>(b / 8 + 1))] += {1, r, g, b, r * r + g * g + b * b};
    }
}

bool ColourCensus::isExact() const {
    return !overflown_ && exact_.colours().size() + (transparent_ ? 1 : 0) <= maxGifColours;
}

std::vector<std::uint32_t> fitPalette(const ColourCensus& census, std::size_t limit) {
    std::vector<Point> points;
    for (const ColourSums& cell : census.cells())
        if (cell.count > 0) points.push_back(meanOf(cell));

    std::vector<Point> centres;
    {
        Cells sums = census.cells();
        accumulate(sums);
        for (const Box& box : divide(sums, limit)) {
            const ColourSums all = sumOf(sums, box);
            if (all.count > 0) centres.push_back(meanOf(all));
        }
    }
    if (centres.empty()) return {0};
    refine(points, centres);

    std::vector<std::uint32_t> palette;
    for (const Point& centre : centres) palette.push_back(rounded(centre));
    return palette;
}

}  // namespace brushwork::platform
