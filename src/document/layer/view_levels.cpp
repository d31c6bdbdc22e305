#include "document/layer/view_levels.h"

#include <bit>
#include <new>

#include "image/work/box_downsample.h"

namespace brushwork {
namespace {

// Pixels of the source that are reduced in one go: a megabyte of them, whole blocks of every size.
constexpr std::int32_t pieceSide = 512;

// Down to a multiple, toward minus infinity.
constexpr std::int32_t floorTo(std::int32_t value, std::int32_t step) {
    return value & ~(step - 1);
}

void meanOfOne(const BlockJob& job, std::int32_t block) {
    const int shift = 2 * std::countr_zero(static_cast<unsigned>(block));
    for (std::int32_t row = 0; row < job.rows; ++row) {
        const std::uint8_t* const from = job.source + row * block * job.sourceRowBytes;
        std::uint8_t* const to = job.target + row * job.targetRowBytes;
        for (std::int32_t column = 0; column < job.columns; ++column) {
            std::uint32_t sum = 0;
            for (std::int32_t y = 0; y < block; ++y)
                for (std::int32_t x = 0; x < block; ++x)
                    sum += from[y * job.sourceRowBytes + column * block + x];
            to[column] = static_cast<std::uint8_t>(sum >> shift);
        }
    }
}

// Reduces an image piece by piece.
class Reducer {
  public:
    Reducer(ilSmartImage& source, std::int32_t block)
        : source_(source), block_(block), channels_(source.channels()) {}

    [[nodiscard]] Ref<ilSmartImage> run() {
        const ilPixel fill = source_.fill();
        level_ = Ref<ilSmartImage>(new ilSmartImage(fill));
        constexpr std::size_t pixels = std::size_t{pieceSide} * pieceSide;
        from_.resize(pixels * static_cast<std::size_t>(channels_));
        to_.resize(from_.size() / static_cast<std::size_t>(block_ * block_));
        ilTile box;
        source_.bounds(box);
        if (box.isEmpty()) return level_;
        for (std::int32_t y = floorTo(box.y, pieceSide); y < box.endY(); y += pieceSide)
            for (std::int32_t x = floorTo(box.x, pieceSide); x < box.endX(); x += pieceSide)
                if (!reduce(cutToBlocks(intersection(flatTile(x, y, pieceSide, pieceSide), box))))
                    return {};
        return level_;
    }

  private:
    // Grown to whole blocks.
    [[nodiscard]] ilTile cutToBlocks(const ilTile& part) const {
        const std::int32_t x = floorTo(part.x, block_);
        const std::int32_t y = floorTo(part.y, block_);
        return flatTile(x, y, floorTo(part.endX() + block_ - 1, block_) - x,
                        floorTo(part.endY() + block_ - 1, block_) - y);
    }

    [[nodiscard]] bool reduce(const ilTile& part) {
        const ilTile target =
            flatTile(part.x / block_, part.y / block_, part.nx / block_, part.ny / block_);
        std::uint32_t value = 0;
        if (source_.isSolid(part, value, false)) {
            const ilPixel pixel(TypeUChar, channels_, &value);
            return pixel == source_.fill() || level_->fillRegion(target, pixel) == ImageOk;
        }
        const std::int32_t read = source_.readRegion(part, from_.data(), part);
        if (read != ImageOk && read != ImageClipped) return false;
        const BlockJob job{from_.data(), std::ptrdiff_t{part.nx} * channels_,
                           to_.data(),   std::ptrdiff_t{target.nx} * channels_,
                           target.nx,    target.ny};
        if (channels_ == 4)
            blockKernels().four[std::countr_zero(static_cast<unsigned>(block_)) - 1](job);
        else
            meanOfOne(job, block_);
        return level_->writeRegion(target, to_.data(), target) == ImageOk;
    }

    ilSmartImage& source_;
    std::int32_t block_, channels_;
    Ref<ilSmartImage> level_;
    std::vector<std::uint8_t> from_, to_;
};

}  // namespace

std::int32_t reducingBlock(float scale) {
    if (!(scale > 0.0f)) return 1;
    std::int32_t block = 16;
    while (block > 1 && scale * static_cast<float>(block) > 1.0f) block /= 2;
    return block;
}

Ref<ilSmartImage> reducedCopy(ilSmartImage& source, std::int32_t block) {
    if (block != 2 && block != 4 && block != 8 && block != 16) return {};
    try {
        return Reducer(source, block).run();
    } catch (const std::bad_alloc&) {
        return {};
    }
}

bool ViewLevels::isCurrent(const ilImage* source, std::uint64_t changeCount) const {
    return source && source_.get() == source && changeCount_ == changeCount;
}

void ViewLevels::restart(ilImage* source, std::uint64_t changeCount) {
    clear();
    source_ = Ref<ilImage>(source);
    changeCount_ = changeCount;
}

void ViewLevels::clear() {
    levels_.clear();
    source_.reset();
    changeCount_ = 0;
}

Ref<ilSmartImage> ViewLevels::level(float scale, float& levelScale) {
    levelScale = 1.0f;
    ilSmartImage* const source = ilSmartImage::from(source_.get());
    const std::int32_t block = reducingBlock(scale);
    if (!source || block == 1) return {};
    const auto index = static_cast<std::size_t>(std::countr_zero(static_cast<unsigned>(block)) - 1);
    if (levels_.size() <= index) levels_.resize(index + 1);
    if (!levels_[index]) levels_[index] = reducedCopy(*source, block);
    if (levels_[index]) levelScale = 1.0f / static_cast<float>(block);
    return levels_[index];
}

}  // namespace brushwork
