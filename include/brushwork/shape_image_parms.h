// ShapeImageParms: how a shape is filled, stroked and warped.
//
//     const auto parms = makeRef<ShapeImageParms>();
//     parms->fillColor = {1.0f, 0.5f, 0.0f, 1.0f};
//     parms->fillActive = true;
//     parms->stroke.width = 6.0f;
//     parms->strokeActive = true;
//
// Values count from the next time that the shape is drawn after it was told that it changed.
// Belongs to the document's thread.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>

#include "brushwork/export.h"
#include "brushwork/ref.h"
#include "brushwork/resource.h"
#include "brushwork/shape_gradient.h"

namespace brushwork {

class ImageGntrController;
class ilSmartImage;

// What a shape is in its layer.
enum class ShapeKind : std::int32_t {
    Paint = 0,
    Mask = 1,     // in a layer of one channel that restricts painting
    Stencil = 2,  // in one that attenuates the layer below
    Warp = 3,     // deforms a picture; neither filled nor stroked
};

struct ShapeStroke {
    std::array<float, 4> color{0.0f, 0.0f, 0.0f, 1.0f};  // red, green, blue, alpha, 0..1
    float width = 40.0f;                                 // pixels
    float flow = 1.0f;                                   // 0..1, how fast the brush's paint covers
    float hardness = 1.0f;                               // 0..1, solid share of the width
    float spacing = 0.5f;                                // multiplies the step between stamps
};

class BRUSHWORK_API ShapeImageParms : public Resource {
  public:
    // A black fill that is switched on, and no stroke.
    ShapeImageParms();

  protected:
    ~ShapeImageParms() override;

  public:
    // Slot behind Resource's. All values as at first, and no masks.
    virtual void reset();

    // A new one with the same values and generators, and no masks.
    [[nodiscard]] Ref<ShapeImageParms> copy() const;

    // By the name it is registered under; "ImageGeneratorSolid" at first, which paints fillColor or
    // stroke.color. False, and the present one stays, for an unknown name.
    bool setFillGenerator(std::string_view name);
    bool setStrokeGenerator(std::string_view name);
    // Paints with a gradient, "ImageGeneratorGradient", from now on.
    void setFillGradient(const ShapeGradient& gradient);
    void setStrokeGradient(const ShapeGradient& gradient);
    [[nodiscard]] const char* fillGeneratorName() const;
    [[nodiscard]] const char* strokeGeneratorName() const;

    std::array<float, 4> fillColor;
    ShapeStroke stroke;
    float opacity;  // 0..1, of fill and stroke
    bool fillActive;
    bool strokeActive;
    bool clipStroke;  // to the shape's box. Off: to 4096 pixels on each side of the layer's origin
    ShapeKind kind;
    float warpDensity;  // cell size of a warp's grid, in 1/400 of the document's longer side

    // For the engine.
    [[nodiscard]] ImageGntrController& fillGenerator() const { return *fillGenerator_; }
    [[nodiscard]] ImageGntrController& strokeGenerator() const { return *strokeGenerator_; }
    // Coverage of fill and stroke, one channel, in layer pixels. Null until the shape was drawn.
    [[nodiscard]] ilSmartImage* fillMask() const { return fillMask_.get(); }
    [[nodiscard]] ilSmartImage* strokeMask() const { return strokeMask_.get(); }
    void setFillMask(Ref<ilSmartImage> mask);
    void setStrokeMask(Ref<ilSmartImage> mask);

  private:
    std::unique_ptr<ImageGntrController> fillGenerator_;
    std::unique_ptr<ImageGntrController> strokeGenerator_;
    Ref<ilSmartImage> fillMask_;
    Ref<ilSmartImage> strokeMask_;
};

}  // namespace brushwork
