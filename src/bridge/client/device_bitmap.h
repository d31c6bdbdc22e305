// The device-independent bitmap of the clipboard: a BMP file without its first 14 bytes.
#pragma once

#include "bridge/bitmap.h"
#include "image/chain/il_image.h"
#include "platform/memory_blocks.h"

namespace brushwork {

// 24 bits a pixel, top row first, rows padded to multiples of four bytes. None if decoding fails or
// without memory.
[[nodiscard]] platform::GlobalBlock deviceBitmapOf(Gdiplus::Bitmap& bitmap);

// 32 bits a pixel, rows and alpha as the image has them. None for images of other than 1 or 4
// channels, and without memory.
[[nodiscard]] platform::GlobalBlock deviceBitmapOf(ilImage& image);

// The same picture as a BMP file. The pixels begin behind the header, whose own size it tells, and
// behind 12 bytes of masks if its compression is 3, or else behind its palette: as many entries as
// it uses, where 0 stands for all that its depth allows. None if the block holds no header or that
// place lies outside the block; whether the rest makes a picture is the decoder's business.
[[nodiscard]] platform::GlobalBlock bitmapFileOf(const platform::GlobalBlock& block);

}  // namespace brushwork
