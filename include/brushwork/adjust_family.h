// AdjustFamily: colour adjustments of a layer.
#pragma once

#include <cstdint>

#include "brushwork/color_adjust_parm.h"
#include "brushwork/export.h"
#include "brushwork/image_ref.h"

namespace brushwork {

struct FacadeState;

class BRUSHWORK_API AdjustFamily {
  public:
    // Without an image the active layer is adjusted, restricted by the selection, with an undo
    // record; else the image itself, without one. False: not of four channels, empty, locked, no
    // paint layer, or the parms change nothing.
    bool colorAdjust(const ImageRef& image, const ColorAdjustParm& parms);

  protected:
    explicit AdjustFamily(FacadeState& state) : state_(state) {}
    AdjustFamily(const AdjustFamily&) = delete;
    AdjustFamily& operator=(const AdjustFamily&) = delete;
    ~AdjustFamily() = default;

  private:
    FacadeState& state_;
};

}  // namespace brushwork
