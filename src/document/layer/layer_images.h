// LayerImages: the pixels of a layer.
#pragma once

#include <vector>

#include "brushwork/ref.h"
#include "image/chain/il_image.h"

namespace brushwork {

struct LayerImages {
    Ref<ilImage> color;    // smart
    Ref<ilImage> stencil;  // smart, 1 channel: attenuates the colour; 255 passes everything
    // The stencil layers above, combined; null when they let all through. A fill other than 255
    // attenuates all that lies beyond its pixels.
    Ref<ilImage> clip;
    bool clipDirty = true;
    Ref<ilImage> source;  // set by the facade and copied with the layer
    // Scratch copies, one a level number; level 0 is the image itself.
    std::vector<Ref<ilImage>> levels, wetLevels;
};

}  // namespace brushwork
