// BMP files, by our own code.
//
// Reading takes 1, 2, 4, 8, 16, 24 and 32 bits a pixel, colour fields of any contiguous masks, the
// run-length forms of 4, 8 and 24 bits, rows in either order, and the headers of both families (12,
// 16, 40, 52, 56, 64, 108 and 124 bytes). Alpha counts only where the header names a field for it;
// the fourth byte of a plain 32-bit pixel is filling. Refused are files whose pixels are not all
// there, Huffman codes, and wrapped JPEG or PNG data. The sizes of file and pixel data that a
// header repeats are not looked at: they are often wrong in files that are otherwise whole.
//
// Memory: one block of rows, whatever the size of the picture.
//
// Writing gives 24 bits if every pixel is opaque, else 32 bits with an alpha field. The source is
// read once, or again from the start when the first pixel that isn't opaque turns up.
#pragma once

#include "platform/codec.h"

namespace brushwork::platform {

[[nodiscard]] const Codec& bmpCodec();

}  // namespace brushwork::platform
