// Keeps the work of decoding a JPEG file in proportion to its length.
//
// Every scan walks over all blocks of its components, even if a few bytes tell that nothing changes
// there, so a short file could ask for hours. Each visit of a block is therefore counted: 2^24 come
// free, and each byte of the file buys 24 more. A blank sheet in the usual ten scans spends two
// bits and six visits a block, which is just that rate; photographs spend half of it or less.
// A visit counts twice where the coefficients are in a file, because it reads and writes there.
//
// Arithmetic code can make every coefficient of a block busy for next to no bits. There each
// coefficient that a scan may touch is counted as well: 2^25 (a blank sheet of 22 megapixels) come
// free and each byte buys 64, enough for photographs at a fifth of a bit a pixel.
#pragma once

#include <cstdint>

#include "platform/codec_jpeg_errors.h"

namespace brushwork::platform {

class JpegScanGuard : public jpeg_progress_mgr {
  public:
    JpegScanGuard();
    // Watches the reading of all scans from here on; it jumps when the limit is passed. The guard
    // must live as long as it is the decoder's progress monitor. `visitCost` is 1 or 2.
    void watch(j_decompress_ptr info, std::uint64_t fileBytes, std::uint64_t visitCost);
    // Afterwards: true if each component got at least the scan with its mean values.
    [[nodiscard]] bool sawAllComponents(const jpeg_decompress_struct& info) const;

  private:
    void monitor(j_decompress_ptr info);

    int scan_ = 0;
    std::uint64_t visitsLeft_ = 0;
    std::uint64_t coefficientsLeft_ = 0;  // of arithmetic code
    std::uint32_t components_ = 0;        // a bit each
};

// False if the file can't hold its picture: Huffman code spends at least one bit on the mean value
// of each block, and in files that aren't progressive one more on the rest of the block. Arithmetic
// code has no such bound. After jpeg_read_header.
[[nodiscard]] bool jpegBlocksFit(const jpeg_decompress_struct& info, std::uint64_t fileBytes);

// Bytes of all coefficients.
[[nodiscard]] std::uint64_t jpegCoefficientBytes(const jpeg_decompress_struct& info);

}  // namespace brushwork::platform
