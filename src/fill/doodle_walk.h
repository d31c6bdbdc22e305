// DoodleWalk: a flood that climbs. It goes over what has the target's colour, and up any ramp that
// leads away from it to the crest, however high that is; there it stops.
//
// Each pixel that it comes over is marked: 255 within the tolerance, less with the distance beyond
// it, 1 at least.
#pragma once

#include <cstdint>
#include <deque>

#include "fill/color_distance.h"
#include "fill/fill_surface.h"
#include "fill/flood_fill.h"

namespace brushwork {

class DoodleWalk {
  public:
    // Reads `source`, marks in `mask`, a grey surface of 0s, within the clip. Distances up to
    // `tolerance` count as 0 for the walk on four channels.
    DoodleWalk(FillSurface& source, FillSurface& mask, const FloodBox& clip,
               const ColorTarget& target, std::int32_t tolerance);

    // From a seed within the clip. Without memory the walk ends early.
    void run(std::int32_t x, std::int32_t y);
    // The box of all marks.
    [[nodiscard]] const FloodBox& dirty() const { return dirty_; }

  private:
    struct Seed {
        std::int32_t x, y;
    };

    [[nodiscard]] std::int32_t distance(std::int32_t x, std::int32_t y);
    // As the walk sees it.
    [[nodiscard]] std::int32_t height(std::int32_t x, std::int32_t y);
    [[nodiscard]] bool isMarked(std::int32_t x, std::int32_t y);
    void mark(std::int32_t x, std::int32_t y);
    [[nodiscard]] std::int32_t grow(std::int32_t x, std::int32_t y, std::int32_t step,
                                    std::int32_t end);
    void seedRow(std::int32_t left, std::int32_t right, std::int32_t from, std::int32_t y);

    FillSurface& source_;
    FillSurface& mask_;
    FloodBox clip_;
    ColorTarget target_;
    std::int32_t tolerance_;
    std::deque<Seed> seeds_;
    FloodBox dirty_;
};

}  // namespace brushwork
