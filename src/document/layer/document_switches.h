// Process-wide switches of compositing, drawing and the paint mask. Document's thread only.
#pragma once

#include <array>

namespace brushwork {

struct DocumentSwitches {
    bool compositeCacheEnabled = true;  // off: nothing is cached, invalidation only tells the host
    bool paintMaskBlocked = false;      // rebuildPaintMask does nothing
    bool displaySuspended = false;      // the host has taken over the display
    bool bypassDisplay = false;
    bool undoRan = false;  // set by each undo and redo, for the host to read and clear
    std::array<float, 4> globalBackground{1.0f, 1.0f, 1.0f, 1.0f};  // red, green, blue, alpha
};

[[nodiscard]] DocumentSwitches& documentSwitches();

}  // namespace brushwork
