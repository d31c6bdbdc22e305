#include "platform/codec_jpeg.h"

#include <cstdint>
#include <span>

#include "platform/codec_jpeg_read.h"
#include "platform/codec_jpeg_write.h"

namespace brushwork::platform {

namespace {

// The start-of-image marker and the first byte of the marker behind it.
bool recognises(std::span<const std::uint8_t> head) {
    return head.size() >= 3 && head[0] == 0xff && head[1] == 0xd8 && head[2] == 0xff;
}

constexpr Guid encoderClass{
    0x557cf401, 0x1a04, 0x11d3, {0x9a, 0x73, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};

}  // namespace

const Codec& jpegCodec() {
    static constexpr Codec codec{{encoderClass, imageFormatJpeg, u"image/jpeg", u"JPEG"},
                                 recognises,
                                 makeJpegReader,
                                 writeJpeg};
    return codec;
}

}  // namespace brushwork::platform
