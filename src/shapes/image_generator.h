// ImageGenerator: what a shape is painted with, through the mask of its fill or its stroke.
//
//     registerImageGenerator("ImageGeneratorStripes", [] { return std::make_unique<Stripes>(); });
//     parms->setFillGenerator("ImageGeneratorStripes");
//
// A further kind derives from this class and registers itself under its name. Generators and their
// registry belong to the document's thread.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

#include "brushwork/il_tile.h"
#include "brushwork/ref.h"
#include "image/chain/il_image.h"

namespace brushwork {

class ImageGenerator {
  public:
    struct Request {
        ilTile box;  // the pixels that will be painted, in the layer's coordinates
        std::array<float, 4> color{};  // the shape's: red, green, blue, alpha, 0..1
    };
    // Premultiplied. A colour everywhere, or an image of 4 channels whose pixels lie where the
    // layer's do.
    struct Paint {
        std::array<std::uint8_t, 4> color{};
        Ref<ilImage> image;  // null: the colour
    };

    virtual ~ImageGenerator();
    ImageGenerator& operator=(const ImageGenerator&) = delete;

    // The one that it is registered under.
    [[nodiscard]] virtual const char* name() const = 0;
    [[nodiscard]] virtual Paint paint(const Request& request) = 0;
    // With the same settings.
    [[nodiscard]] virtual std::unique_ptr<ImageGenerator> clone() const = 0;

  protected:
    ImageGenerator() = default;
    ImageGenerator(const ImageGenerator&) = default;
};

// The shape's own colour. There from the start.
inline constexpr const char* solidGeneratorName = "ImageGeneratorSolid";

// Each channel rounded to a byte, colours times the alpha. What is out of range becomes its bound.
[[nodiscard]] std::array<std::uint8_t, 4> premultipliedBytes(const std::array<float, 4>& color);

using ImageGeneratorFactory = std::function<std::unique_ptr<ImageGenerator>()>;

// False, and nothing changes, if the name is taken or empty or there is no factory.
bool registerImageGenerator(std::string_view name, ImageGeneratorFactory factory);
// Generators that were made stay. The solid one can't be taken away.
void unregisterImageGenerator(std::string_view name);
// Null for an unknown name.
[[nodiscard]] std::unique_ptr<ImageGenerator> createImageGenerator(std::string_view name);

}  // namespace brushwork
