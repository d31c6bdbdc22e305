#include "tools/picture_files.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <fstream>

#include "bridge/pixel_order.h"
#include "brushwork/bridge_client.h"
#include "image/smart/il_smart_image.h"
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

// The helper hands PNG over premultiplied, all else straight.
bool beginsAsPng(const std::string& path) {
    constexpr std::array<char, 4> mark{'\x89', 'P', 'N', 'G'};
    std::array<char, 4> bytes{};
    std::ifstream file(path, std::ios::binary);
    return file.read(bytes.data(), bytes.size()) && bytes == mark;
}

// Of a premultiplied pixel, so that alpha has had its share.
std::uint8_t lightness(const std::uint8_t* pixel) {
    return static_cast<std::uint8_t>((pixel[0] * 54 + pixel[1] * 183 + pixel[2] * 19 + 128) >> 8);
}

}  // namespace

std::optional<PictureFault> readPicture(const std::string& path, PictureUse use,
                                        ImageRef& picture) {
    if (!std::ifstream(path)) return PictureFault{ExitInputOutput, path + ": can't be read"};
    const Ref<ilSmartImage> opened =
        openFromFileThroughBridge(znString::IString(std::string_view(path)), {}, nullptr);
    if (!opened)
        return PictureFault{ExitBadInput, path + ": not a picture that can be read, or damaged"};
    ilTile box;
    opened->bounds(box);
    box = unionOf(box, flatTile(0, 0, 1, 1));
    const bool premultiplied = beginsAsPng(path);
    const std::int32_t channels = use == PictureUse::Mask ? 1 : 4;
    const auto image = makeRef<ilSPMemoryImg>(box.endX(), box.endY(), channels);
    if (!image->data()) return PictureFault{ExitLimit, path + ": no memory for the picture"};
    const auto width = static_cast<std::size_t>(box.endX());
    std::vector<std::uint8_t> band(width * 4 * rowsAtOnce);
    for (std::int32_t y = 0; y < box.endY(); y += rowsAtOnce) {
        const ilTile rows = flatTile(0, y, box.endX(), std::min(rowsAtOnce, box.endY() - y));
        opened->readRegion(rows, band.data(), rows);
        const std::size_t count = width * static_cast<std::size_t>(rows.ny);
        swapRedAndBlue(band.data(), count);
        if (!premultiplied) premultiply(band.data(), count);
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

std::optional<PictureFault> writePicture(const std::string& path, std::int32_t width,
                                         std::int32_t height, std::vector<std::uint8_t>& pixels,
                                         std::optional<std::int32_t> quality) {
    const std::string format = pictureFormatOf(path);
    if (format.empty())
        return PictureFault{ExitUsage, path + ": the ending names no format of pictures"};
    unpremultiply(pixels.data(), pixels.size() / 4);
    swapRedAndBlue(pixels.data(), pixels.size() / 4);
    const ImageRef image = ImageRef::wrap(pixels.data(), width, height, 4);
    ImageFileParams params;
    params.hasQuality = quality ? 1 : 0;
    params.quality = quality.value_or(0);
    if (image && saveToFileThroughBridge(image.image(), znString::IString(std::string_view(path)),
                                         znString::CString(format.c_str()), &params))
        return std::nullopt;
    return PictureFault{ExitInputOutput, path + ": can't be written as " + format};
}

}  // namespace brushwork::tools
