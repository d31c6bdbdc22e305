// What one file format offers to the portable imaging service.
//
// To add a format: write codec_<format>.h and .cpp with one `const Codec& <format>Codec()`, and
// name it in imaging_portable's list.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "platform/byte_stream.h"
#include "platform/imaging.h"

namespace brushwork::platform {

inline constexpr float defaultResolution = 96.0F;

// What a header tells. Width and height are at least 1.
struct PictureHeader {
    std::int32_t width = 0;
    std::int32_t height = 0;
    float xResolution = defaultResolution;
    float yResolution = defaultResolution;
    bool grey = false;
    bool alpha = false;  // some pixel may be less than opaque
};

// One opened file. readHeader() is called first and once, readPixels() after it and at most once.
// Both answer a failure for anything that isn't a whole, sane file: truncated, inconsistent, or
// beyond the limits of the format. They allocate in proportion to what the file really holds.
class PictureReader {
  public:
    virtual ~PictureReader() = default;
    [[nodiscard]] virtual ImagingStatus readHeader(PictureHeader& header) = 0;
    // Hands straight-alpha rows to the sink.
    [[nodiscard]] virtual ImagingStatus readPixels(RowSink& sink) = 0;
};

struct Codec {
    EncoderRecord encoder;
    // Looks at the first bytes of a file (up to 32, fewer if the file is shorter).
    bool (*recognises)(std::span<const std::uint8_t> head);
    // Never null. The source outlives the reader.
    std::unique_ptr<PictureReader> (*makeReader)(ByteSource& source);
    ImagingStatus (*write)(const EncodeRequest& request, ByteTarget& target);
};

}  // namespace brushwork::platform
