#include "fill/page_coverage.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>

namespace brushwork {
namespace {

using Line = std::array<std::uint8_t, pageSide>;
using Lines = std::array<std::uint8_t, pagePixels>;
using Words = std::array<std::uint32_t, pagePixels / 32>;

// The distances of `count` rows from row y on.
void measure(const FloodedPage& page, std::int32_t y, std::int32_t count, std::uint8_t* distances) {
    const auto start = static_cast<std::size_t>(y) * pageSide;
    const auto pixels = static_cast<std::size_t>(count) * pageSide;
    const DistanceKernels& kernels = distanceKernels();
    if (!page.pixels)
        std::memset(distances, colorDistance(page.solid, page.target), pixels);
    else if (page.target.isGrey)
        kernels.one(page.pixels + start, pixels, page.target, distances);
    else
        kernels.four(page.pixels + 4 * start, pixels, page.target, distances);
}

BitRow rowOf(const Words& words, std::int32_t y) {
    const std::uint32_t* const row = words.data() + static_cast<std::size_t>(y) * (pageSide / 32);
    return {row[0] | std::uint64_t{row[1]} << 32, row[2] | std::uint64_t{row[3]} << 32};
}

const std::uint8_t* coverageRow(const FloodedPage& page, std::int32_t y) {
    return page.coverage + static_cast<std::size_t>(y) * pageSide;
}

// Which pixels lie below the stop, in those rows of the page that have some of the picture. Answers
// whether there is one in these rows that would get a coverage between 0 and 255.
bool findOpen(const FloodedPage& page, Words& open) {
    const auto start = static_cast<std::size_t>(page.inside.y) * pageSide;
    const auto pixels = static_cast<std::size_t>(page.inside.ny) * pageSide;
    std::uint32_t* const bits = open.data() + start / 32;
    const DistanceLimits limits{page.table.stop(), page.table.endOfWhole(),
                                page.table.startOfNone()};
    const DistanceKernels& kernels = distanceKernels();
    if (page.pixels && !page.target.isGrey)
        return kernels.openFour(page.pixels + 4 * start, pixels, page.target, limits, bits);
    Lines distances;
    measure(page, page.inside.y, page.inside.ny, distances.data());
    Words whole;
    Words some;
    kernels.below(distances.data(), pixels, limits.open, bits);
    kernels.below(distances.data(), pixels, limits.whole, whole.data());
    kernels.below(distances.data(), pixels, limits.none, some.data());
    return !std::equal(whole.begin(), whole.begin() + page.inside.ny * (pageSide / 32),
                       some.begin());
}

// Where waves may still pass over what was covered before.
BitRow uncovered(const FloodedPage& page, std::int32_t y) {
    BitRow row;
    Line distances;
    measure(page, y, 1, distances.data());
    const std::uint8_t* const coverage = coverageRow(page, y);
    for (std::int32_t x = 0; x < pageSide; ++x) {
        const std::uint8_t distance = distances[static_cast<std::size_t>(x)];
        const std::uint8_t wanted = page.smoothEdges ? page.table[distance] : std::uint8_t{255};
        if (wanted > coverage[x]) row.set(x);
    }
    return row;
}

// Eight bits as eight bytes of 0 or 255.
constexpr std::array<std::array<std::uint8_t, 8>, 256> makeOctets() {
    std::array<std::array<std::uint8_t, 8>, 256> octets{};
    for (std::size_t bits = 0; bits < 256; ++bits)
        for (std::size_t i = 0; i < 8; ++i)
            octets[bits][i] = (bits >> i & 1) != 0 ? std::uint8_t{255} : std::uint8_t{0};
    return octets;
}
constexpr auto octets = makeOctets();

void raise(std::uint8_t& coverage, int to) {
    if (to > coverage) coverage = static_cast<std::uint8_t>(to);
}

void raiseToFull(std::uint64_t bits, std::uint8_t* coverage) {
    for (std::size_t i = 0; i < 64; i += 8) {
        std::uint64_t old;
        std::uint64_t full;
        std::memcpy(&old, coverage + i, sizeof old);
        std::memcpy(&full, octets[bits >> i & 0xFF].data(), sizeof full);
        full |= old;
        std::memcpy(coverage + i, &full, sizeof full);
    }
}

// Open pixels that connect by a diagonal only are those that get half.
void coverPlain(const PageReach& reach, const FloodedPage& page, std::int32_t y,
                std::uint8_t* coverage) {
    const BitRow row = reach.filled(y);
    if (row.any()) {
        raiseToFull(row.low, coverage);
        raiseToFull(row.high, coverage + 64);
    }
    const BitRow rest = reach.open(y) & ~row;
    if (!page.smoothEdges || !rest.any()) return;
    const BitRow half = reach.besideTried(y) & rest;
    for (std::int32_t x = half.next(0); x < pageSide; x = half.next(x + 1)) raise(coverage[x], 127);
}

void coverByDistance(const PageReach& reach, const FloodedPage& page, std::int32_t y,
                     std::uint8_t* coverage) {
    const BitRow inside = BitRow::range(page.inside.x, page.inside.endX());
    const BitRow whole = reach.tried(y) & inside;
    const BitRow half = page.smoothEdges ? reach.besideTried(y) & inside & ~whole : BitRow{};
    if (!whole.any() && !half.any()) return;
    Line line;
    measure(page, y, 1, line.data());
    for (std::int32_t x = whole.next(0); x < pageSide; x = whole.next(x + 1))
        raise(coverage[x], page.table[line[static_cast<std::size_t>(x)]]);
    for (std::int32_t x = half.next(0); x < pageSide; x = half.next(x + 1))
        raise(coverage[x], page.table[line[static_cast<std::size_t>(x)]] / 2);
}

}  // namespace

std::unique_ptr<PageReach> openPixels(const FloodedPage& page) {
    std::unique_ptr<PageReach> reach(new (std::nothrow) PageReach);
    if (!reach) return reach;
    Words open;
    reach->setPlain(!findOpen(page, open));
    const BitRow inside = BitRow::range(page.inside.x, page.inside.endX());
    for (std::int32_t y = page.inside.y; y < page.inside.endY(); ++y) {
        BitRow row = rowOf(open, y) & inside;
        if (page.coverage) row = row & uncovered(page, y);
        reach->setOpen(y, row);
    }
    return reach;
}

void coverReached(const PageReach& reach, const FloodedPage& page) {
    for (std::int32_t y = page.inside.y; y < page.inside.endY(); ++y) {
        std::uint8_t* const coverage = page.coverage + static_cast<std::size_t>(y) * pageSide;
        if (reach.isPlain())
            coverPlain(reach, page, y, coverage);
        else
            coverByDistance(reach, page, y, coverage);
    }
}

}  // namespace brushwork
