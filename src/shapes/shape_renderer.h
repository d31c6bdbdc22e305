// ShapeRenderer: draws one aspect of a shape (its fill, its stroke, its warp) in two steps.
//
//     renderer.setTarget(layerImage);
//     renderer.draw(shape);       // renders what is out of date, then applies it
//
// Rendering makes what the pixels come from: a coverage mask, kept with the shape's parameters, or
// a grid. Applying brings it into the target. Who moves the shape, or only recolours it, applies
// again; who changes its outline marks it dirty first.
//
// Belongs to the document's thread.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "blending/paint/paint_ops.h"
#include "brushwork/il_tile.h"
#include "brushwork/ref.h"
#include "image/smart/il_smart_image.h"
#include "shapes/image_generator.h"
#include "shapes/shape_source.h"

namespace brushwork {

class ShapeRenderer {
  public:
    ShapeRenderer();
    ShapeRenderer(const ShapeRenderer&) = delete;
    ShapeRenderer& operator=(const ShapeRenderer&) = delete;

    // Slots, in this order in every class.

    // Does nothing unless dirty; a shape without curves stays dirty.
    virtual void render(ShapeSource& shape) = 0;
    // Brings what was rendered into the target. A clip limits it to a box of the target.
    virtual void apply(ShapeSource& shape, const ilTile* clip) = 0;
    virtual ~ShapeRenderer();
    // The pixels that it may touch, whether rendered or not; empty without curves.
    [[nodiscard]] virtual ilTile boundingBox(const ShapeSource& shape) = 0;
    // Renders if dirty, and applies.
    virtual void draw(ShapeSource& shape, const ilTile* clip = nullptr);

    // What is rendered is out of date.
    void markDirty() { maskDirty_ = true; }
    [[nodiscard]] bool maskDirty() const { return maskDirty_; }

    // 4 channels, or 1, which takes coverage alone. Null: nothing is applied.
    void setTarget(ilSmartImage* target) { target_ = Ref<ilSmartImage>(target); }
    [[nodiscard]] ilSmartImage* target() const { return target_.get(); }

    // In the process.
    [[nodiscard]] static std::int32_t liveCount();

  protected:
    // The box, or, where that is too large for a mask, what of it lies near the document. Empty if
    // that is too large, too.
    [[nodiscard]] static ilTile affordableBox(const ilTile& box, const ShapeSource& shape);
    // Paints through the mask over the target. False without a mask or target.
    bool paintThrough(ilSmartImage* mask, ImageGenerator& generator,
                      const std::array<float, 4>& color, const ilTile* clip);

    bool maskDirty_ = true;

  private:
    Ref<ilSmartImage> target_;
};

}  // namespace brushwork
