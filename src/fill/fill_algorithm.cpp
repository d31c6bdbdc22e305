#include "fill/fill_algorithm.h"

#include <algorithm>
#include <span>

#include "fill/fill_noise.h"
#include "fill/gradient_rows.h"

namespace brushwork {
namespace {

// A gradient's way over the image, row by row.
struct LinearRamp {
    explicit LinearRamp(const FillParameters& p) : startX(p.startX), startY(p.startY) {
        const float dx = p.endX - p.startX, dy = p.endY - p.startY;
        const float length = dx * dx + dy * dy;
        stepX = dx / length;
        stepY = dy / length;
    }
    [[nodiscard]] float firstOf(std::int32_t y, std::int32_t left) const {
        return (static_cast<float>(y) - startY) * stepY +
               (static_cast<float>(left) - startX) * stepX;
    }
    void fill(std::int32_t y, std::int32_t left, std::span<std::uint32_t> row,
              const std::uint32_t* table, std::int32_t tableSize) const {
        fillLinearRow(firstOf(y, left), stepX, row.data(), row.size(), table, tableSize);
    }
    void dither(std::int32_t y, std::int32_t left, std::span<std::uint32_t> row,
                const DitherTable& table, FillNoise& noise) const {
        ditherLinearRow(firstOf(y, left), stepX, row.data(), row.size(), table, noise);
    }
    float startX, startY, stepX, stepY;
};

struct RadialRamp {
    explicit RadialRamp(const FillParameters& p) : startX(p.startX), startY(p.startY) {
        const float dx = p.endX - p.startX, dy = p.endY - p.startY;
        scale = 1.0f / (dx * dx + dy * dy);
    }
    [[nodiscard]] RadialRow rowOf(std::int32_t y, std::int32_t left) const {
        const float dy = static_cast<float>(y) - startY;
        return {left, startX, dy * dy * scale, scale};
    }
    void fill(std::int32_t y, std::int32_t left, std::span<std::uint32_t> row,
              const std::uint32_t* table, std::int32_t tableSize) const {
        fillRadialRow(rowOf(y, left), row.data(), row.size(), table, tableSize);
    }
    void dither(std::int32_t y, std::int32_t left, std::span<std::uint32_t> row,
                const DitherTable& table, FillNoise& noise) const {
        ditherRadialRow(rowOf(y, left), row.data(), row.size(), table, noise);
    }
    float startX, startY, scale;
};

bool isPlain(ilMemoryImg& image) {
    const auto address = reinterpret_cast<std::uintptr_t>(image.data());
    return image.channels() == 4 && image.dataType() == TypeUChar &&
           image.order() == OrderInterleaved && image.data() &&
           address % alignof(std::uint32_t) == 0;
}

}  // namespace

FillAlgorithm::~FillAlgorithm() = default;

void FillAlgorithm::setup(const FillParameters* parameters, const Ref<ilMemoryImg>& image) {
    parameters_ = parameters;
    image_ = image;
}

bool FillAlgorithm::run() {
    if (!parameters_ || !image_ || !isPlain(*image_)) return false;
    switch (parameters_->kind) {
        case FillKind::Solid: return fillSolid();
        case FillKind::Linear:
        case FillKind::Radial: return fillGradient();
    }
    return false;
}

bool FillAlgorithm::fillSolid() {
    std::uint8_t bytes[4];
    for (unsigned i = 0; i < 4; ++i)
        bytes[i] = static_cast<std::uint8_t>(parameters_->color >> (8 * i));
    const ilTile whole = flatTile(0, 0, parameters_->width, parameters_->height);
    return image_->fillRegion(whole, ilPixel(TypeUChar, 4, bytes)) == ImageOk;
}

bool FillAlgorithm::fillGradient() {
    if (!parameters_->stops) return false;
    buildTable();
    if (parameters_->kind == FillKind::Linear)
        paint(LinearRamp(*parameters_));
    else
        paint(RadialRamp(*parameters_));
    return true;
}

void FillAlgorithm::buildTable() {
    const auto size = static_cast<std::size_t>(tableSize_);
    GradientEnds ends;
    if (parameters_->dither) {
        if (!table16_) table16_ = std::make_unique<DeepColor[]>(size);
        ends = fillGradientTable(*parameters_->stops, std::span(table16_.get(), size));
    } else {
        if (!table8_) table8_ = std::make_unique<std::uint32_t[]>(size);
        ends = fillGradientTable(*parameters_->stops, std::span(table8_.get(), size));
    }
    firstColor_ = ends.first;
    lastColor_ = ends.last;
}

FillAlgorithm::Area FillAlgorithm::area() const {
    return {std::max(parameters_->left, 0), std::max(parameters_->top, 0),
            std::min(parameters_->right, image_->sizeX()),
            std::min(parameters_->bottom, image_->sizeY())};
}

template <class Ramp>
void FillAlgorithm::paint(const Ramp& ramp) {
    const Area box = area();
    if (box.isEmpty()) return;
    const auto width = static_cast<std::size_t>(image_->sizeX());
    const auto count = static_cast<std::size_t>(box.right - box.left);
    const DitherTable deep{table16_.get(), tableSize_, {firstColor_, lastColor_}};
    FillNoise noise = FillNoise::current();
    for (std::int32_t y = box.top; y < box.bottom; ++y) {
        const std::size_t place =
            static_cast<std::size_t>(y) * width + static_cast<std::size_t>(box.left);
        auto* const pixels = reinterpret_cast<std::uint32_t*>(
            image_->data() + place * static_cast<std::size_t>(channelStride_));
        const std::span row(pixels, count);
        if (parameters_->dither)
            ramp.dither(y, box.left, row, deep, noise);
        else
            ramp.fill(y, box.left, row, table8_.get(), tableSize_);
    }
    noise.makeCurrent();
    image_->setAltered(NotifyOnly);
}

}  // namespace brushwork
