// Pictures between files and the engine, through the helper process.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "brushwork/image_ref.h"
#include "tools/exit_codes.h"

namespace brushwork::tools {

struct PictureFault {
    ExitCode code = ExitFailed;
    std::string message;
};

// Of 4 channels in the engine's order and premultiplied, or, as a mask, of 1 channel: alpha times
// lightness. The corner lies at 0, 0.
enum class PictureUse { Colors, Mask };
[[nodiscard]] std::optional<PictureFault> readPicture(const std::string& path, PictureUse use,
                                                      ImageRef& picture);

// "PNG", ... by the ending of the name; empty for an unknown one.
[[nodiscard]] std::string pictureFormatOf(const std::string& path);

// What is wrong with a name whose ending tells no format.
[[nodiscard]] std::optional<PictureFault> endingFault(const std::string& path);

// Pixels as PaintManager reads them out; they are changed. `quality` 0 to 100, for JPEG.
[[nodiscard]] std::optional<PictureFault> writePicture(const std::string& path, std::int32_t width,
                                                       std::int32_t height,
                                                       std::vector<std::uint8_t>& pixels,
                                                       std::optional<std::int32_t> quality);

}  // namespace brushwork::tools
