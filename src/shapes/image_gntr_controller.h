// ImageGntrController: which generator paints a fill or a stroke.
#pragma once

#include <memory>
#include <string_view>

#include "shapes/image_generator.h"

namespace brushwork {

class ImageGntrController {
  public:
    // The solid one.
    ImageGntrController();
    // With a generator of its own, a copy of the other's.
    ImageGntrController(const ImageGntrController& other);
    ImageGntrController& operator=(const ImageGntrController&) = delete;
    ~ImageGntrController();

    // A new generator of that name takes the place of the present one. False, and that one stays,
    // if there is none.
    bool select(std::string_view name);
    // Takes a generator that was set up by its owner; null is refused.
    bool adopt(std::unique_ptr<ImageGenerator> generator);

    [[nodiscard]] ImageGenerator& generator() const { return *generator_; }

  private:
    std::unique_ptr<ImageGenerator> generator_;
};

}  // namespace brushwork
