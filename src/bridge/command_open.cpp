#include "bridge/bitmap.h"
#include "bridge/commands.h"
#include "bridge/exchange_name.h"
#include "bridge/format_names.h"
#include "bridge/raw_pixel_file.h"
#include "bridge/request_record.h"
#include "foundation/services/settings.h"

namespace brushwork {

namespace {

// A name that another process took between its making and our opening is not opened: the file must
// be new. A few tries are plenty.
constexpr int nameTries = 4;

bool createPixelFile(RawPixelWriter& writer, znString::IString& path, std::int32_t width,
                     std::int32_t height) {
    for (int i = 0; i < nameTries; ++i) {
        path = exchangeFileName();
        if (path.isEmpty()) return false;
        if (writer.create(path.view(), width, height)) return true;
    }
    return false;
}

bool withinLimit(std::int32_t width, std::int32_t height) {
    const auto bytes = pixelFileBytes(width, height, 4);
    const std::uint64_t limit = bridgeSettings().pixelFileBytes;
    return bytes && (limit == 0 || *bytes <= limit);
}

}  // namespace

bool commandOpenFromFile(const RequestRecord& request, RequestRecord& response) {
    auto bitmap = Gdiplus::Bitmap::fromFile(fieldText(request.imagePath));
    const std::int32_t width = bitmap.width();
    const std::int32_t height = bitmap.height();
    if (width < 1 || height < 1 || !withinLimit(width, height)) return false;

    platform::Guid rawFormat;
    const bool known = bitmap.rawFormat(rawFormat);
    const auto form = known && rawFormat == platform::imageFormatPng
                          ? platform::PixelFormat::Pargb32
                          : platform::PixelFormat::Argb32;

    RawPixelWriter writer;
    znString::IString pixelsPath;
    if (!createPixelFile(writer, pixelsPath, width, height)) return false;
    if (!response.setPixelsPath(pixelsPath)) return false;
    if (!bitmap.readRows(form, writer) || !writer.finish()) return false;

    response.setSize(width, height);
    response.setChannels(4);
    response.setResolution(double{bitmap.xResolution()}, double{bitmap.yResolution()});
    return response.setFormat(znString::IString(known ? formatName(rawFormat) : u""));
}

}  // namespace brushwork
