// GifAnimation: pictures one after the other in one GIF file.
//
//     const auto target = createFileTarget(path);
//     GifAnimation animation(*target);
//     ImagingStatus status = animation.begin({width, height});
//     for each picture: status = animation.add(request, 10);   // shown for a tenth of a second
//     if (animation.finish() == ImagingStatus::Ok) target->commit();
//
// Each picture has a palette of its own, made as for a single one, and stands alone: where it is
// transparent, what was before doesn't show through. After a failure only the target is of use,
// and that to be thrown away. The target outlives the object. Nothing throws.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/byte_stream.h"
#include "platform/imaging.h"

namespace brushwork::platform {

class GifAnimation {
  public:
    struct Screen {
        std::int32_t width = 0;  // 1 to 65535
        std::int32_t height = 0;
        std::uint16_t plays = 0;  // how often all is shown; 0: without end
    };

    explicit GifAnimation(ByteTarget& target);
    GifAnimation(const GifAnimation&) = delete;
    GifAnimation& operator=(const GifAnimation&) = delete;
    ~GifAnimation();

    // First, and once.
    [[nodiscard]] ImagingStatus begin(const Screen& screen);
    // A picture of the screen's size; others are refused. A time beyond what one can hold (655.35
    // seconds) is shared out to equal ones. 0 hundredths: nothing is written.
    [[nodiscard]] ImagingStatus add(const EncodeRequest& request, std::uint32_t hundredths);
    // Last. WrongState without a picture: that would be no file that anybody reads.
    [[nodiscard]] ImagingStatus finish();

  private:
    struct File;
    [[nodiscard]] ImagingStatus write(const EncodeRequest& request, std::uint16_t hundredths);

    ByteTarget& target_;
    Screen screen_;
    std::uint64_t pictures_ = 0;
    bool failed_ = false;
    std::unique_ptr<File> file_;
};

}  // namespace brushwork::platform
