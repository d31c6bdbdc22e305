// The reading half of codec_gif.
#pragma once

#include <memory>

#include "platform/byte_stream.h"
#include "platform/codec.h"

namespace brushwork::platform {

[[nodiscard]] std::unique_ptr<PictureReader> makeGifReader(ByteSource& source);

}  // namespace brushwork::platform
