// Whole canvases, and one layer, turned and mirrored.
#pragma once

#include <cstdint>

#include "brushwork/progress.h"
#include "document/stack/layer_stack.h"

namespace brushwork {

// By 90 degrees, `other` the other way. Canvases with a surface of the host's keep their size.
void rotateWholeCanvas(LayerStack& stack, bool other, znUtil::Progress* progress);
// About the middle of its own box.
void rotateOneLayer(LayerStack& stack, std::int32_t id, bool other);
void flipWholeCanvas(LayerStack& stack, bool horizontal, bool vertical);

}  // namespace brushwork
