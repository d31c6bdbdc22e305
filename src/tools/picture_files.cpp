#include "tools/picture_files.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "bridge/pixel_order.h"
#include "brushwork/bridge_client.h"
#include "brushwork/filename.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork::tools {
namespace {

constexpr std::int32_t rowsAtOnce = 64;

struct Ending {
    const char* ending;
    const char* format;
};
constexpr Ending endings[] = {{".png", "PNG"}, {".jpg", "JPEG"}, {".jpeg", "JPEG"}, {".bmp", "BMP"},
                              {".gif", "GIF"}, {".tif", "TIFF"}, {".tiff", "TIFF"}};

// Pictures go to the helper through a file there.
bool temporaryRoomFor(std::uint64_t bytes) {
    const std::filesystem::path folder = znOS::Filename::temporaryDirectory().view();
    std::error_code failed;
    if (!std::filesystem::is_directory(folder, failed)) return false;
    const auto space = std::filesystem::space(folder, failed);
    return failed || space.available >= bytes;
}

// Of a premultiplied pixel, so that alpha has had its share.
std::uint8_t lightness(const std::uint8_t* pixel) {
    return static_cast<std::uint8_t>((pixel[0] * 54 + pixel[1] * 183 + pixel[2] * 19 + 128) >> 8);
}

}  // namespace

std::optional<PictureFault> readPicture(const std::string& path, PictureUse use,
                                        ImageRef& picture) {
    if (!std::ifstream(path)) return PictureFault{ExitInputOutput, path + ": can't be read"};
    ImageFileParams facts;
    const ImageRef opened =
        openPictureThroughBridge(znString::IString(std::string_view(path)), &facts);
    if (!opened)
        return PictureFault{ExitBadInput, path + ": not a picture that can be read, or damaged"};
    const std::int32_t channels = use == PictureUse::Mask ? 1 : 4;
    const auto image = makeRef<ilSPMemoryImg>(facts.width, facts.height, channels);
    if (!image->data()) return PictureFault{ExitLimit, path + ": no memory for the picture"};
    const auto width = static_cast<std::size_t>(facts.width);
    std::vector<std::uint8_t> band(width * 4 * rowsAtOnce);
    for (std::int32_t y = 0; y < facts.height; y += rowsAtOnce) {
        const ilTile rows = flatTile(0, y, facts.width, std::min(rowsAtOnce, facts.height - y));
        if (!opened.read(rows, band.data()))
            return PictureFault{ExitLimit, path + ": no memory for the picture"};
        const std::size_t count = width * static_cast<std::size_t>(rows.ny);
        if (channels == 1)
            for (std::size_t n = 0; n < count; ++n) band[n] = lightness(&band[4 * n]);
        image->writeRegion(rows, band.data(), rows);
    }
    picture = ImageRef(image.get());
    return std::nullopt;
}

std::string pictureFormatOf(const std::string& path) {
    std::string name = path;
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char unit) { return static_cast<char>(std::tolower(unit)); });
    for (const Ending& row : endings)
        if (name.ends_with(row.ending)) return row.format;
    return {};
}

std::optional<PictureFault> endingFault(const std::string& path) {
    if (!pictureFormatOf(path).empty()) return std::nullopt;
    return PictureFault{ExitUsage, path + ": the ending names no format of pictures"};
}

std::optional<PictureFault> writePicture(const std::string& path, std::int32_t width,
                                         std::int32_t height, std::vector<std::uint8_t>& pixels,
                                         std::optional<std::int32_t> quality) {
    if (auto fault = endingFault(path)) return fault;
    const std::string format = pictureFormatOf(path);
    unpremultiply(pixels.data(), pixels.size() / 4);
    swapRedAndBlue(pixels.data(), pixels.size() / 4);
    const ImageRef image = ImageRef::wrap(pixels.data(), width, height, 4);
    ImageFileParams params;
    params.hasQuality = quality ? 1 : 0;
    params.quality = quality.value_or(0);
    if (image && saveToFileThroughBridge(image.image(), znString::IString(std::string_view(path)),
                                         znString::CString(format.c_str()), &params))
        return std::nullopt;
    if (!temporaryRoomFor(pixels.size()))
        return PictureFault{ExitInputOutput, path + ": no room in the temporary directory"};
    return PictureFault{ExitInputOutput, path + ": can't be written as " + format};
}

}  // namespace brushwork::tools
