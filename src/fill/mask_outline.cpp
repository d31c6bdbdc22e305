#include "fill/mask_outline.h"

#include <array>
#include <memory>
#include <new>

#include "fill/bit_row.h"
#include "fill/color_distance.h"
#include "image/smart/smart_page_table.h"

namespace brushwork {
namespace {

// A page and a pixel more on each side, in rows.
constexpr std::int32_t frameSide = pageSide + 2;
constexpr std::uint32_t leastSelected = 128;

struct Frame {
    std::array<std::uint8_t, std::size_t{frameSide} * frameSide> values;
    std::array<std::uint8_t, pagePixels> edges;

    [[nodiscard]] const std::uint8_t* row(std::int32_t y) const {
        return values.data() + static_cast<std::size_t>(y + 1) * frameSide;
    }
};

// Row y of the page, -1 to 128.
BitRow selectedRow(const Frame& frame, std::int32_t y) {
    std::uint32_t bits[4];
    distanceKernels().below(frame.row(y) + 1, pageSide, leastSelected, bits);
    return ~BitRow{bits[0] | std::uint64_t{bits[1]} << 32, bits[2] | std::uint64_t{bits[3]} << 32};
}

BitRow bit(std::int32_t index, bool on) {
    BitRow row;
    if (on) row.set(index);
    return row;
}

// Whether there is an edge at all.
bool findEdges(Frame& frame) {
    bool any = false;
    frame.edges.fill(0);
    BitRow above = selectedRow(frame, -1);
    BitRow row = selectedRow(frame, 0);
    for (std::int32_t y = 0; y < pageSide; ++y) {
        const BitRow below = selectedRow(frame, y + 1);
        const std::uint8_t* const values = frame.row(y);
        const BitRow before = row.up() | bit(0, values[0] >= leastSelected);
        const BitRow after = row.down() | bit(pageSide - 1, values[pageSide + 1] >= leastSelected);
        const BitRow edge = row & ~(before & after & above & below);
        for (std::int32_t x = edge.next(0); x < pageSide; x = edge.next(x + 1))
            frame.edges[static_cast<std::size_t>(y * pageSide + x)] = 255;
        any = any || edge.any();
        above = row;
        row = below;
    }
    return any;
}

}  // namespace

Ref<ilSmartImage> maskOutline(ilSmartImage& mask) {
    if (mask.channels() != 1) return {};
    const Ref<ilSmartImage> outline(new ilSmartImage(ilPixel(TypeUChar, 1)));
    const std::unique_ptr<Frame> frame(new (std::nothrow) Frame);
    if (!frame) return {};
    ilTile box;
    mask.bounds(box);
    // A hole in a selection without end has its edge just outside the bounds.
    box = clippedToLimit(flatTile(box.x - 1, box.y - 1, box.nx + 2, box.ny + 2));
    for (std::int32_t y = box.y & pageMask; y < box.endY(); y += pageSide) {
        for (std::int32_t x = box.x & pageMask; x < box.endX(); x += pageSide) {
            const ilTile tile = flatTile(x, y, pageSide, pageSide);
            const ilTile around = flatTile(x - 1, y - 1, frameSide, frameSide);
            std::uint32_t value = 0;
            if (mask.isSolid(around, value, false)) continue;
            if (mask.readRegion(around, frame->values.data(), around) != ImageOk) return {};
            if (findEdges(*frame)) outline->writeRegion(tile, frame->edges.data(), tile);
        }
    }
    outline->shrinkBounds();
    return outline;
}

}  // namespace brushwork
