#include "shapes/outline_raster.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>

#include "foundation/services/log.h"
#include "shapes/edge_class.h"
#include "shapes/sample_lines.h"
#include "shapes/shape_rig.h"

namespace brushwork {
namespace {

using test::circle;
using test::Place;
using test::Places;
using Bytes = std::vector<std::uint8_t>;

std::vector<HostSegment> piecesOf(const std::vector<Places>& rings) {
    std::vector<HostSegment> all;
    for (const Places& ring : rings) {
        const auto own = PolylineCurve(ring, PolylineCurve::Ends::Joined).segments();
        all.insert(all.end(), own.begin(), own.end());
    }
    return all;
}

Bytes rasterized(const std::vector<HostSegment>& pieces, const ilTile& box) {
    Bytes mask(static_cast<std::size_t>(box.nx) * static_cast<std::size_t>(box.ny));
    EXPECT_TRUE(rasterizeOutline(OutlineSegments(pieces), box, mask));
    return mask;
}

// The rules of the two passes in plain loops over all pieces.
class PlainRaster {
  public:
    PlainRaster(std::vector<HostSegment> pieces, const ilTile& box)
        : pieces_(std::move(pieces)), box_(box) {}

    Bytes run() {
        const int w = box_.nx, h = box_.ny;
        Bytes mask(static_cast<std::size_t>(w * h));
        for (int y = 0; y < h; ++y) {
            const auto row = pixelLine(static_cast<float>(box_.y + y), false, w);
            std::copy(row.begin(), row.end(), mask.begin() + y * w);
        }
        for (int x = 0; x < w; ++x) {
            const auto column = pixelLine(static_cast<float>(box_.x + x), true, h);
            for (int y = 0; y < h; ++y) merge(mask, x, y, column[static_cast<std::size_t>(y)]);
        }
        return mask;
    }

  private:
    std::vector<float> crossings(float at, bool swapped) const {
        std::vector<float> found;
        for (HostSegment s : pieces_) {
            if (swapped) std::swap(s.x, s.y), std::swap(s.dx, s.dy);
            const float end = s.y + s.dy;
            const bool holds = s.dy > 0 ? at >= s.y && at <= end : at <= s.y && at >= end;
            if (s.dy == 0 || !holds) continue;
            const float origin = static_cast<float>(swapped ? box_.y : box_.x);
            const float last = static_cast<float>((swapped ? box_.ny : box_.nx) - 1);
            const float reciprocal = 1.0f / s.dy;
            const float x = (at - s.y) * reciprocal * s.dx + s.x - origin;
            found.push_back(std::max(0.0f, std::min(x, last)));
        }
        std::sort(found.begin(), found.end());
        return found;
    }

    std::vector<int> line(float at, bool swapped, int length) const {
        std::vector<int> line(static_cast<std::size_t>(length));
        std::vector<float> found = crossings(at, swapped);
        float tried = at - 0.01f;
        for (int n = 0; n < 19 && found.size() % 2; ++n, tried += 0.001f)
            found = crossings(tried, swapped);
        if (found.size() % 2) return line;
        for (std::size_t i = 0; i < found.size(); i += 2) {
            const float a = found[i], b = found[i + 1];
            if (b - a < 0.003921569f) continue;
            const int first = static_cast<int>(a), last = static_cast<int>(b);
            const auto add = [&line](int p, float value) {
                int& pixel = line[static_cast<std::size_t>(p)];
                pixel = std::min(255, pixel + static_cast<int>(value * 255.0f));
            };
            if (first == last) {
                add(first, b - a);
                continue;
            }
            add(first, 1.0f - (a - static_cast<float>(first)));
            for (int p = first + 1; p < last; ++p) add(p, 1.0f);
            add(last, b - static_cast<float>(last));
        }
        return line;
    }

    Bytes pixelLine(float at, bool swapped, int length) const {
        std::vector<int> sums(static_cast<std::size_t>(length));
        for (int n = 0; n < 5; ++n) {
            const auto own = line(at + 0.25f * static_cast<float>(n), swapped, length);
            for (std::size_t i = 0; i < sums.size(); ++i) sums[i] += own[i];
        }
        Bytes bytes;
        for (const int sum : sums) bytes.push_back(static_cast<std::uint8_t>((sum * 0x3334) >> 16));
        return bytes;
    }

    void merge(Bytes& mask, int x, int y, std::uint8_t value) const {
        const auto at = static_cast<std::size_t>(y * box_.nx + x);
        if (value < 3 || value > 252) return;
        const int edge = edgeClass(mask, at, static_cast<std::size_t>(box_.nx));
        if (edge == 2) mask[at] = value;
        if (edge == 3) mask[at] = static_cast<std::uint8_t>((mask[at] + value) / 2);
    }

