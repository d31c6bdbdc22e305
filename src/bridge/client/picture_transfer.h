// Pixels to and from the helper, strip by strip, so that no picture stands in memory twice.
#pragma once

#include <cstdint>
#include <functional>

#include "brushwork/c_string.h"
#include "brushwork/i_string.h"
#include "brushwork/image_file_params.h"
#include "brushwork/ref.h"
#include "image/smart/il_smart_image.h"

namespace brushwork {

// What came of opening a picture through the helper.
struct OpenedPixels {
    Ref<ilSmartImage> image;  // null if any of it failed
    bool answered = false;    // the pixels stood there; `params` and `format` are the helper's
    ImageFileParams params;
    znString::IString format;  // "PNG", ...
};

// `params` goes out with the request. Pixels stay as the helper hands them over.
[[nodiscard]] OpenedPixels openPixelsThroughBridge(const znString::IString& path,
                                                   const ImageFileParams& params = {});

// A picture to be saved. `read` fills `count` rows from the row `y` on, bottom row first, each of
// width * channels bytes, and answers whether it could; rows are asked for in order, once.
struct PixelStrips {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t channels = 0;
    std::function<bool(std::int32_t y, std::int32_t count, std::uint8_t* pixels)> read;
};

[[nodiscard]] bool savePixelsThroughBridge(const PixelStrips& strips, const znString::IString& path,
                                           const znString::CString& format,
                                           const ImageFileParams& params = {});

}  // namespace brushwork
