#include "brushwork/shape_image_parms.h"

#include <utility>

#include "image/smart/il_smart_image.h"
#include "shapes/gradient_generator.h"
#include "shapes/image_gntr_controller.h"

namespace brushwork {

ShapeImageParms::ShapeImageParms() {
    ShapeImageParms::reset();
}

ShapeImageParms::~ShapeImageParms() = default;

void ShapeImageParms::reset() {
    fillColor = {0.0f, 0.0f, 0.0f, 1.0f};
    stroke = {};
    opacity = 1.0f;
    fillActive = true;
    strokeActive = false;
    clipStroke = false;
    kind = ShapeKind::Paint;
    warpDensity = 1.0f;
    fillGenerator_ = std::make_unique<ImageGntrController>();
    strokeGenerator_ = std::make_unique<ImageGntrController>();
    fillMask_.reset();
    strokeMask_.reset();
}

Ref<ShapeImageParms> ShapeImageParms::copy() const {
    Ref<ShapeImageParms> other = makeRef<ShapeImageParms>();
    other->fillColor = fillColor;
    other->stroke = stroke;
    other->opacity = opacity;
    other->fillActive = fillActive;
    other->strokeActive = strokeActive;
    other->clipStroke = clipStroke;
    other->kind = kind;
    other->warpDensity = warpDensity;
    other->fillGenerator_ = std::make_unique<ImageGntrController>(*fillGenerator_);
    other->strokeGenerator_ = std::make_unique<ImageGntrController>(*strokeGenerator_);
    return other;
}

bool ShapeImageParms::setFillGenerator(std::string_view name) {
    return fillGenerator_->select(name);
}

bool ShapeImageParms::setStrokeGenerator(std::string_view name) {
    return strokeGenerator_->select(name);
}

void ShapeImageParms::setFillGradient(const ShapeGradient& gradient) {
    fillGenerator_->adopt(std::make_unique<GradientGenerator>(gradient));
}

void ShapeImageParms::setStrokeGradient(const ShapeGradient& gradient) {
    strokeGenerator_->adopt(std::make_unique<GradientGenerator>(gradient));
}

const char* ShapeImageParms::fillGeneratorName() const {
    return fillGenerator_->generator().name();
}

const char* ShapeImageParms::strokeGeneratorName() const {
    return strokeGenerator_->generator().name();
}

void ShapeImageParms::setFillMask(Ref<ilSmartImage> mask) {
    fillMask_ = std::move(mask);
}

void ShapeImageParms::setStrokeMask(Ref<ilSmartImage> mask) {
    strokeMask_ = std::move(mask);
}

}  // namespace brushwork
