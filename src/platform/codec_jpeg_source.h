// Feeds libjpeg from a ByteSource through a fixed buffer.
//
// The end of the bytes is an error: unlike libjpeg's own sources this one never makes up an
// end-of-image marker, so that a picture cut short can't pass for a whole one.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "platform/byte_stream.h"
#include "platform/codec_jpeg_errors.h"

namespace brushwork::platform {

class JpegSource : public jpeg_source_mgr {
  public:
    explicit JpegSource(ByteSource& source);

    [[nodiscard]] std::uint64_t size() const { return source_.size(); }
    // Takes the next `count` bytes; jumps if there are fewer.
    void take(j_decompress_ptr info, std::uint8_t* out, std::size_t count);
    void skip(j_decompress_ptr info, std::size_t count);

  private:
    void fill(j_decompress_ptr info);

    ByteSource& source_;
    std::uint64_t nextOffset_ = 0;  // of the source, behind the buffered bytes
    std::array<std::uint8_t, std::size_t{64} << 10> buffer_;
};

}  // namespace brushwork::platform
