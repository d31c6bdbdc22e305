#include "bridge/format_names.h"

namespace brushwork {

namespace {

struct FormatRow {
    std::u16string_view name;
    platform::Guid format;
};

// Looked through in this order.
constexpr FormatRow formats[] = {
    {u"BMP", platform::imageFormatBmp},   {u"JPEG", platform::imageFormatJpeg},
    {u"PNG", platform::imageFormatPng},   {u"GIF", platform::imageFormatGif},
    {u"TIFF", platform::imageFormatTiff},
};

}  // namespace

std::u16string_view formatName(const platform::Guid& format) {
    for (const auto& row : formats)
        if (row.format == format) return row.name;
    return {};
}

bool formatFromName(std::u16string_view name, platform::Guid& format) {
    for (const auto& row : formats) {
        if (row.name != name) continue;
        format = row.format;
        return true;
    }
    return false;
}

bool findEncoder(const platform::Guid& format, platform::Guid& encoder) {
    for (const auto& record : platform::imagingService().encoders()) {
        if (record.formatId != format) continue;
        encoder = record.classId;
        return true;
    }
    return false;
}

int findEncoderByMimeType(std::u16string_view mimeType, platform::Guid& encoder) {
    int index = 0;
    for (const auto& record : platform::imagingService().encoders()) {
        if (record.mimeType == mimeType) {
            encoder = record.classId;
            return index;
        }
        ++index;
    }
    return -1;
}

}  // namespace brushwork
