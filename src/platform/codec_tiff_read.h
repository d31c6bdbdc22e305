// The reading half of codec_tiff.
#pragma once

#include <memory>

#include "platform/byte_stream.h"
#include "platform/codec.h"

namespace brushwork::platform {

[[nodiscard]] std::unique_ptr<PictureReader> makeTiffReader(ByteSource& source);

}  // namespace brushwork::platform
