// ModalModes: brush modes that an edit puts aside while it runs.
#pragma once

namespace brushwork {

struct ModalModes {
    bool textureBrushOn = false, patternBrushOn = false;

    void enter();
    void leave();

  private:
    bool savedTexture_ = false, savedPattern_ = false;
    int depth_ = 0;  // only the outermost entry remembers
};

}  // namespace brushwork
