#include "brushwork/bridge_client.h"

#include <new>

#include "bridge/bridge_exchange.h"
#include "bridge/client/picture_transfer.h"

namespace brushwork {

using znString::CString;
using znString::IString;

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

void setBridgeProgram(const IString& path) {
    setBridgeProgramPath(path);
}

}  // namespace brushwork
