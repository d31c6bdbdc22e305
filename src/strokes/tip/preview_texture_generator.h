// PreviewTextureGenerator: a swatch of a brush texture, for whoever chooses one.
//
//     const auto preview = makeRef<PreviewTextureGenerator>(paper, swatch);
//     show(preview->getImage());
#pragma once

#include "strokes/tip/texture_generator.h"

namespace brushwork {

class PreviewTextureGenerator final : public TextureGenerator {
  public:
    // Fills all of `target` from its corner on, an image of 1 channel or of 4.
    PreviewTextureGenerator(const Ref<BrushTextureParameters>& source, const Ref<ilImage>& target);

  protected:
    ~PreviewTextureGenerator() override;

  public:
    // The target, filled anew. The parameters keep their mark of being changed: it is there for
    // the generator whose image is painted with.
    [[nodiscard]] Ref<ilImage> getImage() override;
    // Leaves the target as it is if there is no pattern.
    void rebuild() override;

  private:
    Ref<ilImage> target_;
};

}  // namespace brushwork
