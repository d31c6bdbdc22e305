// The definition of compositing, for tests: whole layers blended one after another from the bottom
// up, on contiguous pictures of the canvas, by attributes and pixels alone. No tiles, no caches, no
// boxes. Layers above the active one are flattened first while all of them have mode 0, as rounding
// would tell the difference.
#pragma once

#include <cstdint>
#include <vector>

#include "document/stack/layer_stack.h"

namespace brushwork::test {

using Picture = std::vector<std::uint8_t>;  // of the canvas, 4 channels, rows upward

// What the plane has to show.
[[nodiscard]] Picture naivePicture(LayerStack& stack);
// The same without tints and selection.
[[nodiscard]] Picture naiveFlatPicture(LayerStack& stack);
// The layers laid over one another one by one, whichever is the active one.
[[nodiscard]] Picture naivePlainPicture(LayerStack& stack);

}  // namespace brushwork::test
