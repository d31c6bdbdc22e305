// Thumbnail: a layer's small preview and what it was made for.
#pragma once

#include <cstdint>

#include "brushwork/il_tile.h"
#include "brushwork/ref.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork {

struct Thumbnail {
    static constexpr std::int32_t leastSize = 16, mostSize = 256;

    Ref<ilSPMemoryImg> image;
    std::int32_t width = 50, height = 40;  // requested
    bool dirty = true;
    ilTile bounds{0, 0, 0, 0, 0, 1};  // the box last shown
    std::int32_t offsetX = 0, offsetY = 0;
};

}  // namespace brushwork
