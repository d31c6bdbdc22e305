// The screen block: one picture of the screen's size that all stacks show their canvas on in turn.
//
//     image = screenBlock(plane.nx, plane.ny);  // before each frame: the screen may have changed
#pragma once

#include <cstdint>

#include "brushwork/ref.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork {

// Four channels of the size that the host tells; the size given here where it doesn't tell one.
// Made on first use and the same until another size is told; then a new one, and the old goes when
// its last holder lets go. Not cleared. Null for a size below 1 or beyond 32767 and without memory.
// Document's thread only.
[[nodiscard]] Ref<ilSPMemoryImg> screenBlock(std::int32_t width, std::int32_t height);
// Lets go of the block, for a host that closes its last document.
void dropScreenBlock();

}  // namespace brushwork
