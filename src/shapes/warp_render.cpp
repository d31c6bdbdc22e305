#include "shapes/warp_render.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <new>
#include <vector>

#include "image/smart/smart_alpha.h"

namespace brushwork {
namespace {

constexpr std::int32_t widestRun = 256;  // pixels of neighbouring cells that are drawn at once
constexpr std::int32_t margin = 3;       // pixels that a sampler looks beyond a place
constexpr double largestRead = 1 << 26;  // pixels of the picture behind one run

class WarpRuns {
  public:
    WarpRuns(const WarpSpline& spline, const WarpPicture& picture, SampleMode filter,
             ilSmartImage& target)
        : spline_(spline),
          picture_(picture),
          filter_(filter),
          target_(target),
          channels_(static_cast<std::size_t>(target.channels())) {
        picture.image->bounds(seen_);
    }

    bool render(const ilTile& box);

  private:
    bool renderRow(const ilTile& box, std::int32_t firstRow);
    bool renderRun(const ilTile& box);
    void findPulls(const ilTile& box);
    [[nodiscard]] bool readSource(const ilTile& box);
    void sample(const ilTile& box);

    const WarpSpline& spline_;
    const WarpPicture& picture_;
    SampleMode filter_;
    ilSmartImage& target_;
    std::size_t channels_;
    ilTile seen_;  // of the picture

