#include "bridge/client/picture_transfer.h"

#include <algorithm>
#include <memory>
#include <new>

#include "bridge/bridge_exchange.h"
#include "bridge/raw_pixel_file.h"
#include "platform/swap_io.h"

namespace brushwork {

namespace {

using platform::PositionedFile;
using znString::IString;
using Strip = std::unique_ptr<std::uint8_t[]>;

constexpr std::int32_t stripRows = 256;
// The widest picture that a smart image holds when its corner lies at 0, 0.
constexpr std::int32_t largestSide = coordinateLimit;
// The pixel file gives each pixel of a strip this many bytes, whatever its channels.
constexpr std::int32_t bytesRead = 4;

bool isHolding(const ImageFileParams& params) {
    return params.width >= 1 && params.width <= largestSide && params.height >= 1 &&
           params.height <= largestSide && (params.channels == 1 || params.channels == 4);
}

// Null unless every row arrives.
Ref<ilSmartImage> readImage(PositionedFile& file, const ImageFileParams& params) {
    if (!isHolding(params)) return nullptr;
    const auto bytes = pixelFileBytes(params.width, params.height, bytesRead);
    if (!bytes || file.size() < *bytes) return nullptr;
    const std::size_t rowBytes = static_cast<std::size_t>(params.width) * bytesRead;
    const std::int32_t fullRows = std::min(stripRows, params.height);
    const Strip strip(new (std::nothrow)
                          std::uint8_t[rowBytes * static_cast<std::size_t>(fullRows)]);
    if (!strip) return nullptr;

    Ref<ilSmartImage> image(new ilSmartImage(ilPixel(TypeUChar, params.channels)));
    for (std::int32_t y = 0; y < params.height; y += stripRows) {
        const std::int32_t rows = std::min(stripRows, params.height - y);
        const std::size_t count = rowBytes * static_cast<std::size_t>(rows);
        if (file.readAt(static_cast<std::uint64_t>(y) * rowBytes, strip.get(), count) != count)
            return nullptr;
        const ilTile box = flatTile(0, y, params.width, rows);
        if (image->writeRegion(box, strip.get(), box) != ImageOk) return nullptr;
    }
    return image;
}

bool writeStrips(const IString& path, const PixelStrips& strips, std::size_t rowBytes) {
    PositionedFile file;
    if (!file.open(path.view(), PositionedFile::Mode::CreateNew)) return false;
    const std::int32_t fullRows = std::min(stripRows, strips.height);
    const Strip strip(new (std::nothrow)
                          std::uint8_t[rowBytes * static_cast<std::size_t>(fullRows)]);
    if (!strip) return false;
    for (std::int32_t y = 0; y < strips.height; y += stripRows) {
        const std::int32_t rows = std::min(stripRows, strips.height - y);
        if (!strips.read(y, rows, strip.get()) ||
            !file.writeAt(static_cast<std::uint64_t>(y) * rowBytes, strip.get(),
                          rowBytes * static_cast<std::size_t>(rows)))
            return false;
    }
    return file.close();
}

}  // namespace

OpenedPixels openPixelsThroughBridge(const IString& path, const ImageFileParams& params) {
    OpenedPixels opened;
    BridgeExchange exchange(u"OpenFromFile", params);
    if (!exchange.request.setImagePath(path) || !exchange.run()) return opened;

    const IString pixelsPath(fieldText(exchange.response.pixelsPath));
    PositionedFile file;
    if (!file.open(pixelsPath.view(), PositionedFile::Mode::Read)) return opened;
    ExchangeFile pixels;
    pixels.take(pixelsPath);
    opened.answered = true;
    opened.params = exchange.response.params;
    opened.format = IString(fieldText(exchange.response.format));
    opened.image = readImage(file, opened.params);
    file.close();
    return opened;
}

bool savePixelsThroughBridge(const PixelStrips& strips, const IString& path,
                             const znString::CString& format, const ImageFileParams& params) {
    const auto rowBytes = pixelFileBytes(strips.width, 1, strips.channels);
    if (!rowBytes || strips.height < 1 || *rowBytes > SIZE_MAX / stripRows) return false;
    BridgeExchange exchange(u"SaveToFile", params);
    ExchangeFile pixels;
    RequestRecord& request = exchange.request;
    request.setSize(strips.width, strips.height);
    request.setChannels(strips.channels);
    return exchange.isReady() && pixels.makeName() && request.setPixelsPath(pixels.path()) &&
           request.setImagePath(path) && request.setFormat(IString(format)) &&
           writeStrips(pixels.path(), strips, static_cast<std::size_t>(*rowBytes)) &&
           exchange.run();
}

}  // namespace brushwork
