// BrushFamily: the current brush, which the next stroke begins with. An open stroke goes on as it
// began. No undo records.
//
// Until setBrush the brush has no size, and strokes paint nothing: BrushParameters::defaults() is a
// round brush.
#pragma once

#include <array>
#include <cstdint>
#include <functional>

#include "brushwork/brush_parameters.h"
#include "brushwork/brush_texture_parameters.h"
#include "brushwork/export.h"
#include "brushwork/image_ref.h"
#include "brushwork/ref.h"
#include "brushwork/stroke_parameters.h"
#include "brushwork/symmetry.h"

namespace brushwork {

struct FacadeState;

class BRUSHWORK_API BrushFamily {
  public:
    void setColor(const std::array<float, 4>& color);  // red, green, blue, alpha, 0 to 1
    [[nodiscard]] std::array<float, 4> color() const;
    // At first BrushParameters::defaults and StrokeParameters as they are made.
    void setBrush(const BrushParameters& brush, const StrokeParameters& stroke);
    [[nodiscard]] const BrushParameters& brush() const;
    [[nodiscard]] const StrokeParameters& strokeParameters() const;
    void setBrushTexture(const Ref<BrushTextureParameters>& texture);
    // The same with a copy of the image's box as the texture's grain: one channel, one period of
    // the pattern. Any other image: no grain.
    void setBrushTexture(const Ref<BrushTextureParameters>& texture, const ImageRef& grain);
    // Of one channel the tip, where the brush's own is off or beside it; of four what it paints in
    // place of the colour. No image: the plain tip and the colour.
    void setStamp(const ImageRef& image);
    // What convolveParams answers: strength, detail in pixels, radius in pixels.
    void setConvolve(float strength, float detail, float radius);
    // The brush paints from a layer, (x, y) document pixels away; -1: it doesn't.
    void setCloneSource(std::int32_t layerId, float x, float y);
    // 3 and 4 paint on the stencil.
    void setStrokeMode(std::int32_t mode);
    // BlendModeId of the whole stroke over the layer, and its opacity, 0 to 1; others count as 1.
    void setBrushBlend(std::int32_t mode, float opacity = 1.0f);
    // Modes of brushes that paint an image; put aside around edits of other families.
    void setTextureBrush(bool on);
    void setPatternBrush(bool on);
    // Ranges in percent, drawn anew for each stroke.
    void setColorJitter(bool on, float hue, float saturation, float value);
    // The host may change it between strokes. Null: none.
    void setSymmetry(const Ref<Symmetry>& symmetry);
    // Whether a stroke is shown as it is painted, and at its end.
    void setDisplayUpdates(bool on);
    // Called as a stroke begins and after it ended, on this thread; they must not throw.
    void setStrokeHooks(std::function<void()> begin, std::function<void()> end);

  protected:
    explicit BrushFamily(FacadeState& state) : state_(state) {}
    BrushFamily(const BrushFamily&) = delete;
    BrushFamily& operator=(const BrushFamily&) = delete;
    ~BrushFamily() = default;

  private:
    FacadeState& state_;
};

}  // namespace brushwork
