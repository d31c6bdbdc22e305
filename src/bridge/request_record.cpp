#include "bridge/request_record.h"

#include <algorithm>

#include "brushwork/error.h"
#include "foundation/files/file.h"

namespace brushwork {

namespace {

template <std::size_t Units>
bool setField(char16_t (&field)[Units], const znString::IString& text) {
    const std::u16string_view units = text.view().substr(0, text.view().find(u'\0'));
    if (units.size() >= Units) return false;
    *std::copy(units.begin(), units.end(), field) = u'\0';
    return true;
}

}  // namespace

void RequestRecord::setSize(std::int32_t width, std::int32_t height) {
    params.width = width;
    params.height = height;
}

void RequestRecord::setChannels(std::int32_t channels) {
    params.channels = channels;
}

void RequestRecord::setQuality(bool hasQuality, std::int32_t quality) {
    params.hasQuality = hasQuality ? 1 : 0;
    params.quality = quality;
}

void RequestRecord::setResolution(double x, double y) {
    params.xResolution = x;
    params.yResolution = y;
}

void RequestRecord::setResolutionUnit(std::int32_t unit) {
    params.resolutionUnit = unit;
}

bool RequestRecord::setCommand(const znString::IString& text) {
    return setField(command, text);
}
bool RequestRecord::setFormat(const znString::IString& text) {
    return setField(format, text);
}
bool RequestRecord::setResponsePath(const znString::IString& text) {
    return setField(responsePath, text);
}
bool RequestRecord::setPixelsPath(const znString::IString& text) {
    return setField(pixelsPath, text);
}
bool RequestRecord::setImagePath(const znString::IString& text) {
    return setField(imagePath, text);
}

bool readRecord(const znString::IString& path, RequestRecord& record) {
    znOS::File file(path);
    if (file.open(znOS::readBinary).failed()) return false;
    std::size_t count = 0;
    const znUtil::Error error = file.read(&record, sizeof record, count);
    file.close();
    return !error.failed() && count == sizeof record;
}

bool writeRecord(const znString::IString& path, const RequestRecord& record) {
    znOS::File file(path);
    if (file.open(znOS::writeBinary).failed()) return false;
    std::size_t count = 0;
    const znUtil::Error error = file.write(&record, sizeof record, count);
    const znUtil::Error closed = file.close();
    return !error.failed() && !closed.failed() && count == sizeof record;
}

}  // namespace brushwork
