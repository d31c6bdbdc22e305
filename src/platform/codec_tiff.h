// TIFF files, over libtiff.
//
// Reading takes the first page: strips and tiles, interleaved and separate planes, both byte
// orders, classic and big files. Grey, RGB, palette, CMYK and YCbCr; whole numbers of 1 to 32 and
// 64 bits a sample, floating point of 16, 32 and 64 bits (0 to 1 of the full range). Uncompressed,
// PackBits, LZW, Deflate, fax, JPEG, Zstandard, LZMA and WebP, as far as the library was built with
// them. Premultiplied alpha is divided out; extra samples that aren't alpha are passed over, and so
// is the orientation: the picture comes as it is stored. A file with a strip missing, short or
// damaged is refused.
//
// Memory: a block of rows or a row of tiles, and one compressed strip or tile.
//
// Writing gives 8 bits a sample, LZW with horizontal differences, in strips: red, green, blue, and
// straight alpha only if some pixel is not opaque. The source is read once for that question and
// once for the pixels.
#pragma once

#include "platform/codec.h"

namespace brushwork::platform {

[[nodiscard]] const Codec& tiffCodec();

}  // namespace brushwork::platform
