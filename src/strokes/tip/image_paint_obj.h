// ImagePaintObj: the image of a brush tip, in several sizes.
//
//     const auto tip = makeRef<ImagePaintObj>(image, ImagePaintObj::Levels::Reduced);
//     Ref<ilImage> near = tip->imageAtSize(40, 40);
//
// Observers are told when the image is replaced. Belongs to the document's thread.
#pragma once

#include <cstddef>
#include <cstdint>

#include "brushwork/resource.h"
#include "foundation/base/observable.h"
#include "strokes/tip/image_ladder.h"

namespace brushwork {

class ImagePaintObj final : public Resource, public Observable {
  public:
    enum class Levels {
        Single,   // the image alone
        Reduced,  // with reduced copies
    };
    ImagePaintObj(const Ref<ilImage>& image, Levels levels);

  protected:
    ~ImagePaintObj() override;

  public:
    // Slots behind Resource's, in this order.

    // The level for a stamp of this size (see ladderLevel); null without an image.
    [[nodiscard]] virtual Ref<ilImage> imageAtSize(std::int32_t width, std::int32_t height) const;
    // Replaces the image, with reduced copies. Nothing happens if it is the present one, or null
    // and there is none.
    virtual void setImageLadder(const Ref<ilImage>& image);
    // Replaces the image, without copies.
    virtual void setSingleImage(const Ref<ilImage>& image);

    [[nodiscard]] const ImageLadder& levels() const { return levels_; }
    // Grows with every replacement, so that who keeps something made of the image can tell.
    [[nodiscard]] std::uint32_t revision() const { return revision_; }

  private:
    void replace(ImageLadder levels);

    ImageLadder levels_;
    std::uint32_t revision_ = 0;
};

}  // namespace brushwork
