#include "facade/modal_modes.h"

namespace brushwork {

void ModalModes::enter() {
    if (depth_++ > 0) return;
    savedTexture_ = textureBrushOn;
    savedPattern_ = patternBrushOn;
    textureBrushOn = patternBrushOn = false;
}

void ModalModes::leave() {
    if (depth_ == 0 || --depth_ > 0) return;
    textureBrushOn = savedTexture_;
    patternBrushOn = savedPattern_;
}

}  // namespace brushwork
