// TextureGenerator: the image that a brush texture is laid under stamps with.
//
//     const auto generator = makeRef<TextureGenerator>(paper);
//     brush.textureImage = generator->getImage();      // before each stroke
//
// The image repeats its pattern without end. On the document's thread; stamps only read the image.
#pragma once

#include "brushwork/brush_texture_parameters.h"
#include "brushwork/ref.h"
#include "brushwork/reference_count.h"
#include "image/chain/il_image.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork {

class TextureGenerator : public zn::ReferenceCount {
  public:
    TextureGenerator();
    explicit TextureGenerator(const Ref<BrushTextureParameters>& source);

  protected:
    // Slots, in this order in every class.
    ~TextureGenerator() override;

  public:
    // Made anew if the parameters are marked as changed, which takes the mark away. Null without
    // parameters or an image, and if there is no memory for it or nothing is left of it at its
    // scale.
    [[nodiscard]] virtual Ref<ilImage> getImage();
    // What is made from now on. Null: nothing.
    virtual void setSource(const Ref<BrushTextureParameters>& source);
    virtual void rebuild();

  protected:
    // The pattern before it is scaled: 1 channel of bytes, moved by the whole part of the shift,
    // inverted if wanted. Null without one.
    [[nodiscard]] virtual Ref<ilSPMemoryImg> makeBase();

    [[nodiscard]] const Ref<BrushTextureParameters>& source() const { return source_; }
    // Is the pattern to be scaled at all?
    [[nodiscard]] bool scales() const;

  private:
    Ref<BrushTextureParameters> source_;
    Ref<ilImage> image_;
};

}  // namespace brushwork
