#include <limits>

#include "bridge/commands.h"
#include "bridge/format_names.h"
#include "bridge/raw_pixel_file.h"
#include "bridge/request_record.h"
#include "foundation/files/file.h"

namespace brushwork {

namespace {

constexpr double centimetresPerInch = 2.54;

// Both resolutions in dots per inch, if the request gives usable ones.
void setResolution(const ImageFileParams& params, platform::EncodeRequest& encode) {
    double x = params.xResolution;
    double y = params.yResolution;
    if (params.resolutionUnit == DotsPerCentimetre) {
        x *= centimetresPerInch;
        y *= centimetresPerInch;
    } else if (params.resolutionUnit != DotsPerInch) {
        return;
    }
    constexpr double largest = std::numeric_limits<float>::max();
    if (!(x > 0.0) || !(y > 0.0) || x > largest || y > largest) return;
    encode.hasResolution = true;
    encode.xResolution = static_cast<float>(x);
    encode.yResolution = static_cast<float>(y);
}

}  // namespace

bool commandSaveToFile(const RequestRecord& request, RequestRecord& response) {
    const ImageFileParams& params = request.params;
    platform::Guid format;
    platform::Guid encoder;
    if (!formatFromName(fieldText(request.format), format) || !findEncoder(format, encoder))
        return false;

    // The file object knows which local file a name with a scheme stands for.
    const znOS::File pixelFile(znString::IString(fieldText(request.pixelsPath)));
    RawPixelReader pixels;
    if (!pixels.open(pixelFile.path().view(), params.width, params.height, params.channels))
        return false;

    platform::EncodeRequest encode;
    encode.width = params.width;
    encode.height = params.height;
    encode.source = &pixels;
    if (params.hasQuality != 0) encode.quality = params.quality;
    setResolution(params, encode);
    if (platform::imagingService().saveFile(fieldText(request.imagePath), encoder, encode) !=
        platform::ImagingStatus::Ok)
        return false;

    response.setSize(params.width, params.height);
    response.setChannels(params.channels);
    return true;
}

}  // namespace brushwork
