// The writing half of codec_png.
#pragma once

#include "platform/byte_stream.h"
#include "platform/imaging.h"

namespace brushwork::platform {

[[nodiscard]] ImagingStatus writePng(const EncodeRequest& request, ByteTarget& target);

}  // namespace brushwork::platform
