#include "bridge/bitmap.h"
#include "bridge/commands.h"
#include "bridge/request_record.h"

namespace brushwork {

bool commandGetSize(const RequestRecord& request, RequestRecord& response) {
    const auto bitmap = Gdiplus::Bitmap::fromFile(fieldText(request.imagePath));
    if (bitmap.width() < 1 || bitmap.height() < 1) return false;
    response.setSize(bitmap.width(), bitmap.height());
    response.setChannels(4);
    response.setResolution(double{bitmap.xResolution()}, double{bitmap.yResolution()});
    return true;
}

}  // namespace brushwork
