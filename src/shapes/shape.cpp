#include "shapes/shape.h"

#include <utility>

#include "foundation/host/host_calls.h"
#include "shapes/host_outline.h"

namespace brushwork {
namespace {

std::int32_t lastId = 0;

Ref<ShapeImageParms> orNew(Ref<ShapeImageParms> parms) {
    return parms ? parms : makeRef<ShapeImageParms>();
}

}  // namespace

Shape::Shape(ShapeOwner* owner, HostShape hostShape, void* hostData, Ref<ShapeImageParms> parms)
    : id_(++lastId),
      hostShape_(hostShape),
      hostData_(hostData),
      hostResult_(hostShapeDataCreated(hostData)),
      parms_(orNew(std::move(parms))),
      owner_(owner),
      fillRenderer_(std::make_unique<ShapeFillRenderer>()),
      strokeRenderer_(std::make_unique<ShapeStrokeRenderer>()),
      warpRenderer_(std::make_unique<ShapeWarpRenderer>()) {}

// A long list goes one by one, not one inside the other.
Shape::~Shape() {
    Ref<Shape> rest = std::move(next_);
    while (rest && rest->refCount() == 1) rest = std::exchange(rest->next_, {});
}

Ref<Shape> Shape::clone(Identity identity) const {
    Ref<Shape> copy = makeRef<Shape>(nullptr, hostShape_, hostData_, parms_->copy());
    copy->visible_ = visible_;
    copy->warpRenderer_->setFilter(warpRenderer_->filter());
    if (identity == Identity::Kept) copy->id_ = id_;
    return copy;
}

std::vector<HostCurve> Shape::curves() const {
    return shapeCurves(hostShape_);
}

void Shape::setParms(Ref<ShapeImageParms> parms) {
    parms_ = orNew(std::move(parms));
    changed();
}

void Shape::setVisible(bool visible) {
    if (std::exchange(visible_, visible) != visible && owner_) owner_->shapesChanged();
}

bool Shape::bounds(ilTile& box) const {
    box = {};
    if (kind() == ShapeKind::Warp) {
        box = warpRenderer_->boundingBox(*this);
    } else {
        if (parms_->fillActive) box = fillRenderer_->boundingBox(*this);
        if (parms_->strokeActive) box = unionOf(box, strokeRenderer_->boundingBox(*this));
    }
    if (!box.isEmpty()) return true;
    box = {};
    return false;
}

void Shape::changed() {
    fillRenderer_->markDirty();
    strokeRenderer_->markDirty();
    warpRenderer_->markDirty();
    if (owner_) owner_->shapesChanged();
}

void Shape::draw(ilSmartImage* target, const ilTile* clip) {
    if (!visible_ || !target) return;
    if (kind() == ShapeKind::Warp) {
        drawWith(*warpRenderer_, target, clip);
        return;
    }
    if (parms_->fillActive) drawWith(*fillRenderer_, target, clip);
    if (parms_->strokeActive) drawWith(*strokeRenderer_, target, clip);
}

void Shape::drawWith(ShapeRenderer& renderer, ilSmartImage* target, const ilTile* clip) {
    renderer.setTarget(target);
    renderer.draw(*this, clip);
    renderer.setTarget(nullptr);
}

}  // namespace brushwork
