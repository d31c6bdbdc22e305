// BrushState: the current brush as a host set it.
#pragma once

#include <array>
#include <cstdint>
#include <functional>

#include "brushwork/brush_parameters.h"
#include "brushwork/brush_texture_parameters.h"
#include "brushwork/ref.h"
#include "brushwork/stroke_parameters.h"
#include "brushwork/symmetry.h"
#include "image/chain/il_image.h"
#include "strokes/tip/image_paint_obj.h"
#include "strokes/tip/texture_generator.h"

namespace brushwork {

struct BrushState {
    float convolveStrength = 5.0f, convolveDetail = 1.5f, convolveRadius = 3.0f;
    std::array<float, 4> color{0.0f, 0.0f, 0.0f, 1.0f};  // red, green, blue, alpha
    BrushParameters brush = BrushParameters::defaults();
    StrokeParameters stroke;
    Ref<BrushTextureParameters> texture;
    Ref<TextureGenerator> grain;  // of the texture
    Ref<ImagePaintObj> paintObj;  // the tip, or what the brush paints instead of the colour
    bool stampIsMask = false;     // it is the tip
    bool cloneFromLayer = false;
    std::int32_t cloneSourceLayer = -1;
    float cloneOffsetX = 0.0f, cloneOffsetY = 0.0f;
    std::int32_t strokeMode = 0;        // 3 and 4 paint on the stencil
    std::int32_t blendModeOfBrush = 0;  // of the whole stroke over the layer
    float wetBlendFactor = 1.0f;        // its opacity
    std::int32_t lockAlpha = 0;
    Ref<Symmetry> symmetry;
    bool displayUpdates = true;  // present during a stroke
    std::function<void()> strokeStartHook, strokeEndHook;
    bool colorJitterOn = false;
    bool jittered = false;              // the colour is one drawn for this stroke
    std::array<float, 4> jitterBase{};  // the colour before jitter
    float jitterHue = 0.0f, jitterSaturation = 0.0f, jitterValue = 0.0f;  // percent
    std::int32_t maxStampBytes = 40960000, maxStamps = 30000;

    [[nodiscard]] bool paintsOnStencil() const { return strokeMode == 3 || strokeMode == 4; }
};

}  // namespace brushwork
