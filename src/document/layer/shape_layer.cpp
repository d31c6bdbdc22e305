#include "document/layer/shape_layer.h"

#include <utility>

#include "blending/paint/soft_paint_ops.h"
#include "document/layer/layer_boxes.h"
#include "document/layer/layer_numbers.h"
#include "foundation/services/log.h"

namespace brushwork {
namespace {

constexpr std::int32_t layerLogLevel = 0x2016;

const char* namePattern(ShapeLayerKind kind) {
    switch (kind) {
        case ShapeLayerKind::Mask: return "MaskShapeLayer-%d";
        case ShapeLayerKind::Stencil: return "StencilShapeLayer-%d";
        case ShapeLayerKind::Warp: return "WarpShapeLayer-%d";
        case ShapeLayerKind::Paint: break;
    }
    return "PaintShapeLayer-%d";
}

LayerRole roleOf(ShapeLayerKind kind) {
    switch (kind) {
        case ShapeLayerKind::Mask: return LayerRole::Mask;
        case ShapeLayerKind::Stencil: return LayerRole::Stencil;
        default: return LayerRole::Paint;
    }
}

Ref<ilSmartImage> blankFor(ShapeLayerKind kind) {
    const std::int32_t channels = roleOf(kind) == LayerRole::Paint ? 4 : 1;
    return Ref<ilSmartImage>(new ilSmartImage(ilPixel(TypeUChar, channels)));
}

Ref<ilSmartImage> copyOf(ilImage* image) {
    if (!image) return {};
    if (ilSmartImage* const smart = ilSmartImage::from(image)) return smart->clone();
    Ref<ilSmartImage> copy(new ilSmartImage(image));
    copy->materialize(nullptr, true);
    copy->setSource(nullptr);
    return copy;
}

}  // namespace

ShapeLayerKind shapeLayerKind(std::int32_t number) {
    return number >= 1 && number <= 3 ? static_cast<ShapeLayerKind>(number) : ShapeLayerKind::Paint;
}

ShapeLayer::ShapeLayer(ShapeLayerKind kind, ilImage* background, std::int32_t x, std::int32_t y)
    : Layer(blankFor(kind).get(), nullptr, roleOf(kind), plainFlags | HoldsShapes, 0.0f, 0.0f,
            nextLayerName(namePattern(kind))),
      kind_(kind),
      background_(copyOf(background)),
      backgroundX_(x),
      backgroundY_(y) {}

ShapeLayer::ShapeLayer(const ShapeLayer& other)
    : Layer(other),
      ShapeOwner(),
      kind_(other.kind_),
      rendered_(other.rendered_),
      shapesDirty_(other.shapesDirty_),
      background_(other.background_),
      backgroundX_(other.backgroundX_),
      backgroundY_(other.backgroundY_),
      documentBox_(other.documentBox_) {
    takeShapes(other, Shape::Identity::Fresh);
}

ShapeLayer::~ShapeLayer() {
    dropShapes();
}

ShapeLayer* ShapeLayer::from(Layer* layer) {
    return layer && layer->holdsShapes() ? dynamic_cast<ShapeLayer*>(layer) : nullptr;
}

ilSmartImage* ShapeLayer::warpSource() {
    return background_.get();
}

ShapeOwner::Place ShapeLayer::warpSourcePlace() const {
    return {backgroundX_, backgroundY_};
}

ilTile ShapeLayer::documentBox() const {
    return documentBox_;
}

void ShapeLayer::shapesChanged() {
    shapesDirty_ = true;
    if (isStencil()) markClipDirty(true);
    touch();
    propagateChange(false);
}

// Shapes stay where the host has them.
void ShapeLayer::normalizeOrigin() {}

void ShapeLayer::setOffset(float, float) {}

void ShapeLayer::beginTransform(std::int32_t, std::int32_t, bool) {}

bool ShapeLayer::affineResample(const TransformRecord&, SampleMode) {
    return false;
}

bool ShapeLayer::previewAffine(const TransformRecord&, SampleMode) {
    return false;
}

// By the shapes themselves: nothing is drawn for it.
void ShapeLayer::contentBounds(ilTile& out, bool placed) {
    out = moved(boundsOf(background_.get()), backgroundX_, backgroundY_);
    for (const Shape* shape = bottom_.get(); shape; shape = shape->next()) {
        ilTile box;
        if (shape->isVisible() && shape->bounds(box)) out = unionOf(out, box);
    }
    if (!placed) return;
    std::int32_t x = 0, y = 0;
    offsetInt(&x, &y);
    out = moved(out, x, y);
}

// The base takes the drawn image; it stands until a shape changes.
void ShapeLayer::invertMask() {
    Layer::invertMask();
}

ilImage* ShapeLayer::colorImageRef() {
    prepareForRender(nullptr, false);
    return images_.color.get();
}

// Always all: what is drawn in a box would have to be told from what isn't.
void ShapeLayer::prepareForRender(const ilTile*, bool force) {
    if (isDrawing_ || (rendered_ && !shapesDirty_ && !force)) return;
    ilSmartImage* const color = ilSmartImage::from(images_.color.get());
    if (!color) return;
    isDrawing_ = true;
    renderShapes(*color, nullptr);
    isDrawing_ = false;
    rendered_ = true;
    shapesDirty_ = false;
}

void ShapeLayer::renderShapes(ilSmartImage& target, const ilTile* box) {
    const ilTile stale = box ? *box : boundsOf(&target);
    if (!stale.isEmpty()) target.fillRegion(stale, target.fill());
    if (!box) {
        // An inverted mask's fill, too, was of the former drawing.
        target.setBounds({0, 0, 0, 0, 0, 1}, true);
        target.setFill(ilPixel(TypeUChar, target.channels()));
    }
    ilTile under = moved(boundsOf(background_.get()), backgroundX_, backgroundY_);
    if (box) under = intersection(under, *box);
    if (!under.isEmpty()) {
        const Ref<PaintOps> painter(new SoftPaintOps(&target));
        painter->rect_copy(
            under.x, under.y, under.nx, under.ny,
            PaintSource::of(background_.get(), under.x - backgroundX_, under.y - backgroundY_), {},
            0, 1.0f, 1.0f);
    }
    for (Shape* shape = bottom_.get(); shape; shape = shape->next()) shape->draw(&target, box);
}

Ref<Layer> ShapeLayer::clone() {
    return Ref<Layer>(new ShapeLayer(*this));
}

Ref<Layer> ShapeLayer::duplicate() {
    const Ref<ShapeLayer> copy(new ShapeLayer(*this));
    copy->setId(id());
    copy->dropShapes();
    copy->takeShapes(*this, Shape::Identity::Kept);
    return copy;
}

void ShapeLayer::dump(bool active) {
    Layer::dump(active);
    logAt(layerLogLevel, "Shapes(%d)\n", shapeCount_);
}

std::int32_t ShapeLayer::addShape(Shape& shape, std::int32_t at) {
    return insertShape(shape, shapeAt(at));
}

std::int32_t ShapeLayer::insertShape(Shape& shape, Shape* reference) {
    const Ref<Shape> held(&shape);
    if (reference == &shape) return shape.id();
    removeShape(shape);
    link(shape, reference && owns(*reference) ? reference : nullptr);
    shapesChanged();
    return shape.id();
}

bool ShapeLayer::removeShape(Shape& shape) {
    if (!owns(shape)) return false;
    const Ref<Shape> held(&shape);
    Shape* const below = shape.prev();
    const Ref<Shape> above(shape.next());
    if (above)
        above->setPrev(below);
    else
        top_ = below;
    shape.setNext({});
    if (below)
        below->setNext(above);
    else
        bottom_ = above;
    shape.setPrev(nullptr);
    shape.setOwner(nullptr);
    --shapeCount_;
    shapesChanged();
    return true;
}

Shape* ShapeLayer::shapeAt(std::int32_t place) const {
    if (place == bottomShape) return bottom_.get();
    if (place == topShape) return top_;
    if (place < 1) return nullptr;
    Shape* shape = bottom_.get();
    while (shape && --place > 0) shape = shape->next();
    return shape;
}

Shape* ShapeLayer::shapeById(std::int32_t id) const {
    Shape* shape = bottom_.get();
    while (shape && shape->id() != id) shape = shape->next();
    return shape;
}

std::int32_t ShapeLayer::placeOf(const Shape& shape) const {
    std::int32_t place = 1;
    for (const Shape* each = bottom_.get(); each; each = each->next(), ++place)
        if (each == &shape) return place;
    return -1;
}

void ShapeLayer::copyShapesFrom(const ShapeLayer& saved) {
    if (&saved == this) return;
    dropShapes();
    takeShapes(saved, Shape::Identity::Kept);
    background_ = saved.background_;
    backgroundX_ = saved.backgroundX_;
    backgroundY_ = saved.backgroundY_;
    shapesChanged();
}

void ShapeLayer::takeShapeIdsOf(const ShapeLayer& other) {
    const Shape* from = other.bottom_.get();
    for (Shape* shape = bottom_.get(); shape && from; shape = shape->next(), from = from->next())
        shape->takeIdOf(*from);
}

bool ShapeLayer::owns(const Shape& shape) const {
    return shape.owner() == static_cast<const ShapeOwner*>(this);
}

// Above a shape of the list; at its lower end for null.
void ShapeLayer::link(Shape& shape, Shape* below) {
    const Ref<Shape> above(below ? below->next() : bottom_.get());
    shape.setPrev(below);
    shape.setNext(above);
    if (above)
        above->setPrev(&shape);
    else
        top_ = &shape;
    if (below)
        below->setNext(Ref<Shape>(&shape));
    else
        bottom_ = Ref<Shape>(&shape);
    shape.setOwner(this);
    ++shapeCount_;
}

void ShapeLayer::takeShapes(const ShapeLayer& other, Shape::Identity identity) {
    for (const Shape* shape = other.bottom_.get(); shape; shape = shape->next())
        link(*shape->clone(identity), top_);
}

void ShapeLayer::dropShapes() {
    while (bottom_) {
        const Ref<Shape> shape = std::exchange(bottom_, Ref<Shape>(bottom_->next()));
        shape->setNext({});
        shape->setPrev(nullptr);
        shape->setOwner(nullptr);
    }
    top_ = nullptr;
    shapeCount_ = 0;
}

}  // namespace brushwork
