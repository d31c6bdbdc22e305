// Switches of all strokes of the process. The stroke's thread reads them; set them between strokes.
#pragma once

#include <cstdint>

namespace brushwork {

// 1 if y grows downward for the one who looks: angles then turn the other way round. 0 at first.
[[nodiscard]] std::int32_t yFlipMode();
void setYFlipMode(std::int32_t mode);

}  // namespace brushwork