    std::vector<HostSegment> pieces_;
    ilTile box_;
};

// Where a row of points meets the rings, ascending.
std::vector<double> meetings(const std::vector<Places>& rings, double y) {
    std::vector<double> found;
    for (const Places& ring : rings) {
        for (std::size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++) {
            if ((ring[i].y > y) == (ring[j].y > y)) continue;
            const double part = (y - ring[i].y) / (ring[j].y - ring[i].y);
            found.push_back(ring[i].x + part * (ring[j].x - ring[i].x));
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

// The covered share of each pixel, by the even-odd rule at 16 by 16 points.
Bytes supersampled(const std::vector<Places>& rings, const ilTile& box) {
    constexpr int grid = 16;
    std::vector<int> hits(static_cast<std::size_t>(box.nx * box.ny));
    for (int row = 0; row < box.ny * grid; ++row) {
        const auto found = meetings(rings, box.y + (row + 0.5) / grid);
        for (int n = 0; n < box.nx * grid; ++n) {
            const double x = box.x + (n + 0.5) / grid;
            const auto left = std::upper_bound(found.begin(), found.end(), x) - found.begin();
            if (left % 2) ++hits[static_cast<std::size_t>(row / grid * box.nx + n / grid)];
        }
    }
    Bytes mask;
    for (const int n : hits) mask.push_back(static_cast<std::uint8_t>((n * 255 + 128) / 256));
    return mask;
}

struct Difference {
    int largest = 0;
    double mean = 0.0;  // of pixels that either has at an edge
    double bias = 0.0;  // of all of them, with its sign
};

Difference compare(const Bytes& got, const Bytes& expected) {
    Difference d;
    int edges = 0;
    for (std::size_t i = 0; i < got.size(); ++i) {
        const int off = got[i] - expected[i];
        d.largest = std::max(d.largest, std::abs(off));
        if (expected[i] % 255 == 0 && got[i] % 255 == 0 && off == 0) continue;
        d.mean += std::abs(off);
        d.bias += off;
        ++edges;
    }
    if (edges) d.mean /= edges, d.bias /= edges;
    return d;
}

// Off the sample lines, as a maker of polygons keeps them.
Places nudged(Places ring) {
    for (Place& p : ring) {
        p.x = static_cast<double>(offSampleLines(static_cast<float>(p.x)));
        p.y = static_cast<double>(offSampleLines(static_cast<float>(p.y)));
    }
    return ring;
}

class Rings {
  public:
    explicit Rings(unsigned seed) : random_(seed) {}
    // Corners anywhere: it crosses itself many times.
    Places tangle(int corners) {
        Places ring;
        for (int n = 0; n < corners; ++n) ring.push_back({between(4, 60), between(4, 44)});
        return nudged(ring);
    }
    double between(double low, double high) {
        return std::uniform_real_distribution<>(low, high)(random_);
    }

  private:
    std::mt19937 random_;
};

constexpr ilTile box = flatTile(0, 0, 64, 48);

TEST(OutlineRaster, FollowsThePlainRulesToTheByte) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        Rings rings(seed);
        std::vector<Places> shape;
        for (unsigned n = 0; n < 1 + seed % 3; ++n)
            shape.push_back(rings.tangle(3 + static_cast<int>(seed) % 14));
        // Some lie on sample lines after all, and some outside the box.
        if (seed % 4 == 0)
            for (Place& p : shape[0]) p = {std::round(p.x * 1.3 - 8), std::round(p.y * 4) / 4};
        const auto pieces = piecesOf(shape);
        setLogSink([](std::string_view) {});
        const ilTile where = flatTile(-3, 2, 61, 40);
        EXPECT_EQ(rasterized(pieces, where), PlainRaster(pieces, where).run()) << "seed " << seed;
        setLogSink({});
    }
}

TEST(OutlineRaster, MatchesSupersampling) {
    struct Case {
        const char* name;
        std::vector<Places> rings;
    };
    const std::vector<Case> cases = {
        {"star", {nudged({{32, 46}, {14, 3}, {58, 30.4}, {6, 30.4}, {50, 3}})}},
        {"ring with a hole", {circle(32, 24, 20.3, 64), circle(30, 25, 11.2, 64)}},
        {"hole within an island within a hole",
         {circle(32, 24, 22.1, 60), circle(33, 24, 15.6, 60), circle(32, 23, 9.3, 40),
          circle(32, 23, 4.2, 30)}},
        {"rings that cross", {circle(24, 24, 16.7, 50), circle(38, 22, 15.9, 50)}},
        {"steep", {nudged({{10.3, 2.2}, {14.9, 45.6}, {30.1, 45.1}, {20.8, 2.9}})}},
        {"flat", {nudged({{2.2, 10.3}, {61.6, 14.9}, {60.1, 30.1}, {3.9, 20.8}})}},
    };
    for (const Case& c : cases) {
        const Difference d =
            compare(rasterized(piecesOf(c.rings), box), supersampled(c.rings, box));
        EXPECT_LE(d.largest, 48) << c.name;
        EXPECT_LT(d.mean, 6.0) << c.name;
        EXPECT_LT(std::fabs(d.bias), 3.0) << c.name;
    }
    for (unsigned seed = 100; seed < 140; ++seed) {
        Rings rings(seed);
        const std::vector<Places> tangle = {rings.tangle(7), rings.tangle(5)};
        const Difference d = compare(rasterized(piecesOf(tangle), box), supersampled(tangle, box));
        EXPECT_LE(d.largest, 96) << "seed " << seed;
        EXPECT_LT(d.mean, 10.0) << "seed " << seed;
        EXPECT_LT(std::fabs(d.bias), 4.5) << "seed " << seed;
    }
}

// Corners on quarters of pixels at the same height on both sides, as people draw them, in rings of
// any turn and start, leave no streaks. Of upright rectangles no edge moves.
TEST(OutlineRaster, PassesSampleLinesOnce) {
    const auto disc = [](double radius) {
        Places ring = circle(32, 24, radius, 60);
        for (Place& p : ring) p = {std::round(p.x * 4) / 4, std::round(p.y * 4) / 4};
        return ring;
    };
    const std::vector<std::pair<std::string, std::vector<Places>>> cases = {
        {"diamond", {{{32, 4}, {60, 24}, {32, 44}, {4, 24}}}},
        {"hexagon", {{{20, 4}, {44, 4}, {58, 24}, {44, 44}, {20, 44}, {6, 24}}}},
        {"steps", {{{32, 4}, {40, 20}, {50, 20}, {58, 44}, {6, 44}, {14, 20}, {24, 20}}}},
        {"ring", {disc(20), disc(10)}},
        {"rectangle", {{{8, 8}, {40, 8}, {40, 30}, {8, 30}}}}};
    for (const auto& [name, rings] : cases)
        for (int turned = 0; turned < 4; ++turned) {
            SCOPED_TRACE(name + ", turned " + std::to_string(turned));
            std::vector<HostSegment> pieces;
            for (Places ring : rings) {
                if (turned % 2 != 0) std::reverse(ring.begin(), ring.end());
                std::rotate(ring.begin(), ring.begin() + turned, ring.end());
                auto own = piecesOf({ring});
                const auto before = own;
                passSampleLinesOnce(own);
                const bool isSame =
                    std::equal(own.begin(), own.end(), before.begin(),
                               [](const HostSegment& a, const HostSegment& b) {
                                   return a.x == b.x && a.y == b.y && a.dx == b.dx && a.dy == b.dy;
                               });
                EXPECT_EQ(isSame, name == "rectangle");
                pieces.insert(pieces.end(), own.begin(), own.end());
            }
            const Bytes got = rasterized(pieces, box), wanted = supersampled(rings, box);
            EXPECT_LE(compare(got, wanted).largest, 52);
            const auto width = static_cast<std::size_t>(box.nx);
            int streaked = 0;
            for (std::size_t i = width + 1; i + width + 1 < got.size(); ++i) {
                bool isInside = true;
                for (std::size_t row = i - width; row <= i + width; row += width)
                    for (std::size_t at = row - 1; at <= row + 1; ++at)
                        isInside = isInside && wanted[at] == wanted[i] && wanted[at] % 255 == 0;
                if (isInside && got[i] != wanted[i]) ++streaked;
            }
            EXPECT_EQ(streaked, 0);
        }
}

TEST(OutlineRaster, WholePixelsAreExact) {
    const auto mask = rasterized(piecesOf({nudged({{8, 8}, {40, 8}, {40, 30}, {8, 30}})}), box);
    for (int y = 10; y < 29; ++y)
        for (int x = 10; x < 39; ++x) ASSERT_EQ(mask[static_cast<std::size_t>(y * 64 + x)], 255);
    EXPECT_EQ(mask[9 * 64 + 6], 0);
    EXPECT_EQ(mask[6 * 64 + 9], 0);
}

TEST(OutlineRaster, AnOddCountIsTriedAgainCloseBy) {
    std::vector<std::string> lines;
    setLogSink([&lines](std::string_view text) { lines.emplace_back(text); });
    // The left side has its corner on a line, which three pieces meet.
    const auto whole = rasterized(
        piecesOf({{{20.1, 10.1}, {10.3, 20.0}, {20.2, 30.2}, {50.3, 30.2}, {50.3, 10.1}}}), box);
    EXPECT_TRUE(lines.empty());
    EXPECT_EQ(whole[20 * 64 + 30], 255);
    // A lone piece stays odd on every line it meets.
    const auto lone = rasterized({{10.1f, 10.1f, 3.0f, 0.3f}}, box);
    EXPECT_EQ(lone, Bytes(lone.size()));
    ASSERT_EQ(lines.size(), 1u + 12u);
    EXPECT_EQ(lines.front(), "Odd number of Horizontal intersection points! 10.250000, 1\n");
    EXPECT_EQ(lines.back(), "Odd number of Vertical intersection points! 13.000000, 1, \n");
    setLogSink({});
}

TEST(OutlineRaster, SliversAndPairsInOnePixel) {
    const auto upright = [](float x, float width) {
        return std::vector<HostSegment>{{x, 4.1f, 0.0f, 30.0f}, {x + width, 34.1f, 0.0f, -30.0f}};
    };
    EXPECT_EQ(rasterized(upright(20.25f, 0.0035f), box)[20 * 64 + 20], 0);
    EXPECT_EQ(rasterized(upright(20.25f, 0.5f), box)[20 * 64 + 20], 127);
    auto two = upright(20.125f, 0.25f);
    const auto more = upright(20.5f, 0.25f);
    two.insert(two.end(), more.begin(), more.end());
    EXPECT_EQ(rasterized(two, box)[20 * 64 + 20], 126);
}

TEST(OutlineRaster, OpacityAndBoxes) {
    Bytes bytes = {0, 1, 128, 255};
    applyOpacity(bytes, 0.997f);
    EXPECT_EQ(bytes, (Bytes{0, 1, 128, 255}));
    applyOpacity(bytes, 0.5f);
    EXPECT_EQ(bytes, (Bytes{0, 0, 64, 127}));
    EXPECT_EQ(filledBox({-0.5, 3.9, 10.2, 20.0}), flatTile(-2, 1, 16, 23));
    EXPECT_TRUE(filledBox({0, 0, 1e30, 4}).isEmpty());
    Bytes tooSmall(7);
    EXPECT_FALSE(rasterizeOutline({}, flatTile(0, 0, 4, 2), tooSmall));
}

TEST(EdgeClass, TellsTheDirectionOfAnEdge) {
    const auto at = [](const Bytes& nine) { return edgeClass(nine, 4, 3); };
    EXPECT_EQ(at({0, 0, 0, 0, 9, 255, 0, 0, 0}), 1);
    EXPECT_EQ(at({0, 0, 0, 0, 9, 0, 0, 255, 0}), 2);
    EXPECT_EQ(at({0, 255, 0, 255, 9, 0, 0, 0, 0}), 3);
    EXPECT_EQ(at({255, 0, 0, 0, 9, 0, 0, 0, 0}), 2);    // the left pair
    EXPECT_EQ(at({0, 0, 0, 0, 9, 0, 0, 0, 255}), 2);    // the right pair
    EXPECT_EQ(at({0, 254, 0, 1, 9, 255, 0, 0, 0}), 0);  // not sharp
    EXPECT_EQ(at({255, 0, 255, 0, 9, 0, 255, 0, 255}), 0);
    const Bytes edge = {0, 0, 0, 255, 9, 255, 0, 0, 0};
    EXPECT_EQ(edgeClass(edge, 1, 3), 0);
    EXPECT_EQ(edgeClass(edge, 7, 3), 0);
    // Beyond a row's end lies the next row's first pixel; before the first byte, 0.
    EXPECT_EQ(edgeClass(Bytes{0, 0, 0, 9, 0, 0, 0, 0, 0}, 3, 3), 0);
    EXPECT_EQ(edgeClass(Bytes{0, 0, 255, 9, 0, 0, 0, 0, 0}, 3, 3), 1);
    EXPECT_EQ(edgeClass(Bytes{0, 0, 0, 9, 0, 255, 0, 0, 0}, 3, 3), 2);
}

}  // namespace
}  // namespace brushwork
