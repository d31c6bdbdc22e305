// JPEG files, over libjpeg-turbo.
//
// Reading takes baseline and progressive files of 8 bits, Huffman or arithmetic coded: grey, YCbCr
// of any sampling, RGB, CMYK and YCCK. Pixels come as they are stored; an orientation told beside
// them is not applied. A file that ends early or whose coded data is damaged is refused; stray
// bytes between its parts are passed over. Resolution: the JFIF density, else the Exif fields.
//
// Memory: a block of rows. Files of more than one scan (all progressive ones) need their
// coefficients as well; where those exceed width * height * 4 bytes they go to a temporary file.
//
// Writing gives YCbCr with chroma at half size in both directions and drops alpha: the colours of
// transparent pixels are kept as they stand. Quality 75 unless told.
#pragma once

#include "platform/codec.h"

namespace brushwork::platform {

[[nodiscard]] const Codec& jpegCodec();

}  // namespace brushwork::platform
