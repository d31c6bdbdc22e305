// The writing half of codec_tiff.
#pragma once

#include "platform/byte_stream.h"
#include "platform/imaging.h"

namespace brushwork::platform {

[[nodiscard]] ImagingStatus writeTiff(const EncodeRequest& request, ByteTarget& target);

}  // namespace brushwork::platform
