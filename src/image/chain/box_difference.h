// BoxDifference: one box less another, as up to six boxes, one at a time.
#pragma once

#include <cstdint>

#include "brushwork/il_tile.h"

namespace brushwork {

// Cuts slabs off in a fixed order: z end, z start, y end, y start, x end, x start. The pieces don't
// overlap and together with the intersection make up the box. An empty subtrahend gives the whole
// box once; an empty box gives nothing.
//
//     for (BoxDifference rest(box, hole); rest.next(piece);) ...
class BoxDifference {
  public:
    BoxDifference(const ilTile& box, const ilTile& subtrahend);
    [[nodiscard]] bool next(ilTile& piece);

  private:
    ilTile rest_;
    ilTile hole_;
    std::int32_t state_ = 0;
};

}  // namespace brushwork
