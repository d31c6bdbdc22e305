// Keeps the coefficients of a JPEG file in a temporary file instead of memory.
//
// libjpeg asks its memory manager for arrays of blocks, one a component, and then for a few rows of
// one array at a time, always from the top down. Installed in its place, this store holds a window
// of rows of each array in memory and moves it over the file.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "platform/codec_jpeg_errors.h"
#include "platform/scratch_file.h"

namespace brushwork::platform {

class JpegCoefficientStore {
  public:
    // Between jpeg_read_header and jpeg_start_decompress; takes the decoder's client_data. The
    // store must outlive the decoder. False if no temporary file can be made.
    [[nodiscard]] bool install(j_decompress_ptr info);

  private:
    struct Array {
        std::uint64_t fileOffset = 0;
        std::size_t rowBytes = 0;
        JDIMENSION rows = 0;
        JDIMENSION windowRows = 0;
        JDIMENSION windowStart = 0;
        JDIMENSION written = 0;  // rows below this one are zero and not in the file
        bool dirty = false;
        std::uint8_t* window = nullptr;  // memory and row pointers belong to libjpeg's pool
        JBLOCKARRAY rowPointers = nullptr;
    };

    jvirt_barray_ptr request(j_common_ptr info, JDIMENSION blocks, JDIMENSION rows,
                             JDIMENSION mostRows);
    void realize(j_common_ptr info);
    JBLOCKARRAY access(j_common_ptr info, Array& array, JDIMENSION start, JDIMENSION count,
                       bool writable);
    void moveWindow(j_common_ptr info, Array& array, JDIMENSION start);
    void flush(j_common_ptr info, Array& array);

    ScratchFile file_;
    std::uint64_t fileEnd_ = 0;
    std::array<Array, MAX_COMPONENTS> arrays_;
    std::size_t arrayCount_ = 0;
    decltype(jpeg_memory_mgr::realize_virt_arrays) realizeOthers_ = nullptr;
};

}  // namespace brushwork::platform
