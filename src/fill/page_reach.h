// PageReach: which pixels of one page a flood has reached, found by whole rows of bits.
//
//     const PageBorderBitMask out = reach->run(waves, front);
//
// Kept while the flood lasts, so that a page that it enters a hundred times is looked at once.
#pragma once

#include <array>
#include <cstdint>

#include "fill/bit_row.h"
#include "fill/flood_fill_wave.h"
#include "fill/page_border_bit_mask.h"
#include "image/cache/smart_page.h"

namespace brushwork {

class PageReach {
  public:
    // Places that were reached and not yet looked at, and the rows that have some. Empty between
    // runs; all pages of a flood use the same, since clearing one would take longer than most runs.
    struct Front {
        std::array<BitRow, pageSide> seeds{};
        BitRow rows;

        void add(std::int32_t y, BitRow row) {
            seeds[static_cast<std::size_t>(y)] |= row;
            rows.set(y);
        }
    };

    // Before the first wave: the pixels of row y that a flood can pass.
    void setOpen(std::int32_t y, BitRow row) { open_[static_cast<std::size_t>(y)] = row; }
    [[nodiscard]] BitRow open(std::int32_t y) const { return open_[static_cast<std::size_t>(y)]; }
    // Whether coverage is 255 in every open pixel and 0 in every other, so that nothing but the
    // reached pixels decides it. For who covers the page; true unless set.
    void setPlain(bool plain) { plain_ = plain; }
    [[nodiscard]] bool isPlain() const { return plain_; }

    // Spreads what enters with the waves. One from another page stands a pixel outside this one;
    // one that starts inside stands on pixels that are reached, open or not. Answers the pixels of
    // the border that were reached by it, at each side that they lie at, but those that came in
    // there.
    [[nodiscard]] PageBorderBitMask run(const FloodFillWaves& waves, Front& front);

    // Reached pixels of row y.
    [[nodiscard]] BitRow filled(std::int32_t y) const {
        return filled_[static_cast<std::size_t>(y)];
    }
    // Those and all that were tried: neighbours in the four directions.
    [[nodiscard]] BitRow tried(std::int32_t y) const;
    // Those beside a tried pixel, across the direction in which it was tried.
    [[nodiscard]] BitRow besideTried(std::int32_t y) const;

  private:
    void enter(Front& front, const FloodFillWave& wave);
    void start(Front& front, std::int32_t x, std::int32_t y);
    template <std::int32_t step>
    void sweep(Front& front);
    void noteSides(std::int32_t y, BitRow added);
    [[nodiscard]] BitRow openIn(std::int32_t y, BitRow row) const {
        const auto index = static_cast<std::size_t>(y);
        return row & open_[index] & ~filled_[index];
    }
    [[nodiscard]] BitRow entered(std::int32_t y) const;
    [[nodiscard]] BitRow filledAround(std::int32_t y) const;

    std::array<BitRow, pageSide> open_{};
    std::array<BitRow, pageSide> filled_{};
    PageBorderBitMask entered_;  // through each side since the beginning
    PageBorderBitMask left_;     // in this run
    bool plain_ = true;
};

}  // namespace brushwork
