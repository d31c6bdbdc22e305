// The writing half of codec_bmp.
#pragma once

#include "platform/byte_stream.h"
#include "platform/imaging.h"

namespace brushwork::platform {

[[nodiscard]] ImagingStatus writeBmp(const EncodeRequest& request, ByteTarget& target);

}  // namespace brushwork::platform
