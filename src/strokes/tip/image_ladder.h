// Reduced copies of an image, large to small, from which a stamp takes one near its size.
#pragma once

#include <vector>

#include "brushwork/ref.h"
#include "image/chain/il_image.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork {

// Level 0 is the source. The same image may stand in it several times.
using ImageLadder = std::vector<Ref<ilImage>>;

// The whole image at the two factors, bilinearly, in bytes. Null if it can't be read, if nothing is
// left of it, if there is no memory, or unless it has 1 or 4 channels.
[[nodiscard]] Ref<ilSPMemoryImg> reducedCopy(ilImage& image, float scaleX, float scaleY);

// The levels for an image: it alone if its shorter side is above 1024 pixels or its longer one is
// 1, else also copies by roots of one half on one axis or both, round by round down to about three
// pixels. Ends early where a copy can't be made.
[[nodiscard]] ImageLadder imageLadderOf(const Ref<ilImage>& image);

// The level to use for a stamp of this size, in pixels; null from an empty ladder. 0 by 0 asks for
// the source. The search halves the ladder by width and height together; where the two disagree it
// takes the smallest level that is large enough on both axes, or the source.
[[nodiscard]] Ref<ilImage> ladderLevel(const ImageLadder& levels, std::int32_t width,
                                       std::int32_t height);

}  // namespace brushwork
