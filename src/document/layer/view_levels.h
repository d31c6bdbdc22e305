// ViewLevels: reduced copies of an image, made on demand and keyed on its change count.
#pragma once

#include <cstdint>
#include <vector>

#include "brushwork/ref.h"
#include "image/chain/il_image.h"
#include "image/smart/il_smart_image.h"

namespace brushwork {

// The largest block, of 16, 8, 4, 2 and 1 pixels a side, whose mean is still no coarser than the
// scale. Below 1/16 it is 16, and 1 for what is no positive number.
[[nodiscard]] std::int32_t reducingBlock(float scale);
// The image with each block, counted from pixel (0, 0), as one pixel: its mean, cut off. Empty
// ground stays empty. Null for other blocks and without memory.
[[nodiscard]] Ref<ilSmartImage> reducedCopy(ilSmartImage& source, std::int32_t block);

class ViewLevels {
  public:
    // Whether the levels were made from this image at this count.
    [[nodiscard]] bool isCurrent(const ilImage* source, std::uint64_t changeCount) const;
    // Drops all levels and remembers what the next ones are made from.
    void restart(ilImage* source, std::uint64_t changeCount);
    void clear();
    // The smallest level that is at least `scale` of the source: 1 (null: the source itself), 1/2,
    // 1/4, 1/8, 1/16. `levelScale` gets its scale. Pixel (0, 0) of a level begins where that of the
    // source does. Without memory the source itself.
    [[nodiscard]] Ref<ilSmartImage> level(float scale, float& levelScale);

  private:
    Ref<ilImage> source_;
    std::uint64_t changeCount_ = 0;
    std::vector<Ref<ilSmartImage>> levels_;
};

}  // namespace brushwork
