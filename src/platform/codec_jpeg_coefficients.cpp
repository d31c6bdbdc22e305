#include "platform/codec_jpeg_coefficients.h"

#include <algorithm>
#include <cstring>

namespace brushwork::platform {

namespace {

constexpr std::size_t windowBytes = std::size_t{512} << 10;

JpegCoefficientStore& storeOf(j_common_ptr info) {
    return *static_cast<JpegCoefficientStore*>(info->client_data);
}

}  // namespace

bool JpegCoefficientStore::install(j_decompress_ptr info) {
    if (!file_.open()) return false;
    info->client_data = this;
    realizeOthers_ = info->mem->realize_virt_arrays;
    info->mem->request_virt_barray = [](j_common_ptr common, int, boolean, JDIMENSION blocks,
                                        JDIMENSION rows, JDIMENSION mostRows) {
        return storeOf(common).request(common, blocks, rows, mostRows);
    };
    info->mem->realize_virt_arrays = [](j_common_ptr common) { storeOf(common).realize(common); };
    info->mem->access_virt_barray = [](j_common_ptr common, jvirt_barray_ptr array,
                                       JDIMENSION start, JDIMENSION count, boolean writable) {
        return storeOf(common).access(common, *reinterpret_cast<Array*>(array), start, count,
                                      writable != 0);
    };
    return true;
}

jvirt_barray_ptr JpegCoefficientStore::request(j_common_ptr info, JDIMENSION blocks,
                                               JDIMENSION rows, JDIMENSION mostRows) {
    if (arrayCount_ == arrays_.size()) failJpeg(info, JpegFailure::Refused);
    Array& array = arrays_[arrayCount_++];
    array.rowBytes = blocks * sizeof(JBLOCK);
    array.rows = rows;
    const auto roomy = static_cast<JDIMENSION>(windowBytes / array.rowBytes);
    array.windowRows = std::min(rows, std::max(mostRows, roomy));
    array.fileOffset = fileEnd_;
    fileEnd_ += std::uint64_t{array.rowBytes} * rows;
    return reinterpret_cast<jvirt_barray_ptr>(&array);
}

void JpegCoefficientStore::realize(j_common_ptr info) {
    for (std::size_t i = 0; i < arrayCount_; ++i) {
        Array& array = arrays_[i];
        if (array.window != nullptr) continue;
        const std::size_t bytes = array.rowBytes * array.windowRows;
        array.window = static_cast<std::uint8_t*>(info->mem->alloc_large(info, JPOOL_IMAGE, bytes));
        array.rowPointers = static_cast<JBLOCKARRAY>(
            info->mem->alloc_small(info, JPOOL_IMAGE, array.windowRows * sizeof(JBLOCKROW)));
        std::memset(array.window, 0, bytes);
        for (JDIMENSION row = 0; row < array.windowRows; ++row) {
            array.rowPointers[row] =
                reinterpret_cast<JBLOCKROW>(array.window + row * array.rowBytes);
        }
    }
    realizeOthers_(info);
}

JBLOCKARRAY JpegCoefficientStore::access(j_common_ptr info, Array& array, JDIMENSION start,
                                         JDIMENSION count, bool writable) {
    if (count > array.windowRows || start > array.rows - count) {
        failJpeg(info, JpegFailure::Refused);
    }
    if (start < array.windowStart || start + count > array.windowStart + array.windowRows) {
        moveWindow(info, array, start);
    }
    array.dirty = array.dirty || writable;
    return array.rowPointers + (start - array.windowStart);
}

void JpegCoefficientStore::moveWindow(j_common_ptr info, Array& array, JDIMENSION start) {
    flush(info, array);
    array.windowStart = std::min(start, array.rows - array.windowRows);
    const JDIMENSION end = array.windowStart + array.windowRows;
    const JDIMENSION known = std::clamp(array.written, array.windowStart, end) - array.windowStart;
    const std::size_t knownBytes = known * array.rowBytes;
    if (known > 0 &&
        !file_.readAt(array.fileOffset + std::uint64_t{array.rowBytes} * array.windowStart,
                      array.window, knownBytes)) {
        failJpeg(info, JpegFailure::FileAccess);
    }
    std::memset(array.window + knownBytes, 0, array.windowRows * array.rowBytes - knownBytes);
}

void JpegCoefficientStore::flush(j_common_ptr info, Array& array) {
    if (!array.dirty) return;
    array.dirty = false;
    // Windows follow one another from the top, so no gap is left above this one.
    if (array.windowStart > array.written) failJpeg(info, JpegFailure::Refused);
    if (!file_.writeAt(array.fileOffset + std::uint64_t{array.rowBytes} * array.windowStart,
                       array.window, array.windowRows * array.rowBytes)) {
        failJpeg(info, JpegFailure::FileAccess);
    }
    array.written = std::max(array.written, array.windowStart + array.windowRows);
}

}  // namespace brushwork::platform
