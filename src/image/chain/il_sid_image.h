// ilSIDImage: an image that may rest on another one, its source.
#pragma once

#include <cstdint>

#include "brushwork/ref.h"
#include "image/chain/il_image.h"

namespace brushwork {

class ilSIDImage : public ilImage {
  public:
    static const ClassDescriptor descriptor;
    static constexpr std::uint32_t liveSignature = 0xA551354B;
    static constexpr std::uint32_t deadSignature = 0xDEAD051D;

  protected:
    ilSIDImage();
    ~ilSIDImage() override;

  public:
    [[nodiscard]] const char* className() const override;
    [[nodiscard]] const ClassDescriptor& classDescriptor() const override;

    // Slots 20 to 24. Anything but an ilSIDImage is ignored as a source; null takes the source
    // away.
    virtual void setSource(ilImage* image);
    // Gives this image's own pixels to its source, where the class keeps any apart. ImageOk, or why
    // the source did not get them all.
    virtual std::int32_t pushToSource() = 0;
    // With P this image's source and G that of P: pushes P into G and rests on G from then on.
    // False, with nothing changed, if either is missing.
    virtual bool collapse();
    [[nodiscard]] virtual ilSIDImage* source();
    virtual void bounds(ilTile& tile);

    // Counts up by one with each image of the process; 0 after destruction.
    [[nodiscard]] std::uint32_t serial() const { return serial_; }
    [[nodiscard]] bool isSigned() const { return signature_ == liveSignature; }

  private:
    std::uint32_t signature_ = liveSignature;
    std::uint32_t serial_;
    Ref<ilSIDImage> sourceImage_;
};

}  // namespace brushwork
