// The edge of an image of one channel, which a selection shows as its marching outline.
#pragma once

#include "brushwork/ref.h"
#include "image/smart/il_smart_image.h"

namespace brushwork {

// A new image of one channel: 255 where a pixel of at least 128 has a neighbour below that in one
// of the four directions, 0 elsewhere. What the mask shows beyond its bounds counts, so that a
// selection without end has no outer edge. The outline lies at the mask's coordinates, and its
// bounds are tight. Costs a fixed time for each page of the mask that is one value with its
// surroundings. Null for a mask of other than one channel.
[[nodiscard]] Ref<ilSmartImage> maskOutline(ilSmartImage& mask);

}  // namespace brushwork
