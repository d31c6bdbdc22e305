// Pictures on the clipboard: two forms, by the clipboard's own format numbers.
//
// On systems whose clipboard speaks another language the same bytes pass in blocks of our own.
#pragma once

#include <cstdint>

#include "bridge/bitmap.h"
#include "brushwork/ref.h"
#include "image/work/il_sp_memory_img.h"
#include "platform/memory_blocks.h"

namespace brushwork {

enum ClipboardFormat : std::uint32_t {
    ClipboardTiff = 6,  // a TIFF file
    ClipboardDib = 8,   // a device-independent bitmap: a header of 40 bytes and the pixels
};

// TIFF with straight alpha, from an image that counts as premultiplied. Or 32 bits a pixel, blue,
// green, red, alpha, as the image stores them: bottom row first, premultiplied. An image of 1
// channel gives its value to all four bytes. None for other images, other numbers, and without
// memory.
[[nodiscard]] platform::GlobalBlock imageToClipboard(std::uint32_t format, ilImage* image);

// The same of a bitmap, which is decoded by this. Here the device-independent form has 24 bits a
// pixel without alpha, and its top row first, which its negative height says.
[[nodiscard]] platform::GlobalBlock bitmapToClipboard(std::uint32_t format,
                                                      Gdiplus::Bitmap& bitmap);

// 4 channels, straight alpha; a plain bitmap of 32 bits is opaque, whatever its fourth bytes. The
// block stays the caller's. Null if the block holds no such picture, and for other numbers.
[[nodiscard]] Ref<ilSPMemoryImg> imageFromClipboard(std::uint32_t format,
                                                    const platform::GlobalBlock& block);

}  // namespace brushwork
