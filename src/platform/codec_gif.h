// GIF files, over giflib.
//
// Reading gives the first frame, placed on the logical screen; what the frame doesn't cover and its
// transparent pixels are (0, 0, 0, 0), and so is an index beyond the colour table. Parts of a frame
// outside the screen are cut off, but a screen with a side of 0, or one that is smaller than the
// frame itself, is wrong and grows until it holds the frame. A file without a frame, a frame
// without pixels or colours, and image data that is damaged or cut off are refused; what follows
// the first frame is not looked at.
//
// Memory: a row, whatever the size of the screen or the frame.
//
// Writing gives one frame of at most 256 colours. A picture that has no more is written exactly;
// others get a palette fitted to them, and its error is diffused. A pixel below half opacity
// becomes transparent, any other opaque. The source is read twice. Nothing holds a resolution.
#pragma once

#include "platform/codec.h"

namespace brushwork::platform {

[[nodiscard]] const Codec& gifCodec();

}  // namespace brushwork::platform
