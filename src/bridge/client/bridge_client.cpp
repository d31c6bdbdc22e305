#include "brushwork/bridge_client.h"

#include <algorithm>
#include <new>
#include <vector>

#include "bridge/bridge_exchange.h"
#include "bridge/client/picture_transfer.h"
#include "bridge/pixel_order.h"

namespace brushwork {

using znString::CString;
using znString::IString;

namespace {

// From the helper's order and alpha to those of layers, in place, some rows at a time.
bool toLayerForm(ilSmartImage& image, const OpenedPixels& opened) {
    constexpr std::int32_t rowsAtOnce = 128;
    const bool straight = !arrivesPremultiplied(opened.format.view());
    const std::int32_t width = opened.params.width, height = opened.params.height;
    std::vector<std::uint8_t> band(std::size_t{4} * static_cast<std::size_t>(width) * rowsAtOnce);
    for (std::int32_t y = 0; y < height; y += rowsAtOnce) {
        const ilTile rows = flatTile(0, y, width, std::min(rowsAtOnce, height - y));
        const std::size_t count =
            static_cast<std::size_t>(width) * static_cast<std::size_t>(rows.ny);
        if (image.readRegion(rows, band.data(), rows) != ImageOk) return false;
        swapRedAndBlue(band.data(), count);
        if (straight) premultiply(band.data(), count);
        if (image.writeRegion(rows, band.data(), rows) != ImageOk) return false;
    }
    return true;
}

}  // namespace

bool getSizeThroughBridge(const IString& path, std::int32_t& width, std::int32_t& height) try {
    BridgeExchange exchange(u"GetSize");
    if (!exchange.request.setImagePath(path) || !exchange.run()) return false;
    const ImageFileParams& answer = exchange.response.params;
    if (answer.width < 1 || answer.height < 1) return false;
    width = answer.width;
    height = answer.height;
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

Ref<ilSmartImage> openFromFileThroughBridge(const IString& path, const CString&,
                                            ImageFileParams* params) try {
    OpenedPixels opened = openPixelsThroughBridge(path, params ? *params : ImageFileParams());
    if (opened.answered && params) *params = opened.params;
    return opened.image;
} catch (const std::bad_alloc&) {
    return nullptr;
}

bool saveToFileThroughBridge(ilImage* image, const IString& path, const CString& format,
                             const ImageFileParams* params) try {
    if (!image) return false;
    PixelStrips strips{image->width(), image->height(), image->channels(), {}};
    ilImageConfig config(TypeUChar, OrderInterleaved, strips.channels);
    config.coordSpace = SpaceLowerLeft;
    strips.read = [&](std::int32_t y, std::int32_t count, std::uint8_t* pixels) {
        const ilTile rows = flatTile(0, y, strips.width, count);
        return image->readRegion(rows, pixels, rows, &config) == ImageOk;
    };
    return savePixelsThroughBridge(strips, path, format, params ? *params : ImageFileParams());
} catch (const std::bad_alloc&) {
    return false;
}

ImageRef openPictureThroughBridge(const IString& path, ImageFileParams* params) try {
    const OpenedPixels opened = openPixelsThroughBridge(path);
    if (!opened.image || opened.params.channels != 4 || !toLayerForm(*opened.image, opened))
        return {};
    if (params) *params = opened.params;
    return ImageRef(opened.image.get());
} catch (const std::bad_alloc&) {
    return {};
}

bool savePictureThroughBridge(const ImageRef& image, std::int32_t width, std::int32_t height,
                              const IString& path, const CString& format,
                              const ImageFileParams* params) try {
    if (image.channels() != 4 || width < 1 || height < 1) return false;
    PixelStrips strips{width, height, 4, {}};
    strips.read = [&](std::int32_t y, std::int32_t count, std::uint8_t* pixels) {
        const std::size_t pixelCount =
            static_cast<std::size_t>(width) * static_cast<std::size_t>(count);
        if (!image.read(flatTile(0, y, width, count), pixels)) return false;
        unpremultiply(pixels, pixelCount);
        swapRedAndBlue(pixels, pixelCount);
        return true;
    };
    return savePixelsThroughBridge(strips, path, format, params ? *params : ImageFileParams());
} catch (const std::bad_alloc&) {
    return false;
}

void setBridgeProgram(const IString& path) {
    setBridgeProgramPath(path);
}

}  // namespace brushwork
