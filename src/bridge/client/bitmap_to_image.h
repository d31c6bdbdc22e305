// A picture of the imaging service as an image in memory, decoded in this process, or by the helper
// when this process can't.
#pragma once

#include "bridge/bitmap.h"
#include "brushwork/c_string.h"
#include "brushwork/i_string.h"
#include "brushwork/image_file_params.h"
#include "brushwork/ref.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork {

enum class Fallback { Allowed, Forbidden };
enum class PixelAlpha { Straight, Premultiplied };
enum class GreyDetection { Off, On };

struct BitmapToImageOptions {
    Fallback fallback = Fallback::Allowed;
    PixelAlpha alpha = PixelAlpha::Straight;  // PNG is premultiplied all the same
    GreyDetection grey = GreyDetection::Off;
};

// What the file says of itself, filled in only together with an image.
struct BitmapToImageResult {
    Ref<ilSPMemoryImg> image;
    znString::CString format;  // "BMP", "JPEG", "PNG", "GIF", "TIFF", or empty
    ImageFileParams params;    // the two resolutions in dots per inch; all else as made
};

// The image has 4 channels in the engine's order (red, green, blue, alpha) and its bottom row
// first. With grey detection a picture of grey levels has 1 channel, and its top row first: callers
// that want grey pictures upright know that.
//
// Where decoding reports lack of memory or an invalid parameter, and `path` names the file and
// falling back is allowed, the helper decodes it, always to 4 channels, bottom row first and with
// the alpha asked for. The image is null on any other failure, for a null bitmap, and without
// memory for its pixels.
[[nodiscard]] BitmapToImageResult bitmapToImage(Gdiplus::Bitmap* bitmap,
                                                const znString::IString& path,
                                                const BitmapToImageOptions& options = {});

}  // namespace brushwork
