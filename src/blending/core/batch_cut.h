// BatchCut: a large box as batches of at most 256 blocks of 128 x 128 pixels, so that a run holds
// no more pages at a time than that.
//
//     for (BatchCut cut(box); cut.next(batch);) ...
#pragma once

#include <cstdint>

#include "blending/core/work_records.h"

namespace brushwork::npc {

// Blocks are counted from the box's corner. A box of more blocks than fit is cut into 16 x 16 of
// them if both its sides are longer than that, else across its longer side only, as wide as fits.
// Batches come row by row; a last row that is lower takes wider ones.
class BatchCut {
  public:
    static constexpr std::int64_t block = 128;
    static constexpr std::int64_t mostBlocks = 256;

    explicit BatchCut(const WideBox& box);
    // False at the end.
    [[nodiscard]] bool next(WideBox& batch);

  private:
    WideBox box_;
    std::int64_t width_ = 0, height_ = 0;  // pixels of a full batch
    std::int64_t x_, y_;
};

}  // namespace brushwork::npc
