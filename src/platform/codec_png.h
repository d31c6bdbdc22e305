// PNG files, over libpng.
//
// Reading takes every colour type and depth, interlaced or not, with or without a transparent
// colour or palette alpha; 16-bit samples are rounded to 8. Gamma, colour profiles and texts are
// passed over unread. A file is refused if a check sum of its picture data is wrong or any of that
// data is missing; only what follows the whole picture data may be cut off.
//
// Memory: a block of rows; for interlaced files one buffer of width * height * 4 bytes.
//
// Writing gives 8 bits a sample: red, green, blue, and alpha only if some pixel is not opaque. The
// source is read once for that question and once for the pixels.
#pragma once

#include "platform/codec.h"

namespace brushwork::platform {

[[nodiscard]] const Codec& pngCodec();

}  // namespace brushwork::platform
