// Numbers as small blocks of pixels.
#pragma once

#include <cstdint>

#include "image/work/il_sp_memory_img.h"

namespace sheet {

// Draws a number in white on black with its lower left corner at (x, y), 3 pixels to the dot.
void drawNumber(brushwork::ilSPMemoryImg& image, std::int32_t x, std::int32_t y, int number);

}  // namespace sheet
