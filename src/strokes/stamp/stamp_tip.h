// StampTip: what of a brush decides the pixels of its stamps.
#pragma once

#include <array>
#include <cstdint>

#include "brushwork/brush_parameters.h"
#include "brushwork/ref.h"
#include "strokes/stamp/stamp_image_cache.h"
#include "strokes/stamp/stamp_key.h"
#include "strokes/tip/image_paint_obj.h"

namespace brushwork::npc {

// Whether stamps come with a colour image.
enum class StampColors {
    None,  // no, also if the tip has one
    Kept,  // kept with the mask
    // Made anew for each stamp, into an image that the user may write on: for modes that carry
    // paint along.
    Fresh,
};

struct StampTip {
    float hardness = 1.0f;  // solid share of the radius
    bool procedural = true;
    bool smears = false;
    StampColors colors = StampColors::None;
    Ref<ImagePaintObj> shape;  // its levels count if they are ilSPMemoryImg of 1 channel
    Ref<ImagePaintObj> color;  // its levels count if they have 4 channels
    // These change no pixel of a mask, but a brush that differs in them is another brush.
    std::array<float, 4> brushColor{};
    std::int32_t preset = 0;
    std::array<std::uint32_t, 63> record{};

    [[nodiscard]] StampRounding rounding() const { return {hardness, procedural, smears}; }
    // As the images are now.
    [[nodiscard]] StampIdentity identity() const;
    // One of the images was replaced since that identity was taken.
    [[nodiscard]] bool differsFrom(const StampIdentity& identity) const {
        return (shape && shape->revision() != identity.shapeRevision) ||
               (color && color->revision() != identity.colorRevision);
    }
};

[[nodiscard]] StampTip stampTipOf(const BrushParameters& brush, StampColors colors);

}  // namespace brushwork::npc
