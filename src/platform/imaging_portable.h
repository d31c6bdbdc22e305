// The portable imaging service: our five codecs behind ImagingService.
#pragma once

#include "platform/imaging.h"

namespace brushwork::platform {

// (a * c + 127) / 255 of each colour of `count` pixels, in place. Pixels are B, G, R, A.
void premultiply(std::uint8_t* bgra, std::size_t count);

}  // namespace brushwork::platform
