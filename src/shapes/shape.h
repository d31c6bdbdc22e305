// Shape: one vector shape of a layer of shapes.
//
//     const Ref<Shape> shape(new Shape(owner, hostShape, nullptr, parms));
//     shape->draw(layerImage);
//     parms->fillColor = red;
//     shape->changed();              // the owner is told that its pixels are out of date
//
// The outline is the host's, reached through the curve roles of the host table. Shapes stand in a
// list that their layer keeps, the next one above.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "brushwork/ref.h"
#include "brushwork/resource.h"
#include "shapes/shape_fill_renderer.h"
#include "shapes/shape_source.h"
#include "shapes/shape_stroke_renderer.h"
#include "shapes/shape_warp_renderer.h"

namespace brushwork {

class Shape final : public Resource, public ShapeSource {
  public:
    enum class Identity {
        Fresh,  // an id of its own
        Kept,   // the id of the shape that it is a copy of
    };

    // Owner, host values and parameters may be null; null parameters become new ones. A host value
    // other than null is shown to the host once, whose answer is kept.
    Shape(ShapeOwner* owner, HostShape hostShape, void* hostData, Ref<ShapeImageParms> parms);

  protected:
    ~Shape() override;

  public:
    // The same host shape, host values and visibility, with a copy of the parameters; in no list
    // and without an owner.
    [[nodiscard]] Ref<Shape> clone(Identity identity) const;

    // 1, 2, 3 ... in the order of construction; a kept one apart, never two alike in a process.
    [[nodiscard]] std::int32_t id() const { return id_; }
    // From now on this stands for the other, which it is a copy of.
    void takeIdOf(const Shape& other) { id_ = other.id_; }
    [[nodiscard]] HostShape hostShape() const override { return hostShape_; }
    [[nodiscard]] void* hostData() const { return hostData_; }
    [[nodiscard]] void* hostResult() const { return hostResult_; }
    [[nodiscard]] std::vector<HostCurve> curves() const override;
    [[nodiscard]] ShapeImageParms& parms() const override { return *parms_; }
    // Null becomes new ones.
    void setParms(Ref<ShapeImageParms> parms);
    [[nodiscard]] ShapeKind kind() const { return parms_->kind; }

    [[nodiscard]] bool isVisible() const override { return visible_; }
    // A hidden shape draws nothing. The owner is told of a change.
    void setVisible(bool visible);
    [[nodiscard]] ShapeOwner* owner() const override { return owner_; }
    void setOwner(ShapeOwner* owner) { owner_ = owner; }

    // The list, from the lowest up. Kept by the owner.
    [[nodiscard]] Shape* next() const { return next_.get(); }
    [[nodiscard]] Shape* prev() const { return prev_; }
    void setNext(Ref<Shape> next) { next_ = std::move(next); }
    void setPrev(Shape* prev) { prev_ = prev; }

    // What the shape may touch, whether it is visible or not: the grid of a warp, else fill and
    // stroke together. False, and an empty box, if it draws nothing.
    [[nodiscard]] bool bounds(ilTile& box) const override;

    // Outline or parameters changed: all is rendered anew by the next draw. Tells the owner.
    void changed();
    // Draws what is switched on, the stroke over the fill, if the shape is visible: with 4 channels
    // in its paint, with 1 as coverage. A clip limits it to a box of the target.
    void draw(ilSmartImage* target, const ilTile* clip = nullptr);

    [[nodiscard]] ShapeFillRenderer& fillRenderer() const { return *fillRenderer_; }
    [[nodiscard]] ShapeStrokeRenderer& strokeRenderer() const { return *strokeRenderer_; }
    [[nodiscard]] ShapeWarpRenderer& warpRenderer() const { return *warpRenderer_; }

  private:
    void drawWith(ShapeRenderer& renderer, ilSmartImage* target, const ilTile* clip);

    Ref<Shape> next_;
    Shape* prev_ = nullptr;
    std::int32_t id_;
    HostShape hostShape_;
    void* hostData_;
    void* hostResult_;
    Ref<ShapeImageParms> parms_;
    bool visible_ = true;
    ShapeOwner* owner_;
    std::unique_ptr<ShapeFillRenderer> fillRenderer_;
    std::unique_ptr<ShapeStrokeRenderer> strokeRenderer_;
    std::unique_ptr<ShapeWarpRenderer> warpRenderer_;
};

}  // namespace brushwork
