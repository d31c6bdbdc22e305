#include "bridge/client/stream_images.h"

#include <cstring>

namespace brushwork {

namespace {

using platform::BitmapHandle;
using platform::BitmapLayout;
using platform::GlobalBlock;

class HandleSink final : public platform::RowSink {
  public:
    explicit HandleSink(const BitmapLayout& layout) : layout_(layout) {}

    bool putRows(std::int32_t y, std::int32_t count, const std::uint8_t* bgra) override {
        const std::size_t rowBytes = static_cast<std::size_t>(layout_.width) * 4;
        for (const std::int32_t end = y + count; y < end; ++y, bgra += rowBytes)
            std::memcpy(layout_.bits + layout_.stride * static_cast<std::size_t>(y), bgra,
                        rowBytes);
        return true;
    }

  private:
    BitmapLayout layout_;
};

}  // namespace

BlockBitmap::BlockBitmap(const GlobalBlock& block)
    : lock_(block), bitmap_(Gdiplus::Bitmap::fromMemory(lock_.bytes())) {}

Ref<ilSPMemoryImg> imageFromBlock(const GlobalBlock& block, GreyDetection grey) {
    BlockBitmap opened(block);
    BitmapToImageOptions options;
    options.grey = grey;
    return bitmapToImage(&opened.bitmap(), {}, options).image;
}

Ref<ilSPMemoryImg> resourceToImage(const platform::ResourceName& resource, GreyDetection grey) {
    const GlobalBlock block = platform::copyResource(resource);
    return block ? imageFromBlock(block, grey) : nullptr;
}

BitmapHandle resourceToBitmapHandle(const platform::ResourceName& resource) {
    const GlobalBlock block = platform::copyResource(resource);
    if (!block) return {};
    BlockBitmap opened(block);
    Gdiplus::Bitmap& bitmap = opened.bitmap();
    BitmapHandle handle = BitmapHandle::create(bitmap.width(), bitmap.height());
    const BitmapLayout layout = handle.layout();
    if (!layout.bits) return {};
    HandleSink sink(layout);
    if (!bitmap.readRows(platform::PixelFormat::Pargb32, sink)) return {};
    return handle;
}

bool premultiplyBitmap(BitmapHandle& bitmap) {
    const BitmapLayout layout = bitmap.layout();
    if (layout.bitsPerPixel != 32 || !layout.bits) return false;
    constexpr float perStep = 0.003921569F;
    for (std::int32_t y = 0; y < layout.height; ++y) {
        std::uint8_t* pixel = layout.bits + layout.stride * static_cast<std::size_t>(y);
        for (std::int32_t x = 0; x < layout.width; ++x, pixel += 4) {
            const float alpha = pixel[3];
            for (int channel = 0; channel < 3; ++channel)
                pixel[channel] = static_cast<std::uint8_t>(pixel[channel] * alpha * perStep);
        }
    }
    return true;
}

}  // namespace brushwork
