// The five format names, their identifiers, and the encoders behind them.
#pragma once

#include <string_view>

#include "platform/imaging.h"

namespace brushwork {

// "BMP", "JPEG", "PNG", "GIF" or "TIFF"; empty for any other identifier.
[[nodiscard]] std::u16string_view formatName(const platform::Guid& format);

// Exact, with case. False for any other name.
[[nodiscard]] bool formatFromName(std::u16string_view name, platform::Guid& format);

// The first encoder of that format. False if there is none.
[[nodiscard]] bool findEncoder(const platform::Guid& format, platform::Guid& encoder);

// The index of the first encoder with exactly that MIME type, or -1.
[[nodiscard]] int findEncoderByMimeType(std::u16string_view mimeType, platform::Guid& encoder);

}  // namespace brushwork
