// GradientGenerator: paints with a gradient that lies still in the layer.
#pragma once

#include "brushwork/shape_gradient.h"
#include "fill/gradient_stops.h"
#include "shapes/image_generator.h"

namespace brushwork {

inline constexpr const char* gradientGeneratorName = "ImageGeneratorGradient";

class GradientGenerator final : public ImageGenerator {
  public:
    // Without stops it paints the shape's colour.
    explicit GradientGenerator(ShapeGradient gradient = {});

    [[nodiscard]] const char* name() const override { return gradientGeneratorName; }
    [[nodiscard]] Paint paint(const Request& request) override;
    [[nodiscard]] std::unique_ptr<ImageGenerator> clone() const override;

    [[nodiscard]] const ShapeGradient& gradient() const { return gradient_; }

  private:
    ShapeGradient gradient_;
    GradientStops stops_;
};

}  // namespace brushwork
