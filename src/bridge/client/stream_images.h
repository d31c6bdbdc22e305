// Pictures that don't come from files: blocks of memory and resources of a program.
#pragma once

#include "bridge/bitmap.h"
#include "bridge/client/bitmap_to_image.h"
#include "platform/memory_blocks.h"

namespace brushwork {

// A picture file in a block, held in place for as long as it is read. Nothing here ever starts the
// helper, which could not see the bytes.
class BlockBitmap {
  public:
    explicit BlockBitmap(const platform::GlobalBlock& block);
    [[nodiscard]] Gdiplus::Bitmap& bitmap() { return bitmap_; }

  private:
    platform::LockedBlock lock_;
    Gdiplus::Bitmap bitmap_;
};

// Straight alpha, but for PNG; grey detection as in bitmapToImage. Null if it fails.
[[nodiscard]] Ref<ilSPMemoryImg> imageFromBlock(const platform::GlobalBlock& block,
                                                GreyDetection grey = GreyDetection::Off);
[[nodiscard]] Ref<ilSPMemoryImg> resourceToImage(const platform::ResourceName& resource,
                                                 GreyDetection grey = GreyDetection::Off);

// A bitmap of 32 bits a pixel, premultiplied, that is: over a background of 0. None if it fails.
[[nodiscard]] platform::BitmapHandle resourceToBitmapHandle(const platform::ResourceName& resource);

// Multiplies blue, green and red of each pixel by its alpha, in place. False, with nothing changed,
// for a bitmap that hasn't 32 bits a pixel or whose pixels can't be reached.
bool premultiplyBitmap(platform::BitmapHandle& bitmap);

}  // namespace brushwork
