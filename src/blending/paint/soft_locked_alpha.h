// SoftLockedAlpha: the alpha of a stretch of the target, kept while something is drawn over it and
// given back afterwards.
//
//     SoftLockedAlpha kept;
//     kept.save(target, low, stretch);
//     ... draw over the stretch ...
//     kept.restore(target, low);
#pragma once

#include <cstdint>

#include "brushwork/il_tile.h"
#include "brushwork/ref.h"
#include "image/work/il_memory_img.h"

namespace brushwork {

class SoftLockedAlpha {
  public:
    // Copies the stretch of a 4-channel target, and of the plane of its low bytes, if there is one.
    // False, with nothing kept, for an empty stretch, another target, or without memory.
    bool save(ilImage& target, ilImage* low, const ilTile& stretch);
    // Gives each pixel of the stretch its former 16-bit alpha s. With c the present one, a colour v
    // becomes (v * k) >> 16 of the lower 32 bits, k = s * 65536 / c; a pixel of c = 0 stays.
    // Without a low plane low bytes count as 0. Both copies are let go. False if nothing was kept,
    // or the pixels could not be read or written.
    bool restore(ilImage& target, ilImage* low);
    [[nodiscard]] bool isKept() const { return static_cast<bool>(high_); }

  private:
    ilTile stretch_;
    Ref<ilMemoryImg> high_;
    Ref<ilMemoryImg> low_;
};

}  // namespace brushwork
