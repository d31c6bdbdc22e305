// LayerImages: the pixels of a layer.
#pragma once

#include <vector>

#include "brushwork/il_tile.h"
#include "brushwork/ref.h"
#include "image/chain/il_image.h"

namespace brushwork {

struct LayerImages {
    Ref<ilImage> color;    // smart
    Ref<ilImage> stencil;  // smart, 1 channel: attenuates the colour; 255 passes everything
    Ref<ilImage> clip;     // the stencil layers above, combined; null when they let all through
    bool clipDirty = true;
    // A stencil above holds back beyond its box, too: the clip image serves in this box of the
    // layer's pixels alone. Empty: anywhere.
    ilTile clipReach;
    Ref<ilImage> source;  // set by the facade and copied with the layer
    // Scratch copies, one a level number; level 0 is the image itself.
    std::vector<Ref<ilImage>> levels, wetLevels;
};

}  // namespace brushwork
