// The run-length forms of BMP: 4, 8 and 24 bits a pixel.
#pragma once

#include "platform/bmp_header.h"
#include "platform/byte_stream.h"
#include "platform/imaging.h"

namespace brushwork::platform {

// True if the file is long enough for its declared size. The bound is far from what any encoder
// reaches: a two-byte run covers at most 255 pixels.
[[nodiscard]] bool runLengthIsPlausible(const BmpHeader& header, std::uint64_t fileBytes);

// Pixels that the data passes over have index 0 (black with 24 bits). The data may stop without its
// end mark only when every row is complete; a run or a step that leaves the picture is refused.
[[nodiscard]] ImagingStatus readRunLength(ByteSource& source, const BmpHeader& header,
                                          RowSink& sink);

}  // namespace brushwork::platform
