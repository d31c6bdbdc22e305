#include "platform/codec_jpeg_errors.h"

#include <jerror.h>

namespace brushwork::platform {

namespace {

[[noreturn]] void onError(j_common_ptr info) {
    std::longjmp(static_cast<JpegErrors*>(info->err)->jump, 1);
}

// Decoding goes on after a warning, with invented samples if need be. So only those warnings pass
// that leave the coded picture alone.
bool isHarmless(const jpeg_error_mgr& errors) {
    switch (errors.msg_code) {
        case JWRN_ADOBE_XFORM:
        case JWRN_JFIF_MAJOR:
        case JWRN_NOT_SEQUENTIAL: return true;
        case JWRN_EXTRANEOUS_DATA: {
            // Bytes left over before a restart marker were coded picture data.
            const int marker = errors.msg_parm.i[1];
            return marker < JPEG_RST0 || marker > JPEG_RST0 + 7;
        }
        default: return false;
    }
}

void onMessage(j_common_ptr info, int level) {
    if (level < 0 && !isHarmless(*info->err)) onError(info);
}

void onOutput(j_common_ptr) {}

}  // namespace

JpegErrors::JpegErrors() : jpeg_error_mgr() {
    jpeg_std_error(this);
    error_exit = onError;
    emit_message = onMessage;
    output_message = onOutput;
}

ImagingStatus JpegErrors::status() const {
    return msg_code == JERR_OUT_OF_MEMORY ? ImagingStatus::OutOfMemory
                                          : ImagingStatus::GenericError;
}

void failJpeg(j_common_ptr info, JpegFailure failure) {
    switch (failure) {
        case JpegFailure::Refused: info->err->msg_code = JERR_INPUT_EOF; break;
        case JpegFailure::OutOfMemory: info->err->msg_code = JERR_OUT_OF_MEMORY; break;
        case JpegFailure::FileAccess: info->err->msg_code = JERR_FILE_WRITE; break;
    }
    onError(info);
}

}  // namespace brushwork::platform
