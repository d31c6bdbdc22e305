// ilZNTiledImage: a znTiledImage::Image wherever an ilImage is expected.
//
//     const ilPixel clear(TypeUChar, 4);
//     const Ref<ilZNTiledImage> work(new ilZNTiledImage({-64, -64, 640, 480}, clear));
//     work->copyRegion(box, *layer, box.x, box.y, 0, nullptr, CopyDirection::FromOther);
//     const TypedPixelReader<znImage::Byte4> reader(*work->tiledImage(), rect);
//
// Pixels are bytes, 1 or 4 channels; any other channel count leaves it without an image, and each
// operation then does nothing and answers ImageUnusable, as it does for planes other than 0. Boxes
// may reach anywhere: the cells of the rectangle hold pixels, at negative coordinates too; outside
// them the fill is read, and what is written is lost. One thread uses it at a time.
#pragma once

#include <cstdint>

#include "image/chain/il_sid_image.h"
#include "tiled/tile_regions.h"
#include "tiled/tiled_image.h"

namespace brushwork {

class ilZNTiledImage : public ilSIDImage {
  public:
    static const ClassDescriptor descriptor;

    // Every pixel is the fill, whose channel count is the image's. A rectangle of more cells than a
    // grid can have leaves it without an image.
    ilZNTiledImage(const znTiledImage::PixelRect& rect, const ilPixel& fill);
    // Over an existing image, which takes the rectangle and the fill; one of another pixel kind
    // isn't taken.
    ilZNTiledImage(const znTiledImage::PixelRect& rect, const ilPixel& fill,
                   znTiledImage::Image* image);
    // A copy of the pixels within the other image's bounds, with its fill. A null image gives one
    // without an image.
    explicit ilZNTiledImage(ilImage* other);

  protected:
    ~ilZNTiledImage() override;
    void update() override;

  public:
    [[nodiscard]] const char* className() const override;
    [[nodiscard]] const ClassDescriptor& classDescriptor() const override;

    // Empty cells read as the new value.
    std::int32_t setFill(const ilPixel& pixel) override;
    std::int32_t readRegion(const ilTile& box, void* buffer, const ilTile& frame,
                            const ilImageConfig* config = nullptr) override;
    // Cells of the box turn into filled ones, pixels around it kept.
    std::int32_t writeRegion(const ilTile& box, const void* buffer, const ilTile& frame,
                             const ilImageConfig* config = nullptr) override;
    // From a smart image at the same place solid pages stay solid cells, and cells that turn out to
    // be of one value hold no block. From another tiled image, by offsets that are multiples of
    // 128, whole cells share their tiles.
    std::int32_t copyRegion(const ilTile& box, ilImage& other, std::int32_t ox, std::int32_t oy,
                            std::int32_t oz, const ilImageConfig* config,
                            CopyDirection direction) override;
    // Cells that are covered wholly turn solid.
    std::int32_t fillRegion(const ilTile& box, const ilPixel& pixel,
                            const ilImageConfig* config = nullptr,
                            const ilTile* keepOut = nullptr) override;
    // Requests name any pixel of their cell, which turns into a filled one under either mode. The
    // page has the request's x and y, z 1, and bytes a pixel as c. Null outside the grid. While
    // pages are locked cells keep their blocks, whatever is written meanwhile.
    std::int32_t lockPages(std::span<PageLockRequest> requests, std::uint32_t mode) override;
    void unlockPages(std::span<PageLockRequest> requests) override;
    // Nothing is kept apart: ImageOk.
    std::int32_t pushToSource() override;

    // Null without an image. Borrowed.
    [[nodiscard]] znTiledImage::Image* tiledImage() const { return image_.get(); }
    // What was set at construction or by setFill.
    [[nodiscard]] const ilPixel& tileFill() const { return tileFill_; }

  private:
    class LockedCell;

    void begin(const znTiledImage::PixelRect& rect, const ilPixel& fill,
               const Ref<znTiledImage::Image>& image);
    // Starts an operation: ImageOk if there is an image and it is up to date.
    [[nodiscard]] std::int32_t beginOperation();
    std::int32_t changed(bool complete);

    // Whether a buffer of that config holds this image's pixels as they are.
    [[nodiscard]] bool isPlain(const ilImageConfig* config) const;
    std::int32_t readConverted(const ilTile& box, void* buffer, const ilTile& frame,
                               const ilImageConfig& config);
    std::int32_t writeConverted(const ilTile& box, const void* buffer, const ilTile& frame,
                                const ilImageConfig& config);
    std::int32_t fillConverted(const ilTile& box, const ilPixel& pixel,
                               const ilImageConfig& config);
    std::int32_t lockCell(PageLockRequest& request, bool write);
    [[nodiscard]] znTiledImage::Blocks blocks() const {
        return locks_ == 0 ? znTiledImage::Blocks::Release : znTiledImage::Blocks::Keep;
    }

    // Copies of whole pixels; (dx, dy) leads from here to the other image.
    struct Shift {
        std::int32_t dx, dy;
    };
    [[nodiscard]] bool copiesPlainly(const ilTile& box, ilImage& other, std::int32_t oz,
                                     const ilImageConfig* config);
    std::int32_t copyIn(const ilTile& box, ilImage& other, Shift shift);
    std::int32_t copyFromSmart(const ilTile& box, ilImage& other);
    std::int32_t copyFromTiled(const ilTile& box, ilZNTiledImage& other, Shift shift);
    std::int32_t copyChunks(const ilTile& box, ilImage& other, Shift shift);
    std::int32_t copyOut(const ilTile& box, ilImage& other, Shift shift);
    std::int32_t copyOutRows(const ilTile& box, ilImage& other, Shift shift);

    Ref<znTiledImage::Image> image_;
    ilPixel tileFill_;
    std::int32_t locks_ = 0;  // pages that callers hold: no cell gives its block back
};

}  // namespace brushwork
