// znTiledImage::Image: a light pixel store for work images: a flat grid of cells of 128 by 128,
// each empty, of one value, or a block of pixels.
//
//     const Ref<Image> image = makeImage(4);
//     if (!image->setRect({-100, -100, 500, 500})) giveUp();
//     image->setFillValue(&white);
//     const Ref<Image> copy = image->share();  // holds the same tiles until one of them is written
//
// Pixels are read and written by the functions of tile_regions.h and by PixelReader and
// PixelWriter. One thread uses an image at a time, or several read it.
#pragma once

#include <cstdint>

#include "tiled/tile_container.h"

namespace brushwork::znTiledImage {

enum class PixelKind : std::int32_t { Byte = 0, Byte4 = 1 };

class Image : public zn::ReferenceCount {
  protected:
    ~Image() override;

  public:
    // Slots, in this order.
    // Exchanges all that the two hold; nothing happens between different pixel kinds.
    virtual void swap(Image& other) = 0;
    [[nodiscard]] virtual std::size_t bytesPerPixel() const = 0;
    [[nodiscard]] virtual PixelKind pixelKind() const = 0;
    // One pixel: what an empty cell reads as. All bytes zero at first.
    [[nodiscard]] virtual void* fillValue() = 0;
    [[nodiscard]] virtual const void* constFillValue() const = 0;
    // `pixel` has bytesPerPixel() bytes.
    virtual void setFillValue(const void* pixel) = 0;
    [[nodiscard]] virtual TileContainer& container() = 0;
    [[nodiscard]] virtual const TileContainer& constContainer() const = 0;

    // Empty at first. Whole cells are there to be read and written, though the rectangle may end
    // within one.
    [[nodiscard]] const PixelRect& rect() const { return rect_; }
    // Lays the grid over the cells of the rectangle; cells that stay keep their pixels. False, with
    // nothing changed, as TileContainer::setRect.
    [[nodiscard]] bool setRect(const PixelRect& rect);
    // A new image with the same rectangle, fill and tiles. Null without memory.
    [[nodiscard]] Ref<Image> share() const;

  protected:
    PixelRect rect_;
};

// T: unsigned char or znImage::Byte4.
template <class T>
class TypedImage final : public Image {
  public:
    TypedImage();
    void swap(Image& other) override;
    [[nodiscard]] std::size_t bytesPerPixel() const override { return sizeof(T); }
    [[nodiscard]] PixelKind pixelKind() const override;
    [[nodiscard]] void* fillValue() override { return &fill_; }
    [[nodiscard]] const void* constFillValue() const override { return &fill_; }
    void setFillValue(const void* pixel) override;
    [[nodiscard]] TileContainer& container() override { return *container_; }
    [[nodiscard]] const TileContainer& constContainer() const override { return *container_; }

  private:
    ~TypedImage() override = default;

    Ref<TypedTileContainer<T>> container_;
    T fill_{};
};

extern template class TypedImage<unsigned char>;
extern template class TypedImage<znImage::Byte4>;

[[nodiscard]] Ref<Image> makeImage(PixelKind kind);
// For 1 or 4 channels; null for any other count.
[[nodiscard]] Ref<Image> makeImage(std::int32_t channels);

}  // namespace brushwork::znTiledImage
