// The coverage of a box with a soft border: 255 inside, falling to 0 outwards.
#pragma once

#include <cstdint>

#include "brushwork/il_tile.h"
#include "brushwork/ref.h"
#include "image/work/il_memory_img.h"

namespace brushwork {

// One channel, of the box widened by `border` pixels on each side, whose corner is the image's. At
// distance n from the box, 1 to border, the coverage is 255 * (border + 1 - n) / (border + 1),
// truncated; around corners the larger distance counts. Null for an empty box, a negative border
// or without memory.
[[nodiscard]] Ref<ilMemoryImg> softEdgeBox(const ilTile& box, std::int32_t border);

}  // namespace brushwork
