// WaveLoop: waves inside one page, one pixel at a time. This is what a flood means; `page_reach`
// finds the same pixels by whole rows.
//
// A pixel stops waves if its distance reaches the tolerance or if it was covered before. Coverage
// only rises: a pixel gets that of its distance, and one diagonally beside the filled area, which
// no wave tries itself, half of that where edges are soft. What comes out depends on which pixels
// connect, not on the order in which waves run.
#pragma once

#include <cstdint>

#include "brushwork/il_tile.h"
#include "fill/color_distance.h"
#include "fill/coverage_table.h"
#include "fill/flood_fill_wave.h"
#include "fill/page_border_bit_mask.h"

namespace brushwork {

// A page at hand, with places counted from its own corner.
struct FloodedPage {
    const std::uint8_t* pixels;  // null: `solid` is all pixels' value
    std::uint32_t solid;
    std::uint8_t* coverage;
    ilTile inside;  // what of the page lies in the image
    const ColorTarget& target;
    const CoverageTable& table;
    bool smoothEdges;
};

class WaveLoop {
  public:
    explicit WaveLoop(const FloodedPage& page) : page_(page) {}

    // Until the stack is empty. Answers what left the page through its sides.
    [[nodiscard]] PageBorderBitMask run(FloodFillWaves& waves);

  private:
    void runWave(FloodFillWave& wave);
    [[nodiscard]] bool leaves(std::int32_t x, std::int32_t y);
    [[nodiscard]] bool isInside(std::int32_t x, std::int32_t y) const;
    [[nodiscard]] std::uint8_t coverageFor(std::int32_t x, std::int32_t y) const;
    [[nodiscard]] bool stops(std::int32_t x, std::int32_t y);
    void cut(FloodFillWave& wave, std::int32_t i);
    void coverHalf(const FloodFillWave& wave, std::int32_t i);
    void flush(std::unique_ptr<FloodFillWave>& side);
    [[nodiscard]] std::uint8_t distanceAt(std::int32_t x, std::int32_t y) const;
    [[nodiscard]] std::uint8_t& coverageAt(std::int32_t x, std::int32_t y) const;

    const FloodedPage& page_;
    FloodFillWaves* waves_ = nullptr;
    PageBorderBitMask left_;
};

}  // namespace brushwork
