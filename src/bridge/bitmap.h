// Gdiplus::Bitmap: one picture of the imaging service and the last status that went wrong.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "platform/imaging.h"

namespace brushwork::Gdiplus {

// A bitmap that failed to open stays usable: its sizes and resolutions are 0 and every call stores
// a status. The status is never reported further by itself; callers decide from what they get.
class Bitmap {
  public:
    static Bitmap fromFile(std::u16string_view path);
    // `bytes` must outlive the bitmap.
    static Bitmap fromMemory(std::span<const std::uint8_t> bytes);
    // Null makes a bitmap that failed to open, with that status.
    static Bitmap fromPicture(std::unique_ptr<platform::Picture> picture,
                              platform::ImagingStatus status = platform::ImagingStatus::Ok);

    [[nodiscard]] std::int32_t width() const;
    [[nodiscard]] std::int32_t height() const;
    [[nodiscard]] float xResolution() const;
    [[nodiscard]] float yResolution() const;
    // False, with a status, if there is no picture.
    [[nodiscard]] bool rawFormat(platform::Guid& format);
    [[nodiscard]] bool isGrey() const;
    // Decodes into the sink; once.
    [[nodiscard]] bool readRows(platform::PixelFormat format, platform::RowSink& sink);

    [[nodiscard]] platform::ImagingStatus lastStatus() const { return lastStatus_; }

  private:
    Bitmap() = default;
    bool store(platform::ImagingStatus status);

    std::unique_ptr<platform::Picture> picture_;
    platform::ImagingStatus lastStatus_ = platform::ImagingStatus::Ok;
};

}  // namespace brushwork::Gdiplus
