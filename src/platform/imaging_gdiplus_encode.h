// Writing a picture through GDI+.
#pragma once

#include <string_view>

#include "platform/imaging.h"

namespace brushwork::platform::gdiplus {

// `encoder` is one of the platform's own records. The file comes into being beside `path` and is
// moved onto it when it is whole; where the directory takes no new file it is written in place.
[[nodiscard]] ImagingStatus encodeFile(std::u16string_view path, const EncoderRecord& encoder,
                                       const EncodeRequest& request);

}  // namespace brushwork::platform::gdiplus
