// ShapeLayer: a layer whose pixels are drawn from a list of shapes.
//
//     const Ref<ShapeLayer> layer(new ShapeLayer(ShapeLayerKind::Paint, nullptr, 0, 0));
//     layer->addShape(*shape, -3);
//
// Pixels are made when they are asked for (prepareForRender), after a shape has changed.
#pragma once

#include "document/layer/layer.h"
#include "shapes/shape.h"
#include "shapes/shape_owner.h"

namespace brushwork {

enum class ShapeLayerKind : std::int32_t { Paint = 0, Mask = 1, Stencil = 2, Warp = 3 };
// Every other number is Paint.
[[nodiscard]] ShapeLayerKind shapeLayerKind(std::int32_t number);

class ShapeLayer : public Layer, public ShapeOwner {
  public:
    // `background`: what stands under the shapes (for a warp layer: what they deform), with its
    // corner at (x, y). May be null.
    ShapeLayer(ShapeLayerKind kind, ilImage* background, std::int32_t x, std::int32_t y);
    ShapeLayer(const ShapeLayer& other);

  protected:
    ~ShapeLayer() override;

  public:
    // The layer if it holds shapes, by its flag; null else.
    [[nodiscard]] static ShapeLayer* from(Layer* layer);
    [[nodiscard]] ShapeLayerKind kind() const { return kind_; }

    // ShapeOwner
    [[nodiscard]] ilSmartImage* warpSource() override;
    [[nodiscard]] Place warpSourcePlace() const override;
    [[nodiscard]] ilTile documentBox() const override;
    void shapesChanged() override;
    // Handed down by the stack.
    void setDocumentBox(const ilTile& box) { documentBox_ = box; }

    // Of Layer's slots.
    void normalizeOrigin() override;
    void setOffset(float x, float y) override;
    void contentBounds(ilTile& out, bool placed) override;
    void beginTransform(std::int32_t mode, std::int32_t arg, bool up) override;
    bool affineResample(const TransformRecord& record, SampleMode quality) override;
    bool previewAffine(const TransformRecord& record, SampleMode quality) override;
    void invertMask() override;
    [[nodiscard]] ilImage* colorImageRef() override;  // drawn first if stale
    void prepareForRender(const ilTile* box, bool force) override;
    [[nodiscard]] bool isShapeRenderer() override { return true; }
    [[nodiscard]] Ref<Layer> clone() override;
    [[nodiscard]] Ref<Layer> duplicate() override;
    void dump(bool active) override;

    // Places: -3 is the bottom shape, 0x7fffffff the top one, else 1-based from the bottom.
    static constexpr std::int32_t bottomShape = -3, topShape = 0x7fffffff;
    // Above the shape at that place; at the lower end for a place without one. Answers the id of
    // the shape, which now belongs here.
    std::int32_t addShape(Shape& shape, std::int32_t at);
    // Above a shape of this layer; at the lower end for any other and for null.
    std::int32_t insertShape(Shape& shape, Shape* reference);
    // False for a shape that isn't here.
    bool removeShape(Shape& shape);
    [[nodiscard]] Shape* shapeAt(std::int32_t place) const;
    [[nodiscard]] Shape* shapeById(std::int32_t id) const;
    [[nodiscard]] std::int32_t placeOf(const Shape& shape) const;  // -1: none
    [[nodiscard]] std::int32_t shapeCount() const { return shapeCount_; }
    void markRendered(bool rendered) { rendered_ = rendered; }
    [[nodiscard]] bool shapesDirty() const { return shapesDirty_; }
    void setShapesDirty() { shapesChanged(); }
    void renderShapes(ilSmartImage& target, const ilTile* box);
    void copyShapesFrom(const ShapeLayer& saved);
    // Of a copy of that layer: the shapes stand for those that they are copies of.
    void takeShapeIdsOf(const ShapeLayer& other);

  private:
    [[nodiscard]] bool owns(const Shape& shape) const;
    void link(Shape& shape, Shape* below);
    void takeShapes(const ShapeLayer& other, Shape::Identity identity);
    void dropShapes();

    ShapeLayerKind kind_;
    std::int32_t shapeCount_ = 0;
    Ref<Shape> bottom_;  // owns through next
    Shape* top_ = nullptr;
    bool rendered_ = false, shapesDirty_ = false;
    bool isDrawing_ = false;
    Ref<ilSmartImage> background_;
    std::int32_t backgroundX_ = 0, backgroundY_ = 0;
    ilTile documentBox_{0, 0, 0, 0, 0, 1};
};

}  // namespace brushwork
