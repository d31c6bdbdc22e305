// The writing half of codec_gif.
#pragma once

#include "platform/byte_stream.h"
#include "platform/imaging.h"

namespace brushwork::platform {

[[nodiscard]] ImagingStatus writeGif(const EncodeRequest& request, ByteTarget& target);

}  // namespace brushwork::platform
