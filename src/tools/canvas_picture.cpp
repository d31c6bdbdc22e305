#include "tools/canvas_picture.h"

#include <exception>
#include <filesystem>

namespace brushwork::tools {

std::optional<PictureFault> makeFolderOf(const std::string& path) {
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    if (!folder.empty()) std::filesystem::create_directories(folder, error);
    if (error) return PictureFault{ExitInputOutput, folder.string() + ": can't be made"};
    return std::nullopt;
}

std::optional<PictureFault> readCanvasPicture(PaintManager& paint, std::int32_t canvas,
                                              CanvasPicture& picture) {
    const ilTile box = paint.canvasBounds(canvas);
    if (!paint.hasCanvas(canvas) || box.isEmpty())
        return PictureFault{ExitFailed, "there is no canvas to take a picture of"};
    picture.width = box.nx;
    picture.height = box.ny;
    try {
        picture.pixels.resize(static_cast<std::size_t>(box.nx) * static_cast<std::size_t>(box.ny) *
                              4);
    } catch (const std::exception&) {
        return PictureFault{ExitLimit, "no memory for the picture of a canvas"};
    }
    if (!paint.readFlatImage(canvas, picture.pixels.data()))
        return PictureFault{ExitFailed, "the picture of a canvas can't be made"};
    return std::nullopt;
}

std::optional<PictureFault> saveCanvasPicture(PaintManager& paint, std::int32_t canvas,
                                              const std::string& path) {
    CanvasPicture picture;
    if (auto fault = readCanvasPicture(paint, canvas, picture)) return fault;
    if (auto fault = makeFolderOf(path)) return fault;
    return writePicture(path, picture.width, picture.height, picture.pixels, std::nullopt);
}

std::string numberedPngPath(const std::string& prefix, std::uint64_t number, std::size_t digits) {
    std::string text = std::to_string(number);
    if (text.size() < digits) text.insert(0, digits - text.size(), '0');
    return prefix + text + ".png";
}

}  // namespace brushwork::tools
