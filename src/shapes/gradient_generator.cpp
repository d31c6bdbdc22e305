#include "shapes/gradient_generator.h"

#include <algorithm>
#include <utility>

#include "fill/fill_algorithm.h"
#include "image/smart/il_smart_image.h"

namespace brushwork {
namespace {

constexpr std::int32_t bandRows = 128;

}  // namespace

GradientGenerator::GradientGenerator(ShapeGradient gradient) : gradient_(std::move(gradient)) {
    for (const ShapeGradient::Stop& stop : gradient_.stops) stops_.add(stop.place, stop.color);
}

// In bands, so that a large box takes no second picture of its size.
ImageGenerator::Paint GradientGenerator::paint(const Request& request) {
    const ilTile& box = request.box;
    Paint paint{premultipliedBytes(request.color), nullptr};
    if (gradient_.stops.empty() || box.isEmpty()) return paint;
    const Ref<ilSmartImage> image = makeRef<ilSmartImage>(ilPixel(TypeUChar, 4));
    FillParameters parameters;
    parameters.kind =
        gradient_.form == ShapeGradient::Form::Linear ? FillKind::Linear : FillKind::Radial;
    parameters.dither = gradient_.dither;
    parameters.stops = &stops_;
    const auto left = static_cast<float>(box.x);
    for (std::int32_t y = box.y; y < box.endY(); y += bandRows) {
        const ilTile band = flatTile(box.x, y, box.nx, std::min(bandRows, box.endY() - y));
        const Ref<ilMemoryImg> pixels =
            makeRef<ilMemoryImg>(band.nx, band.ny, 1, 4, TypeUChar, OrderInterleaved);
        const auto low = static_cast<float>(y);
        parameters.startX = gradient_.startX - left;
        parameters.startY = gradient_.startY - low;
        parameters.endX = gradient_.endX - left;
        parameters.endY = gradient_.endY - low;
        parameters.right = parameters.width = band.nx;
        parameters.bottom = parameters.height = band.ny;
        FillAlgorithm fill;
        fill.setup(&parameters, pixels);
        if (!fill.run()) return paint;
        image->writeRegion(band, pixels->data(), band);
    }
    paint.image = image;
    return paint;
}

std::unique_ptr<ImageGenerator> GradientGenerator::clone() const {
    return std::make_unique<GradientGenerator>(*this);
}

}  // namespace brushwork
