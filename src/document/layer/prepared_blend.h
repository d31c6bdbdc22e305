// PreparedBlend: a layer's own pixels over a target, made ready once and put on a pile part by
// part, with what is known of their pages: what is empty is left out, one pixel stands for a page
// of it, and an opaque page for all below it.
//
//     PreparedBlend blend({color, x, y}, mode, opacity);
//     if (blend.hides(part)) { ... nothing below needs drawing there ... }
//     blend.putOn(pile, part);
//     pile.run();
//
// It lives until the pile has run; meanwhile nobody else changes the source.
#pragma once

#include <cstdint>
#include <memory>

#include "blending/core/blend_pile.h"
#include "image/smart/il_smart_image.h"

namespace brushwork {

class Layer;

// The colour of a layer, made ready, whose effective image it is as it stands: no stroke is live,
// and nothing attenuates it. Null for any other layer.
[[nodiscard]] ilSmartImage* plainColor(Layer& layer);

class PreparedBlend {
  public:
    // Pixel (0, 0) of an image lies at the place.
    struct Placed {
        ilSmartImage* image;  // of four channels
        std::int32_t x, y;
    };

    // Under a mode that is none, nothing is drawn.
    PreparedBlend(const Placed& source, std::int32_t mode, float opacity);

    // Whether the part comes to show the source and nothing else.
    [[nodiscard]] bool hides(const ilTile& part);
    // The part lies in one cell of the pile. False if there is nothing to blend.
    bool putOn(npc::BlendPile& pile, const ilTile& part);
    // Where the source hides all: its page goes into the target at once, without a copy of it.
    // False where it isn't a whole page of both images.
    bool shareWith(ilImage& target, const ilTile& part);

  private:
    [[nodiscard]] ilTile inSource(const ilTile& part) const;

    Ref<ilSmartImage> image_;
    npc::BlendPile::Source source_;
    bool hidesAll_;  // where it is opaque
    std::shared_ptr<npc::GenericBlender> blender_;
};

}  // namespace brushwork
