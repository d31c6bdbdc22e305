// ilConstImg: an image of one value, everywhere.
//
//     const Ref<ilConstImg> red(new ilConstImg(pixel));
//     red->readRegion(box, buffer, frame);
#pragma once

#include <cstdint>

#include "image/chain/il_image.h"

namespace brushwork {

// Reads answer the fill pixel at any place: the image has sizes, which a client may set, but no
// edges. Nothing can be written; the value changes with setFill. A channel that the value doesn't
// have reads as its last one.
class ilConstImg : public ilImage {
  public:
    static const ClassDescriptor descriptor;

    // One channel of unsigned char, 0.
    ilConstImg();
    explicit ilConstImg(const ilPixel& pixel);

  protected:
    ~ilConstImg() override;
    // Takes channels and type from a value that was set.
    void update() override;

  public:
    [[nodiscard]] const char* className() const override;
    [[nodiscard]] const ClassDescriptor& classDescriptor() const override;
    std::int32_t readRegion(const ilTile& box, void* buffer, const ilTile& frame,
                            const ilImageConfig* config = nullptr) override;
    // ImageNotAllowed.
    std::int32_t writeRegion(const ilTile& box, const void* buffer, const ilTile& frame,
                             const ilImageConfig* config = nullptr) override;
    // Into another image: its fillRegion. ImageNotAllowed from another image.
    std::int32_t copyRegion(const ilTile& box, ilImage& other, std::int32_t ox, std::int32_t oy,
                            std::int32_t oz, const ilImageConfig* config,
                            CopyDirection direction) override;
};

}  // namespace brushwork
