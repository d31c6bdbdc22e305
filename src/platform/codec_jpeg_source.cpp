#include "platform/codec_jpeg_source.h"

#include <algorithm>
#include <cstring>

namespace brushwork::platform {

JpegSource::JpegSource(ByteSource& source) : jpeg_source_mgr(), source_(source) {
    next_input_byte = buffer_.data();
    bytes_in_buffer = 0;
    init_source = [](j_decompress_ptr) {};
    fill_input_buffer = [](j_decompress_ptr info) -> boolean {
        static_cast<JpegSource*>(info->src)->fill(info);
        return TRUE;
    };
    skip_input_data = [](j_decompress_ptr info, long count) {
        if (count <= 0) return;
        static_cast<JpegSource*>(info->src)->skip(info, static_cast<std::size_t>(count));
    };
    resync_to_restart = jpeg_resync_to_restart;
    term_source = [](j_decompress_ptr) {};
}

void JpegSource::fill(j_decompress_ptr info) {
    const std::size_t count = source_.readAt(nextOffset_, buffer_.data(), buffer_.size());
    if (count == 0) failJpeg(jpegCommon(info), JpegFailure::Refused);
    nextOffset_ += count;
    next_input_byte = buffer_.data();
    bytes_in_buffer = count;
}

void JpegSource::take(j_decompress_ptr info, std::uint8_t* out, std::size_t count) {
    while (count > 0) {
        if (bytes_in_buffer == 0) fill(info);
        const std::size_t part = std::min(count, bytes_in_buffer);
        std::memcpy(out, next_input_byte, part);
        next_input_byte += part;
        bytes_in_buffer -= part;
        out += part;
        count -= part;
    }
}

void JpegSource::skip(j_decompress_ptr, std::size_t count) {
    const std::size_t part = std::min(count, bytes_in_buffer);
    next_input_byte += part;
    bytes_in_buffer -= part;
    nextOffset_ += count - part;
}

}  // namespace brushwork::platform
