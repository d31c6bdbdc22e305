// How libjpeg reports errors to codec_jpeg: by a jump to the step that called it.
//
// A step is a function that holds nothing with a destructor. It runs behind
// `if (setjmp(errors.jump) != 0) return false;`, and so do all callbacks.
#pragma once

#include <csetjmp>
#include <cstddef>
#include <cstdio>
// libjpeg's header needs the two above.
#include <jpeglib.h>

#include "platform/imaging.h"

namespace brushwork::platform {

struct JpegErrors : jpeg_error_mgr {
    JpegErrors();
    [[nodiscard]] ImagingStatus status() const;  // after a jump
    std::jmp_buf jump;
};

enum class JpegFailure { Refused, OutOfMemory, FileAccess };
// Jumps. `info` is a compressor or a decompressor that uses a JpegErrors.
[[noreturn]] void failJpeg(j_common_ptr info, JpegFailure failure);

template <class Info>
j_common_ptr jpegCommon(Info* info) {
    return reinterpret_cast<j_common_ptr>(info);
}

}  // namespace brushwork::platform
