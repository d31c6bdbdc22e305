#include "shapes/image_gntr_controller.h"

#include <utility>

#include "shapes/gradient_generator.h"

namespace brushwork {
namespace {

// The registry lies below the kinds, so this room makes them known.
void registerOwnKinds() {
    static const bool done = registerImageGenerator(
        gradientGeneratorName, [] { return std::make_unique<GradientGenerator>(); });
    (void)done;
}

}  // namespace

ImageGntrController::ImageGntrController() : generator_(createImageGenerator(solidGeneratorName)) {}

ImageGntrController::ImageGntrController(const ImageGntrController& other)
    : generator_(other.generator_->clone()) {}

ImageGntrController::~ImageGntrController() = default;

bool ImageGntrController::select(std::string_view name) {
    registerOwnKinds();
    return adopt(createImageGenerator(name));
}

bool ImageGntrController::adopt(std::unique_ptr<ImageGenerator> generator) {
    if (!generator) return false;
    generator_ = std::move(generator);
    return true;
}

}  // namespace brushwork
