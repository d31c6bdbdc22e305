// The writing half of codec_jpeg.
#pragma once

#include "platform/byte_stream.h"
#include "platform/imaging.h"

namespace brushwork::platform {

[[nodiscard]] ImagingStatus writeJpeg(const EncodeRequest& request, ByteTarget& target);

}  // namespace brushwork::platform
