// The reading half of codec_png.
#pragma once

#include <memory>

#include "platform/byte_stream.h"
#include "platform/codec.h"

namespace brushwork::platform {

[[nodiscard]] std::unique_ptr<PictureReader> makePngReader(ByteSource& source);

}  // namespace brushwork::platform