    // Of the present run.
    std::vector<WarpSpan> columns_;  // of the whole box
    std::int32_t columnsBegin_ = 0;
    std::vector<float> pullX_, pullY_;
    ilTile source_;  // in the picture's coordinates
    std::vector<std::uint8_t> read_, drawn_;
    std::vector<std::int32_t> placeX_, placeY_;
};

bool WarpRuns::render(const ilTile& box) {
    if (box.isEmpty()) return true;
    const WarpGrid& grid = spline_.grid();
    columnsBegin_ = box.x;
    columns_.reserve(static_cast<std::size_t>(box.nx));
    for (std::int32_t x = box.x; x < box.endX(); ++x)
        columns_.emplace_back(grid.cell, grid.left, grid.across, x + 0.5);
    const auto rowOf = [&grid](std::int32_t y) {
        return WarpSpan(grid.cell, grid.low, grid.down, y + 0.5).first;
    };
    for (std::int32_t y = box.y; y < box.endY();) {
        const std::int32_t first = rowOf(y);
        std::int32_t end = y + 1;
        while (end < box.endY() && rowOf(end) == first) ++end;
        if (!renderRow(flatTile(box.x, y, box.nx, end - y), first)) return false;
        y = end;
    }
    return true;
}

// One row of cells: neighbours that move are drawn together.
bool WarpRuns::renderRow(const ilTile& box, std::int32_t firstRow) {
    std::int32_t begin = box.x;
    for (std::int32_t x = box.x; x < box.endX();) {
        const std::int32_t cell = columns_[static_cast<std::size_t>(x - columnsBegin_)].first;
        std::int32_t end = x + 1;
        while (end < box.endX() &&
               columns_[static_cast<std::size_t>(end - columnsBegin_)].first == cell)
            ++end;
        const bool still = spline_.isStill(cell, firstRow);
        if (still || end - begin > widestRun) {
            if (x > begin && !renderRun(flatTile(begin, box.y, x - begin, box.ny))) return false;
            begin = still ? end : x;
        }
        x = end;
    }
    return begin >= box.endX() || renderRun(flatTile(begin, box.y, box.endX() - begin, box.ny));
}

bool WarpRuns::renderRun(const ilTile& box) {
    findPulls(box);
    if (!readSource(box)) return false;
    sample(box);
    return target_.writeRegion(box, drawn_.data(), box) == ImageOk;
}

void WarpRuns::findPulls(const ilTile& box) {
    const WarpGrid& grid = spline_.grid();
    const auto width = static_cast<std::size_t>(box.nx);
    pullX_.resize(width * static_cast<std::size_t>(box.ny));
    pullY_.resize(pullX_.size());
    const auto columns =
        std::span(columns_).subspan(static_cast<std::size_t>(box.x - columnsBegin_), width);
    for (std::int32_t y = 0; y < box.ny; ++y) {
        const WarpSpan row(grid.cell, grid.low, grid.down, box.y + y + 0.5);
        const std::size_t at = static_cast<std::size_t>(y) * width;
        spline_.pullsAlong(columns, row, pullX_.data() + at, pullY_.data() + at);
    }
}

// The part of the picture that the run shows, and a little around it. Beyond what the picture holds
// one ring of its fill is enough: samplers go on with the outermost pixels.
bool WarpRuns::readSource(const ilTile& box) {
    double low[2] = {1e9, 1e9}, high[2] = {-1e9, -1e9};
    const auto width = static_cast<std::size_t>(box.nx);
    for (std::size_t n = 0; n < pullX_.size(); ++n) {
        const double x = box.x + static_cast<double>(n % width) + static_cast<double>(pullX_[n]);
        const double y = box.y + static_cast<double>(n / width) + static_cast<double>(pullY_[n]);
        low[0] = std::min(low[0], x), high[0] = std::max(high[0], x);
        low[1] = std::min(low[1], y), high[1] = std::max(high[1], y);
    }
    const auto bounded = [](double place) {
        return static_cast<std::int32_t>(std::clamp(std::floor(place), -1e8, 1e8));
    };
    const std::int32_t x = bounded(low[0]) - margin - picture_.x;
    const std::int32_t y = bounded(low[1]) - margin - picture_.y;
    const ilTile wanted = flatTile(x, y, bounded(high[0]) + margin + 2 - picture_.x - x,
                                   bounded(high[1]) + margin + 2 - picture_.y - y);
    const ilTile ringed =
        flatTile(seen_.x - margin, seen_.y - margin, seen_.nx + 2 * margin, seen_.ny + 2 * margin);
    source_ = intersection(wanted, ringed);
    if (source_.isEmpty()) source_ = flatTile(ringed.x, ringed.y, 1, 1);
    if (static_cast<double>(source_.nx) * source_.ny > largestRead) return false;
    read_.resize(static_cast<std::size_t>(source_.nx) * static_cast<std::size_t>(source_.ny) *
                 channels_);
    return picture_.image->readRegion(source_, read_.data(), source_) >= 0;
}

void WarpRuns::sample(const ilTile& box) {
    // Whole places are the middles of pixels, but for the nearest pixel their edges.
    const float middle = filter_ == SampleMode::Nearest ? 0.5f : 0.0f;
    const auto width = static_cast<std::size_t>(box.nx);
    const std::size_t count = pullX_.size();
    placeX_.resize(count);
    placeY_.resize(count);
    const std::int32_t left = box.x - picture_.x - source_.x;
    const std::int32_t bottom = box.y - picture_.y - source_.y;
    for (std::size_t n = 0; n < count; ++n) {
        const auto x = static_cast<float>(left + static_cast<std::int32_t>(n % width));
        const auto y = static_cast<float>(bottom + static_cast<std::int32_t>(n / width));
        placeX_[n] = toFixed(x + pullX_[n] + middle);
        placeY_[n] = toFixed(y + pullY_[n] + middle);
    }
    drawn_.resize(count * channels_);
    SampleSource source;
    source.pixels = read_.data();
    source.width = source_.nx;
    source.height = source_.ny;
    source.rowBytes = static_cast<std::ptrdiff_t>(static_cast<std::size_t>(source_.nx) * channels_);
    const SamplingKernels& kernels = samplingKernels();
    const auto mode = static_cast<std::size_t>(filter_);
    const SampleRun run = channels_ == 4 ? kernels.four[mode] : kernels.one[mode];
    run(source, placeX_.data(), placeY_.data(), count, drawn_.data());
    if (filter_ == SampleMode::Bicubic && channels_ == 4) SmartAlpha::cut(drawn_.data(), count);
}

}  // namespace

bool renderWarp(const WarpSpline& spline, const WarpPicture& picture, SampleMode filter,
                ilSmartImage& target, const ilTile& box) try {
    if (!picture.image || picture.image == &target ||
        picture.image->channels() != target.channels()) {
        return false;
    }
    const ilTile moved = intersection(box, spline.grid().box());
    return WarpRuns(spline, picture, filter, target).render(moved);
} catch (const std::bad_alloc&) {
    return false;
}

}  // namespace brushwork
