// The pixels of a TIFF picture, a band of rows at a time from the top.
//
// There are four ways to them. Uncompressed strips are read by their offsets, so that a strip as
// large as the picture costs nothing. Compressed strips are decoded row by row; separate planes
// each through a handle of their own, because the decoders only go forward. Strips whose pixels
// share their chroma are decoded whole, and so are tiles.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/byte_stream.h"
#include "platform/codec_tiff_handle.h"
#include "platform/codec_tiff_layout.h"

namespace brushwork::platform {

class TiffBands {
  public:
    virtual ~TiffBands() = default;
    // Rows of every band but the last, which may have fewer.
    [[nodiscard]] virtual std::uint32_t bandRows() const = 0;
    // Reads the next band, which begins at row `y`. False if any of it is missing or damaged.
    [[nodiscard]] virtual bool read(std::uint32_t y, std::uint32_t rows, std::uint8_t* bgra) = 0;
};

// All three outlive the bands. Null if further handles can't be opened.
[[nodiscard]] std::unique_ptr<TiffBands> makeTiffBands(const TiffLayout& layout, TiffHandle& handle,
                                                       ByteSource& source);

// The same for tiles alone.
[[nodiscard]] std::unique_ptr<TiffBands> makeTiffTileBands(const TiffLayout& layout,
                                                           TiffHandle& handle);

// Spreads row `row` of a decoded chunk whose pixels share their chroma to `width` triples.
void spreadTiffChroma(const TiffLayout& layout, const std::uint8_t* chunk, std::uint32_t row,
                      std::uint32_t width, std::uint8_t* triples);

}  // namespace brushwork::platform
