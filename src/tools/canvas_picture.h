// The flat picture of a canvas, as exports want it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "brushwork/paint_manager.h"
#include "tools/picture_files.h"

namespace brushwork::tools {

// Premultiplied red, green, blue, alpha; row 0 at the bottom.
struct CanvasPicture {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<std::uint8_t> pixels;
};

// Makes the folders in front of a path that are missing.
[[nodiscard]] std::optional<PictureFault> makeFolderOf(const std::string& path);

// All layers of a canvas, whether it is in front or not.
[[nodiscard]] std::optional<PictureFault> readCanvasPicture(PaintManager& paint,
                                                            std::int32_t canvas,
                                                            CanvasPicture& picture);
// The same into a file; the ending names the format. Folders that are missing are made.
[[nodiscard]] std::optional<PictureFault> saveCanvasPicture(PaintManager& paint,
                                                            std::int32_t canvas,
                                                            const std::string& path);
// `prefix`, the number with leading zeros, and ".png": what programs that join pictures to films
// sort by.
[[nodiscard]] std::string numberedPngPath(const std::string& prefix, std::uint64_t number,
                                          std::size_t digits);

}  // namespace brushwork::tools
