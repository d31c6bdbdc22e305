// Palette pictures for the platform's GIF encoder. What it makes of a true-colour one is a fixed
// palette at best, and on some systems no whole file.
#pragma once

#include "platform/imaging.h"
#include "platform/imaging_gdiplus_calls.h"

namespace brushwork::platform::gdiplus {

// The request's picture with 8-bit indices. Pixels below half opacity are the one transparent
// entry. Aborted if the source fails or gives other rows the second time.
[[nodiscard]] ImagingStatus makePaletteBitmap(const EncodeRequest& request, BitmapOwner& bitmap);

}  // namespace brushwork::platform::gdiplus
