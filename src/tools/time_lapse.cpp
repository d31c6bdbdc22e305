#include "tools/time_lapse.h"

#include <algorithm>

#include "tools/canvas_picture.h"

namespace brushwork::tools {

TimeLapse::TimeLapse(PaintManager& paint, std::string prefix, std::uint64_t every)
    : paint_(paint), prefix_(std::move(prefix)), every_(std::max<std::uint64_t>(1, every)) {}

std::optional<PictureFault> TimeLapse::operationRun() {
    return ++waiting_ < every_ ? std::nullopt : take();
}

std::optional<PictureFault> TimeLapse::finish() {
    return waiting_ == 0 ? std::nullopt : take();
}

std::optional<PictureFault> TimeLapse::take() {
    constexpr std::size_t digits = 6;
    waiting_ = 0;
    const std::int32_t canvas = paint_.currentCanvas();
    if (!paint_.hasCanvas(canvas)) return std::nullopt;
    auto fault = saveCanvasPicture(paint_, canvas, numberedPngPath(prefix_, pictures_ + 1, digits));
    if (!fault) ++pictures_;
    return fault;
}

}  // namespace brushwork::tools
