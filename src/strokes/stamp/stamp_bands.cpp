#include "strokes/stamp/stamp_bands.h"

#include <algorithm>

#include "blending/core/work_sharing.h"
#include "foundation/tasks/task_pool.h"

namespace brushwork::npc {
namespace {

constexpr std::int32_t leastBandPixels = 32768;

std::int32_t rowsPerBand(std::int32_t width, std::int32_t height) {
    const std::int32_t least = leastBandPixels / width + 1;
    if (least >= height) return height;
    const std::int32_t workers = TaskPool::instance().size();
    return std::max(workers == 0 ? height : height / workers + 1, least);
}

}  // namespace

StampBands::StampBands(std::int32_t width, std::int32_t height) : height_(height) {
    if (width < 1 || height < 1) return;
    rows_ = rowsPerBand(width, height);
    count_ = static_cast<std::size_t>((height - 1) / rows_) + 1;
}

StampBands::Band StampBands::band(std::size_t index) const {
    const std::int32_t first = static_cast<std::int32_t>(index) * rows_;
    return {first, std::min(rows_, height_ - first)};
}

void StampBands::run(const std::function<void(Band)>& work) const {
    if (count_ == 1)
        work(band(0));
    else if (count_ > 1)
        shareWork(count_, [&](std::size_t index) { work(band(index)); });
}

}  // namespace brushwork::npc
